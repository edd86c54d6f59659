// Asking on the message line.
#include "editor/compose.h"
#include "editor/editor.h"
#include "editor/find_session.h"
#include "editor/line_input.h"

namespace tpu {

namespace {

// The cursor stands before byte `cursor` of the text behind the prompt.
void present_prompt(TPUEditor& editor, const std::string& prompt, const std::string& text = "",
                    std::size_t cursor = 0) {
    editor.memory_reserve.help([&] {
        Plan plan = settle(editor);
        Frame frame = compose(editor, plan);
        compose_prompt(editor, prompt + text, prompt.size() + cursor, frame);
        editor.ports.terminal.present(frame);
    });
}

// What waits for an answer does not end because a key needs more memory than there is:
// then the key does nothing.
template <class Work>
void act(TPUEditor& editor, Work work) {
    if (enough_memory(work)) return;
    editor.memory_reserve.release();
    editor.ports.terminal.beep();
}

}  // namespace

int TPUEditor::read_one_key(const std::string& prompt) {
    if (headless) return kNoKey;
    for (;;) {
        present_prompt(*this, prompt);
        int key = read_prompt_key();
        if (key == kKeyHangup) hang_up();
        if (key == kKeyResize || key == kKeyPaste) {
            act(*this,
                [&] { key == kKeyResize ? resize_screen() : void(ports.terminal.take_paste()); });
        } else if (key != kKeyMouse && key != kNoKey) {
            return key;
        }
    }
}

std::optional<std::string> TPUEditor::ask(const std::string& prompt, Asking how) {
    if (headless) return "";
    bool echo = how.echo;
    LineInput input(charset, std::move(how));
    for (bool done = false; !done;) {
        if (!key_waiting() && echo) present_prompt(*this, prompt, input.text(), input.cursor());
        if (!key_waiting() && !echo) present_prompt(*this, prompt);
        int key = read_prompt_key();
        if (key == kKeyHangup) {
            // Nobody has finished this line: it must not be acted upon.
            hang_up();
            return std::nullopt;
        }
        act(*this, [&] {
            if (key == kKeyResize) resize_screen();
            if (key == kKeyPaste) input.paste(ports.terminal.take_paste());
            done = input.key(key);
        });
    }
    if (input.cancelled()) return std::nullopt;
    return input.text();
}

std::string TPUEditor::read_command_line(const std::string& prompt, bool echo) {
    Asking how;
    how.echo = echo;
    return ask(prompt, std::move(how)).value_or("");
}

// An earlier line that is typed again moves to the end of the history.
void TPUEditor::command_mode() {
    constexpr std::size_t kMostLines = 500;
    Asking how;
    how.history = &command_history;
    how.complete = [this](std::string_view line) {
        return vocabulary.complete_command(*this, line);
    };
    std::string line = ask("* ", std::move(how)).value_or("");
    if (!line.empty()) {
        std::erase(command_history, line);
        command_history.push_back(line);
        if (command_history.size() > kMostLines) command_history.erase(command_history.begin());
    }
    execute_command(line);
}

void TPUEditor::prompt_find() {
    if (headless || !current_buffer) return;
    FindSession session(*current_buffer);
    for (bool done = false; !done;) {
        bool searched = memory_reserve.help([&] { set_message(session.search()); });
        if (!key_waiting()) memory_reserve.help([&] { draw(); });
        int key = read_prompt_key();
        if (key == kKeyHangup) return hang_up();
        act(*this, [&] {
            if (key == kKeyResize) resize_screen();
            if (!searched) set_message(session.search());
            if (key == kKeyPaste) session.paste(ports.terminal.take_paste());
            done = session.key(key);
        });
    }
    set_message(session.result());
}

}  // namespace tpu
