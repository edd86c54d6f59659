// The commands of one word that come after the user's procedures.
#include <algorithm>

#include "commands/command_words.h"
#include "commands/help.h"
#include "commands/show.h"
#include "editor/editor.h"
#include "pattern/pattern_text.h"
#include "pattern/search.h"
#include "text/ascii.h"
#include "value/call_text.h"

namespace tpu {

void buffer_command(TPUEditor& editor, const std::vector<std::string>& words) {
    if (words.size() < 2) return editor.set_message("BUFFER requires name");
    const std::string& name = words[1];
    Buffer* buffer = editor.find_buffer(name);
    editor.position(buffer ? buffer : editor.create_buffer(name, ""));
    editor.set_message("Current buffer: " + name);
}

// Of faults in the source the last one stays on the message line, with their number.
void compile_current_buffer(TPUEditor& editor) {
    if (!editor.current_buffer) return;
    long long before = editor.parser.error_count;
    editor.parser.compile_text(editor.current_buffer->text().text());
    long long faults = editor.parser.error_count - before;
    if (faults == 0) return editor.set_message("Compiled current buffer");
    editor.set_message("Compiled current buffer, faults: " + std::to_string(faults) +
                       "; the last: " + editor.parser.error_list.back());
}

namespace commands {

namespace {

using Line = const CommandLine&;

void leave(TPUEditor& editor, Line) {
    editor.running = false;
}

void write(TPUEditor& editor, Line line) {
    line.words.size() > 1 ? editor.save_as(line.file(editor, 1)) : editor.save_current();
}

bool is_pattern(std::string_view text) {
    std::string upper = ascii::upper(text);
    constexpr std::string_view kParts[] = {"ANY(",  "NOTANY(", "ARB(",       "SCAN(",
                                           "SPAN(", "ANCHOR",  "LINE_BEGIN", "LINE_END"};
    return std::any_of(std::begin(kParts), std::end(kParts), [&](std::string_view part) {
        return upper.find(part) != std::string::npos;
    });
}

// Without the quotes around it, of either kind.
std::string unquoted(const std::string& text) {
    std::string bare = strip_quotes(text);
    bool single = bare.size() >= 2 && bare.front() == '\'' && bare.back() == '\'';
    return single ? bare.substr(1, bare.size() - 2) : bare;
}

bool search(TPUEditor& editor, Line line, Work& work) {
    std::string text(line.from_word(1));
    Buffer& buffer = *editor.current_buffer;
    if (!is_pattern(text)) return search_forward(buffer, unquoted(text));
    TPUPattern pattern = parse_pattern_expression(text);
    return search_pattern_forward(buffer, pattern, true, false, &work).has_value();
}

void find(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.prompt_find();
    Work work = editor.parser.interruptible();
    bool found = search(editor, line, work);
    bool is_stopped = work.end == Work::End::stopped;
    editor.set_message(is_stopped ? "Stopped by Ctrl-C" : found ? "Found" : "Not found");
}

void find_quietly(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.prompt_find();
    Work work = editor.parser.interruptible();
    search(editor, line, work);
}

void erase_line(TPUEditor& editor, Line) {
    editor.current_buffer->erase_line();
}

void go_to_end(TPUEditor& editor, Line) {
    editor.current_buffer->end_of_buffer();
}

void select(TPUEditor& editor, Line) {
    editor.current_buffer->select();
    editor.set_message("SELECT");
}

void select_range(TPUEditor& editor, Line) {
    bool active = editor.current_buffer->select_range().has_value();
    editor.set_message(active ? "SELECT_RANGE active" : "No SELECT active");
}

// A name in double quotes, or one with ~, is that of a buffer that there is.
void go_to_buffer(TPUEditor& editor, Line line) {
    std::vector<std::string> words = line.words;
    bool known = words.size() < 2 || editor.find_buffer(words[1]);
    if (!known && editor.find_buffer(line.file(editor, 1))) words[1] = line.file(editor, 1);
    buffer_command(editor, words);
}

void execute(TPUEditor& editor, Line line) {
    std::string name = line.word(1);
    if (!editor.parser.execute_procedure(name)) editor.set_message("No such procedure: " + name);
}

void help(TPUEditor& editor, Line line) {
    show_help(editor, line.upper(1));
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "EXIT", .run = leave, .form = "EXIT",
     .help = "Leave the editor at once; nothing is saved.", .without_buffer = true},
    {.words = "QUIT", .run = leave, .form = "QUIT",
     .help = "Leave the editor at once; nothing is saved.", .without_buffer = true},
    {.words = "WRITE", .run = write, .form = "WRITE [name]",
     .help = "Write the buffer to its file, or to the file named.", .about = About::file},
    {.words = "SAVE", .run = write, .form = "SAVE [name]",
     .help = "Write the buffer to its file, or to the file named.", .about = About::file},
    {.words = "FIND", .run = find, .form = "FIND [text or pattern]",
     .help = "Search forward, or search while the text is typed."},
    {.words = "SEARCH", .run = find, .form = "SEARCH [text or pattern]",
     .help = "Search forward, or search while the text is typed."},
    {.words = "SEARCH_QUIETLY", .run = find_quietly, .form = "SEARCH_QUIETLY <pat>",
     .help = "Search without status message."},
    {.words = "TOP", .run = [](TPUEditor& e, Line) { e.current_buffer->beginning_of_buffer(); }, .form = "TOP",
     .help = "Go to the beginning of the buffer."},
    {.words = "BOTTOM", .run = go_to_end, .form = "BOTTOM",
     .help = "Go to the end of the buffer."},
    {.words = "END", .run = go_to_end, .form = "END",
     .help = "Go to the end of the buffer."},
    {.words = "ERASE_LINE", .run = erase_line, .form = "ERASE_LINE",
     .help = "Erase the current line.", .edits = true},
    {.words = "SELECT", .run = select, .form = "SELECT",
     .help = "Start a selection at the cursor.", .at_character = true},
    {.words = "SELECT_RANGE", .run = select_range, .form = "SELECT_RANGE",
     .help = "Tell whether there is a selection."},
    {.words = "MOVE_TEXT", .run = [](TPUEditor& e, Line) { e.cut_selection(); }, .form = "MOVE_TEXT",
     .help = "Cut the selection.", .edits = true},
    {.words = "COPY_TEXT", .run = [](TPUEditor& e, Line) { e.copy_selection(); }, .form = "COPY_TEXT",
     .help = "Copy the selection.", .at_character = true},
    {.words = "INSERT", .run = [](TPUEditor& e, Line) { set_insert_mode(e, true); }, .form = "INSERT",
     .help = "Type in insert mode."},
    {.words = "OVERSTRIKE", .run = [](TPUEditor& e, Line) { set_insert_mode(e, false); }, .form = "OVERSTRIKE",
     .help = "Type in overstrike mode."},
    {.words = "SHOW", .run = [](TPUEditor& e, Line l) { show_command(e, l.words); }, .form = "SHOW item [name]",
     .help = "Show the state of the editor; SHOW alone lists the items.",
     .without_buffer = true, .about = About::show_item},
    {.words = "BUFFER", .run = go_to_buffer, .form = "BUFFER name",
     .help = "Go to the buffer of that name; it is made if there is none.",
     .without_buffer = true, .about = About::buffer},
    {.words = "COMPILE", .run = [](TPUEditor& e, Line) { compile_current_buffer(e); }, .form = "COMPILE",
     .help = "Run the buffer as a program: its procedures can be called from then on."},
    {.words = "EXECUTE", .run = execute, .form = "EXECUTE name",
     .help = "Call a procedure.", .without_buffer = true, .about = About::procedure},
    {.words = "HELP", .run = help, .form = "HELP [topic]",
     .help = "Show the documentation of a topic, a command or a built-in.",
     .without_buffer = true, .about = About::topic},
};

// Commands that are statements of the language, and can be shortened all the same.
constexpr Command kStatements[] = {
    {.words = "MATCH", .run = nullptr, .form = "MATCH(pattern)",
     .help = "Tell whether a pattern matches at the cursor."},
    {.words = "UNDO", .run = nullptr, .form = "UNDO",
     .help = "Undo the last step."},
    {.words = "REDO", .run = nullptr, .form = "REDO",
     .help = "Do again what was undone last."},
};
// clang-format on

}  // namespace

std::span<const Command> editor() {
    return kRows;
}

std::span<const Command> statements() {
    return kStatements;
}

}  // namespace commands

}  // namespace tpu
