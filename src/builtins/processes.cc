// Subprocesses and commands of the shell.
#include "builtins/families.h"
#include "editor/editor.h"
#include "editor/process.h"

namespace tpu::builtins {

namespace {

using Process = std::shared_ptr<TPUProcess>;

// The process that an argument is, or the one that was started last; null without any.
Process target(Call& call, std::size_t i) {
    const Value& value = call.args.value(i);
    if (value.is(Value::Type::process)) return process_of(value);
    const auto& running = editor_of(call).processes.running;
    return running.empty() ? nullptr : running.back();
}

void spawn(Call& call) {
    editor_of(call).def_endwin_then_run(call.args.count() > 0 ? call.args.text(0) : std::string());
}

Value create_process(Call& call) {
    TPUEditor& editor = editor_of(call);
    if (call.args.count() == 0) {
        editor.set_message("CREATE_PROCESS needs a command");
        return tpu_unspecified();
    }
    std::string command = call.args.text(0);
    Buffer* given = call.args.value(1).buffer();
    auto process = std::make_shared<TPUProcess>();
    Failure why;
    if (!process->start(editor.ports.system, command, given ? given : &call.buffer(), why,
                        editor.charset)) {
        editor.fail("TPU$_CREATEFAIL", "CREATE_PROCESS failed", why.text());
        return tpu_unspecified();
    }
    editor.processes.running.push_back(process);
    editor.set_message("Process started (pid " + std::to_string(process->pid()) + ")");
    return process_value(std::move(process));
}

void send(Call& call) {
    if (call.args.count() == 0) return;
    std::string text = call.args.text(0) + "\n";
    Process process = target(call, 1);
    if (process) editor_of(call).send_text(*process, text);
}

void send_eof(Call& call) {
    if (Process process = target(call, 0)) process->send_eof();
}

void attach(Call& call) {
    Process process = target(call, 0);
    if (!process) return editor_of(call).set_message("ATTACH: no process");
    editor_of(call).processes.attached = process;
    editor_of(call).set_message("ATTACHED \u2014 type to process; Ctrl-Z detach, Ctrl-D EOF");
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "SPAWN", .statement = spawn, .form = "SPAWN(command)",
     .help = "Run a command of the shell on the whole screen."},
    {.name = "CREATE_PROCESS", .function = create_process, .form = "CREATE_PROCESS(command [, buffer])",
     .help = "Start a command of the shell whose output goes into a buffer, at its cursor."},
    {.name = "SEND", .statement = send, .form = "SEND(text [, process])",
     .help = "Give a process a line of input; without one, the process that was started last."},
    {.name = "SEND_EOF", .statement = send_eof, .form = "SEND_EOF[(process)]",
     .help = "End the input of a process."},
    {.name = "ATTACH", .statement = attach, .form = "ATTACH[(process)]",
     .help = "Send what is typed to a process until Ctrl-Z."},
};
// clang-format on

}  // namespace

std::span<const Builtin> processes() {
    return kRows;
}

}  // namespace tpu::builtins
