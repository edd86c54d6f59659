// Telling the user: messages, the bell, the screen, the editor's state, and values shown
// as messages.
#include <algorithm>

#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "text/ascii.h"
#include "value/messages.h"

namespace tpu::builtins {

namespace {

// A status name stands for its text.
std::string message_text(const std::string& text) {
    constexpr std::string_view kPrefix = "TPU$_";
    return text.starts_with(kPrefix) ? tpu_message_text_for(text) : text;
}

void message(Call& call) {
    editor_of(call).set_message(message_text(call.args.text(0)));
}

Value message_text_value(Call& call) {
    return Value::make_str(tpu_message_text_for(call.args.text(0)));
}

bool is_name(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return ascii::is_letter(c) || ascii::is_digit(c) || c == '_' || c == '$';
    });
}

// Names are taken as written, all else is a value.
void show_item(Call& call) {
    std::vector<std::string> words{"SHOW"};
    for (std::size_t i = 0; i < call.args.count(); ++i) {
        std::string_view written = call.args.raw(i);
        words.push_back(is_name(written) ? std::string(written) : call.args.text(i));
    }
    editor_of(call).vocabulary.show(editor_of(call), words);
}

void bell(Call& call) {
    if (editor_of(call).bell && !editor_of(call).headless) editor_of(call).ports.terminal.beep();
}

Value current_line(Call& call) {
    return Value::make_str(call.buffer().current_line());
}

Value current_column(Call& call) {
    return Value::make_int(static_cast<long long>(call.buffer().cursor_column) + 1);
}

Value current_row(Call& call) {
    return Value::make_int(static_cast<long long>(call.buffer().cursor_row) + 1);
}

Value current_offset(Call& call) {
    return Value::make_int(static_cast<long long>(call.buffer().current_offset_in_line()));
}

Value current_character(Call& call) {
    char c = call.buffer().current_character();
    return Value::make_str({&c, 1});
}

Value current_buffer(Call& call) {
    return Value::make_buffer(&call.buffer());
}

Value current_direction(Call& call) {
    return Value::make_kw(call.buffer().reverse ? "REVERSE" : "FORWARD");
}

Value current_window(Call& call) {
    TPUWindow* window = editor_of(call).current_window;
    return window ? window_value(window) : tpu_unspecified();
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "MESSAGE", .statement = message, .without_buffer = true,
     .form = "MESSAGE(text)", .help = "Show a text, or the text of a status name, as a message."},
    {.name = "MESSAGE_TEXT", .statement = message, .function = message_text_value, .without_buffer = true,
     .form = "MESSAGE_TEXT(text)", .help = "The text that a status name stands for; as a statement, shown as a message."},
    {.name = "SHOW", .statement = show_item, .form = "SHOW(item [, name])",
     .help = "Show the state of the editor, as the command SHOW does."},
    {.name = "BELL", .statement = bell, .form = "BELL", .help = "Ring the terminal's bell."},
    {.name = "REFRESH", .statement = does<&TPUEditor::draw>,
     .form = "REFRESH", .help = "Draw the screen."},
    {.name = "UPDATE", .statement = does<&TPUEditor::draw>,
     .form = "UPDATE", .help = "Draw the screen."},
    {.name = "CURRENT_LINE", .statement = shown<current_line>, .function = current_line, .bare = true,
     .form = "CURRENT_LINE", .help = "The text of the cursor line."},
    {.name = "CURRENT_COLUMN", .statement = shown<current_column>, .function = current_column, .bare = true,
     .form = "CURRENT_COLUMN", .help = "The column of the cursor, counting from 1."},
    {.name = "CURRENT_ROW", .statement = shown<current_row>, .function = current_row, .bare = true,
     .form = "CURRENT_ROW", .help = "The line of the cursor, counting from 1."},
    {.name = "CURRENT_OFFSET", .statement = shown<current_offset>, .function = current_offset, .bare = true,
     .form = "CURRENT_OFFSET", .help = "The characters between the beginning of the buffer and the cursor."},
    {.name = "CURRENT_BUFFER", .statement = shown<current_buffer>, .function = current_buffer, .bare = true,
     .form = "CURRENT_BUFFER", .help = "The current buffer; as a statement, its name is shown."},
    {.name = "CURRENT_CHARACTER", .statement = shown<current_character>, .function = current_character, .bare = true,
     .form = "CURRENT_CHARACTER", .help = "The character at the cursor; a line feed at the end of a line."},
    {.name = "CURRENT_DIRECTION", .statement = shown<current_direction>, .function = current_direction, .bare = true,
     .form = "CURRENT_DIRECTION", .help = "The direction of searches: FORWARD or REVERSE."},
    {.name = "CURRENT_WINDOW", .statement = shown<current_window>, .function = current_window, .bare = true,
     .form = "CURRENT_WINDOW", .help = "The current window."},
};
// clang-format on

}  // namespace

std::span<const Builtin> display() {
    return kRows;
}

}  // namespace tpu::builtins
