// The callable interface: the one place where exceptions are caught.
#include <tpu.h>

#include <algorithm>
#include <memory>
#include <new>

#include "app/no_terminal.h"
#include "app/this_system.h"
#include "commands/vocabulary.h"
#include "editor/editor.h"
#include "editor/journal_follower.h"

struct TPU_Context {
    tpu::NoTerminal terminal;
    tpu::SteadyClock clock;
    tpu::ThisSystem system;
    std::unique_ptr<tpu::TPUEditor> editor;
};

namespace {

constexpr int kFailure = -1;

// A host's locale is no business of ours, so what is text to people is UTF-8.
std::unique_ptr<tpu::TPUEditor> make_editor(tpu::Ports ports) {
    auto editor = std::make_unique<tpu::TPUEditor>(ports, tpu::vocabulary());
    editor->headless = true;
    editor->charset = tpu::Charset::utf8;
    editor->create_buffer("MAIN", "");
    editor->init_screen();
    return editor;
}

}  // namespace

TPU_Context* TPU_Initialize() {
    try {
        auto context = std::make_unique<TPU_Context>();
        context->editor = make_editor({context->terminal, context->clock, context->system});
        return context.release();
    } catch (...) {
        return nullptr;
    }
}

// There is no main loop that would fetch what subprocesses have written meanwhile, and
// bring journals up to date.
int TPU_ExecuteCommand(TPU_Context* context, const char* command) {
    if (!context || !context->editor || !command) return kFailure;
    tpu::TPUEditor& editor = *context->editor;
    try {
        editor.processes.poll();
        editor.parser.execute_statement(command);
        flush_journals(editor, true);
        return 0;
    } catch (...) {
        editor.parser.recover();
        return kFailure;
    }
}

int TPU_GetMessage(TPU_Context* context, char* buffer, int size) {
    if (!context || !context->editor || !buffer || size <= 0) return kFailure;
    const std::string& message = context->editor->message;
    std::size_t count = std::min(message.size(), static_cast<std::size_t>(size) - 1);
    std::copy_n(message.data(), count, buffer);
    buffer[count] = '\0';
    return static_cast<int>(count);
}

void TPU_Cleanup(TPU_Context* context) {
    delete context;
}

TPU_Context* TPU$INITIALIZE() {
    return TPU_Initialize();
}

int TPU$EXECUTE_COMMAND(TPU_Context* context, const char* command) {
    return TPU_ExecuteCommand(context, command);
}

void TPU$CLEANUP(TPU_Context* context) {
    TPU_Cleanup(context);
}
