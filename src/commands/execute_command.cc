// Running a command line.
#include "commands/command_words.h"
#include "editor/editor.h"
#include "editor/undo_step.h"
#include "text/ascii.h"

namespace tpu {

namespace {

// A cursor within a character, where moving up or down may leave it, goes to its beginning
// before a command that would take the character apart.
void run(TPUEditor& editor, const Command& command, const CommandLine& line) {
    Buffer* buffer = editor.current_buffer;
    if (!buffer && !command.without_buffer) return editor.set_message("There is no buffer");
    if (line.words.size() < command.least) return editor.set_message(std::string(command.form));
    if (command.edits && !buffer->modifiable) {
        return editor.set_message("Buffer " + buffer->name + " is not modifiable");
    }
    if (buffer && (command.edits || command.at_character)) buffer->leave_character(editor.charset);
    command.run(editor, line);
}

bool run_in_layer(TPUEditor& editor, Layer layer, const CommandLine& line) {
    const Command* command = find_command(layer, line);
    if (command) run(editor, *command, line);
    return command;
}

// Calls the user's procedure with the arguments that stand in parentheses behind its name.
bool run_procedure(TPUEditor& editor, const CommandLine& line) {
    const std::string& name = line.words[0];
    if (!editor.parser.procedures.contains(name)) return false;
    std::string_view arguments = line.rest(1);
    bool called = arguments.starts_with('(');
    return called ? editor.parser.execute_statement(name + std::string(arguments))
                  : editor.parser.execute_procedure(name);
}

// An abbreviation that several commands share may still be meant for the one of them
// that is a statement.
std::string completed_statement(const std::string& word) {
    constexpr std::size_t kShortest = 3;
    std::string completed = word;
    if (word.size() < kShortest) return completed;
    for (const Command& command : commands::statements()) {
        if (!command.words.starts_with(word)) continue;
        if (completed != word) return word;
        completed = command.words;
    }
    return completed;
}

void run_statement(TPUEditor& editor, const CommandLine& line) {
    std::string typed = line.line;
    std::size_t begin = line.places[0];
    std::size_t end = std::min(typed.find_first_of(" \t\r\n\v\f", begin), typed.size());
    std::string as_typed = ascii::upper(std::string_view(typed).substr(begin, end - begin));
    std::string name = line.words[0];
    if (name == as_typed && !editor.parser.knows(typed)) name = completed_statement(name);
    if (name != as_typed) typed.replace(begin, end - begin, name);
    editor.parser.execute_text(typed);
}

void run_line(TPUEditor& editor, CommandLine& line, const std::string& text) {
    // A variable may have any name: q := 1 is no QUIT.
    if (line.word(1).starts_with(":=")) return editor.parser.execute_text(text);
    line.words[0] = resolve_command(ascii::upper(line.words[0]));
    if (run_in_layer(editor, Layer::eve, line) || run_procedure(editor, line) ||
        run_in_layer(editor, Layer::editor, line)) {
        return;
    }
    run_statement(editor, line);
}

}  // namespace

void execute_command(TPUEditor& editor, const std::string& text) {
    CommandLine line(text);
    if (line.words.empty()) return;
    UndoStep step(editor);
    run_line(editor, line, text);
    step.finish();
}

bool is_command(const std::string& text) {
    CommandLine line(text);
    if (line.words.empty()) return false;
    line.words[0] = resolve_command(ascii::upper(line.words[0]));
    return find_command(Layer::eve, line) || find_command(Layer::editor, line);
}

}  // namespace tpu
