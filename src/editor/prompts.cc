// Asking on the message line.
#include "editor/compose.h"
#include "editor/editor.h"
#include "editor/find_session.h"
#include "editor/line_input.h"

namespace tpu {

namespace {

void present_prompt(TPUEditor& editor, const std::string& line) {
    Plan plan = settle(editor);
    Frame frame = compose(editor, plan);
    compose_prompt(editor, line, frame);
    editor.ports.terminal.present(frame);
}

}  // namespace

int TPUEditor::read_one_key(const std::string& prompt) {
    if (headless) return kNoKey;
    for (;;) {
        present_prompt(*this, prompt);
        int key = read_key(-1);
        if (key == kKeyHangup) running = false;
        if (key == kKeyResize) {
            resize_screen();
        } else if (key == kKeyPaste) {
            ports.terminal.take_paste();
        } else if (key != kKeyMouse && key != kNoKey) {
            return key;
        }
    }
}

std::string TPUEditor::read_command_line(const std::string& prompt, bool echo) {
    if (headless) return {};
    LineInput input(charset);
    int key = kNoKey;
    do {
        if (!key_waiting()) present_prompt(*this, echo ? prompt + input.text() : prompt);
        key = read_key(-1);
        if (key == kKeyResize) resize_screen();
        if (key == kKeyPaste) input.paste(ports.terminal.take_paste());
        if (key == kKeyHangup) {
            // Nobody has finished this line: it must not be acted upon.
            running = false;
            return {};
        }
    } while (!input.key(key));
    return input.text();
}

void TPUEditor::command_mode() {
    execute_command(read_command_line("* "));
}

void TPUEditor::prompt_find() {
    if (headless || !current_buffer) return;
    FindSession session(*current_buffer);
    int key = kNoKey;
    do {
        set_message(session.search());
        if (!key_waiting()) draw();
        key = read_key(-1);
        if (key == kKeyResize) resize_screen();
        if (key == kKeyPaste) session.paste(ports.terminal.take_paste());
        if (key == kKeyHangup) {
            running = false;
            return;
        }
    } while (!session.key(key));
    set_message(session.result());
}

}  // namespace tpu
