// The commands of one word that come after the user's procedures.
#include <algorithm>

#include "actions/actions.h"
#include "commands/command_words.h"
#include "commands/help.h"
#include "commands/show.h"
#include "editor/editor.h"
#include "pattern/pattern_text.h"
#include "pattern/search.h"
#include "text/ascii.h"
#include "value/call_text.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

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

// A name in double quotes, or one with ~, is that of a buffer that there is.
void go_to_buffer(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.set_message("BUFFER requires name");
    std::string name = line.words[1];
    Buffer* buffer = editor.find_buffer(name);
    if (!buffer && (buffer = editor.find_buffer(line.file(editor, 1)))) name = buffer->name;
    editor.position(buffer ? buffer : editor.create_buffer(name, ""));
    editor.set_message("Current buffer: " + name);
}

// Of faults in the source the last one stays on the message line, with their number.
void compile(TPUEditor& editor, Line) {
    long long before = editor.parser.error_count;
    editor.parser.compile_text(editor.current_buffer->text().text());
    long long faults = editor.parser.error_count - before;
    if (faults == 0) return editor.set_message("Compiled current buffer");
    editor.set_message("Compiled current buffer, faults: " + std::to_string(faults) +
                       "; the last: " + editor.parser.error_list.back());
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
    {.words = "EXIT", .run = does<actions::leave>, .form = "EXIT",
     .help = "Leave the editor at once; nothing is saved.", .without_buffer = true, .alias = "QUIT"},
    {.words = "WRITE", .run = save<1>, .form = "WRITE [name]",
     .help = "Write the buffer to its file, or to the file named.", .about = About::file, .alias = "SAVE"},
    {.words = "FIND", .run = find, .form = "FIND [text or pattern]",
     .help = "Search forward, or search while the text is typed.", .alias = "SEARCH"},
    {.words = "SEARCH_QUIETLY", .run = find_quietly, .form = "SEARCH_QUIETLY <pat>",
     .help = "Search without status message."},
    {.words = "TOP", .run = does<&Buffer::beginning_of_buffer>, .form = "TOP",
     .help = "Go to the beginning of the buffer."},
    {.words = "BOTTOM", .run = does<&Buffer::end_of_buffer>, .form = "BOTTOM",
     .help = "Go to the end of the buffer.", .alias = "END"},
    {.words = "ERASE_LINE", .run = does<&Buffer::erase_line>, .form = "ERASE_LINE",
     .help = "Erase the current line.", .edits = true},
    {.words = "SELECT", .run = does<actions::select>, .form = "SELECT",
     .help = "Start a selection at the cursor.", .at_character = true},
    {.words = "SELECT_RANGE", .run = does<actions::tell_of_selection>, .form = "SELECT_RANGE",
     .help = "Tell whether there is a selection."},
    {.words = "MOVE_TEXT", .run = does<actions::cut>, .form = "MOVE_TEXT",
     .help = "Cut the selection.", .edits = true},
    {.words = "COPY_TEXT", .run = does<actions::copy>, .form = "COPY_TEXT",
     .help = "Copy the selection.", .at_character = true},
    {.words = "INSERT", .run = does<actions::type_in_insert_mode>, .form = "INSERT",
     .help = "Type in insert mode."},
    {.words = "OVERSTRIKE", .run = does<actions::type_in_overstrike_mode>, .form = "OVERSTRIKE",
     .help = "Type in overstrike mode."},
    {.words = "SHOW", .run = [](TPUEditor& e, Line l) { show_command(e, l.words); }, .form = "SHOW item [name]",
     .help = "Show the state of the editor; SHOW alone lists the items.",
     .without_buffer = true, .about = About::show_item},
    {.words = "BUFFER", .run = go_to_buffer, .form = "BUFFER name",
     .help = "Go to the buffer of that name; it is made if there is none.",
     .without_buffer = true, .about = About::buffer},
    {.words = "COMPILE", .run = compile, .form = "COMPILE",
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

}  // namespace tpu::commands
