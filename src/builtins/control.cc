// Control: declarations, running code, ending it, and the recorded error.
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "lang/stmt.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

// What a buffer, a range or any other text says as source.
std::string source_text(const Value& value) {
    const Buffer* buffer = value.is(Value::Type::buffer) ? value.buffer() : nullptr;
    return buffer ? buffer->text().text() : value.as_string();
}

bool is_source(const Value& value) {
    using Type = Value::Type;
    return value.is(Type::string) || buffer_of(value) != nullptr;
}

void execute(Call& call) {
    const Value value = call.args.value(0);
    using Type = Value::Type;
    if (value.is(Type::learn)) return call.parser.replay(learned_of(value));
    if (value.is(Type::program)) return call.parser.execute_program(program_of(value));
    if (value.is(Type::buffer) || value.is(Type::range)) {
        return call.parser.compile_text(source_text(value));
    }
    std::string name(ascii::trim(value.as_string()));
    if (!call.parser.execute_procedure(name))
        editor_of(call).set_message("No such procedure: " + name);
}

// The value that a procedure returns; what else can be executed gives none.
Value execute_value(Call& call) {
    const Value& value = call.args.value(0);
    if (value.is(Value::Type::string)) {
        auto found = call.parser.procedures.find(ascii::upper(ascii::trim(value.text())));
        if (found != call.parser.procedures.end()) {
            return Value::adopt(call.parser.call(*found->second, {}, true));
        }
    }
    execute(call);
    return tpu_unspecified();
}

Value compile(Call& call) {
    const Value& source = call.args.value(0);
    if (!is_source(source)) return wrong_type(call, "a string, a buffer or a range");
    return program_value(call.parser.compile_program(source_text(source)));
}

void abort_statement(Call& call) {
    call.parser.abort();
}

void quit(Call& call) {
    if (call.args.count() > 0) editor_of(call).exit_status = bounded(call.args.number(0));
    editor_of(call).running = false;
}

void sleep_seconds(Call& call) {
    long long seconds = call.args.number(0);
    if (editor_of(call).headless || seconds <= 0) return;
    editor_of(call).draw();
    editor_of(call).sleep(std::chrono::seconds(bounded(seconds)));
}

Value error(Call& call) {
    const std::string& code = call.parser.error_code;
    return Value::make_str(code.empty() ? "TPU$_SUCCESS" : code);
}

Value error_text(Call& call) {
    return Value::make_str(call.parser.error_text);
}

Value error_line(Call& call) {
    return Value::make_int(call.parser.error_line);
}

Value debug_line(Call& call) {
    return Value::make_int(call.parser.current_line);
}

Value status(Call& call) {
    return Value::make_int(editor_of(call).search_succeeded);
}

Value call_user(Call& call) {
    editor_of(call).set_message("CALL_USER: no user routine is installed");
    return tpu_unspecified();
}

template <Value (*function)(Call&)>
void shown(Call& call) {
    editor_of(call).set_message(function(call).as_string());
}

template <Signal signal>
void give(Call& call) {
    if (signal == Signal::returning) call.parser.returned = nullptr;
    call.parser.control_signal = signal;
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "LOCAL", .declares = Declares::local, .without_buffer = true,
     .form = "LOCAL name [:= value], ...", .help = "Declare variables of the running procedure."},
    {.name = "VARIABLE", .declares = Declares::variable, .without_buffer = true,
     .form = "VARIABLE name [:= value], ...", .help = "Declare global variables, unless they exist."},
    {.name = "CONSTANT", .declares = Declares::constant, .without_buffer = true,
     .form = "CONSTANT name := value, ...", .help = "Assign values that nothing can replace."},
    {.name = "EXECUTE", .statement = execute, .function = execute_value,
     .form = "EXECUTE(what)",
     .help = "Run a procedure by its name, a program, a learn sequence, or the text of a buffer or range."},
    {.name = "COMPILE", .function = compile, .form = "COMPILE(source)",
     .help = "Define the procedures of a string, buffer or range, and make a program of its other statements."},
    {.name = "RETURN", .statement = give<Signal::returning>, .form = "RETURN [value]",
     .help = "End the procedure; its call has that value."},
    {.name = "ABORT", .statement = abort_statement, .form = "ABORT",
     .help = "End the procedure, or go to its ON_ERROR handler."},
    {.name = "BREAK", .statement = give<Signal::breaking>, .form = "BREAK", .help = "End the innermost loop."},
    {.name = "QUIT", .statement = quit, .without_buffer = true, .form = "QUIT[(status)]",
     .help = "Leave the editor with an exit status; nothing is saved."},
    {.name = "EXIT", .statement = quit, .without_buffer = true, .form = "EXIT[(status)]",
     .help = "Leave the editor with an exit status; nothing is saved."},
    {.name = "SLEEP", .statement = sleep_seconds, .form = "SLEEP(seconds)",
     .help = "Wait, or go on when Ctrl-C is pressed."},
    {.name = "ERROR", .statement = shown<error>, .function = error, .bare = true, .form = "ERROR",
     .help = "The status name of the last recorded error; TPU$_SUCCESS without one."},
    {.name = "ERROR_TEXT", .statement = shown<error_text>, .function = error_text, .bare = true, .form = "ERROR_TEXT",
     .help = "The text of the last recorded error."},
    {.name = "ERROR_LINE", .statement = shown<error_line>, .function = error_line, .bare = true, .form = "ERROR_LINE",
     .help = "The source line of the last recorded error."},
    {.name = "DEBUG_LINE", .statement = shown<debug_line>, .function = debug_line, .form = "DEBUG_LINE",
     .help = "The source line that is running."},
    {.name = "STATUS", .statement = shown<status>, .function = status, .form = "STATUS()",
     .help = "1 when the last search found something, else 0."},
    {.name = "CALL_USER", .function = call_user, .form = "CALL_USER(number, text)",
     .help = "Call a routine of the host program; there is none."},
};
// clang-format on

}  // namespace

std::span<const Builtin> control() {
    return kRows;
}

}  // namespace tpu::builtins
