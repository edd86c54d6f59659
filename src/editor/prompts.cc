// Asking on the message line.
#include "editor/compose.h"
#include "editor/editor.h"
#include "editor/find_session.h"
#include "editor/line_input.h"

namespace tpu {

std::string TPUEditor::read_command_line(const std::string& prompt) {
    if (headless) return {};
    LineInput input(charset);
    int key = kNoKey;
    do {
        Plan plan = settle(*this);
        Frame frame = compose(*this, plan);
        compose_prompt(*this, prompt + input.text(), frame);
        ports.terminal.present(frame);
        key = read_key(-1);
        if (key == kKeyResize) resize_screen();
        if (key == kKeyPaste) input.paste(ports.terminal.take_paste());
        if (key == kKeyHangup) running = false;
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
        draw();
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
