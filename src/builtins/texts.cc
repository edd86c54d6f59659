// Functions over texts and numbers.
#include "builtins/common.h"
#include "builtins/families.h"
#include "builtins/fao.h"
#include "builtins/strings.h"
#include "editor/editor.h"
#include "lang/parser.h"

namespace tpu::builtins {

namespace {

template <Value (*function)(std::span<const Value>)>
Value of_values(Call& call) {
    return function(call.args.values());
}

Value fao(Call& call) {
    System& system = editor_of(call).ports.system;
    bool is_cut = false;
    std::string text =
        format_ascii_output(call.args.values(), system.local_time(system.time()), &is_cut);
    if (is_cut) {
        call.parser.record_error("TPU$_STRTOOLARGE", "FAO has cut a result that is too long");
    }
    return Value::make_str(text);
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "STR", .statement = shown<of_values<strings::str>>, .function = of_values<strings::str>, .form = "STR(value)",
     .help = "The text of a value."},
    {.name = "INT", .statement = shown<of_values<strings::integer>>, .function = of_values<strings::integer>, .form = "INT(value)",
     .help = "The integer that a text begins with; 0 without one."},
    {.name = "ASCII", .statement = shown<of_values<strings::ascii_code>>, .function = of_values<strings::ascii_code>, .form = "ASCII(text)",
     .help = "The code of the first character; 0 for an empty text."},
    {.name = "LENGTH", .statement = shown<of_values<strings::length>>, .function = of_values<strings::length>, .form = "LENGTH(value)",
     .help = "The number of characters of a value's text."},
    {.name = "INDEX", .statement = shown<of_values<strings::index>>, .function = of_values<strings::index>, .form = "INDEX(text, part)",
     .help = "The place of the part in the text, counting from 1; 0 when it is not there."},
    {.name = "SUBSTR", .statement = shown<of_values<strings::substr>>, .function = of_values<strings::substr>, .form = "SUBSTR(text, start, length)",
     .help = "A part of the text; its start counts from 1."},
    {.name = "EDIT", .statement = shown<of_values<strings::edit>>, .function = of_values<strings::edit>, .form = "EDIT(text, UPPER or LOWER or INVERT)",
     .help = "The text with the case of its letters changed."},
    {.name = "FAO", .statement = shown<fao>, .function = fao, .form = "FAO(control, ...)",
     .help = "The control text with directives like !AS and !5ZL replaced by the arguments."},
};
// clang-format on

}  // namespace

std::span<const Builtin> texts() {
    return kRows;
}

}  // namespace tpu::builtins
