// Asking the user.
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

// READ_LINE([prompt [, ECHO or NOECHO]])
Value read_line(Call& call) {
    std::string prompt = call.args.count() > 0 ? call.args.text(0) : "Input: ";
    std::string option = ascii::upper(call.args.text(1));
    bool echo = option != "NOECHO" && option != "NO_ECHO";
    return Value::make_str(editor_of(call).read_command_line(prompt, echo));
}

void read_line_shown(Call& call) {
    editor_of(call).set_message(read_line(call).as_string());
}

// The character of the next key, or the empty text for a key that is none.
Value read_char(Call& call) {
    std::string prompt = call.args.count() > 0 ? call.args.text(0) : "Press a key...";
    return Value::make_str(editor_of(call).read_one_key(prompt).text);
}

void read_char_shown(Call& call) {
    editor_of(call).set_message(read_char(call).as_string());
}

Value last_key(Call& call) {
    return Value::make_int(editor_of(call).last_key);
}

void last_key_shown(Call& call) {
    editor_of(call).set_message(last_key(call).as_string());
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "READ_LINE", .statement = read_line_shown, .function = read_line, .bare = true,
     .form = "READ_LINE[(prompt [, ECHO or NOECHO])]", .help = "Ask for a line of text."},
    {.name = "PROMPT", .statement = read_line_shown, .function = read_line, .bare = true,
     .form = "PROMPT[(prompt [, ECHO or NOECHO])]", .help = "Ask for a line of text."},
    {.name = "READ_CHAR", .statement = read_char_shown, .function = read_char, .bare = true,
     .form = "READ_CHAR[(prompt)]", .help = "Wait for a key; its character."},
    {.name = "LAST_KEY", .statement = last_key_shown, .function = last_key, .bare = true,
     .form = "LAST_KEY", .help = "The code of the key that was pressed last."},
};
// clang-format on

}  // namespace

std::span<const Builtin> input() {
    return kRows;
}

}  // namespace tpu::builtins
