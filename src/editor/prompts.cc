// Asking on the message line.
#include "editor/compose.h"
#include "editor/editor.h"
#include "editor/find_session.h"
#include "editor/input_mode.h"
#include "editor/line_input.h"

namespace tpu {

namespace {

// A mode that asks something, in its turn. It does not end because a key needs more memory than
// there is: then the key does nothing.
class Prompt : public InputMode {
  public:
    using InputMode::InputMode;

    void lose_event() override {
        fall_short();
        editor.ports.terminal.beep();
    }
    void fall_short() override { editor.memory_reserve.release(); }

  protected:
    // The cursor stands before byte `cursor` of the line.
    void show_line(const std::string& line, std::size_t cursor) {
        editor.memory_reserve.help([&] {
            Plan plan = settle(editor);
            Frame frame = compose(editor, plan);
            compose_prompt(editor, line, cursor, frame);
            editor.ports.terminal.present(frame);
        });
    }
};

class KeyPrompt : public Prompt {
  public:
    KeyPrompt(TPUEditor& session, const std::string& prompt) : Prompt(session), prompt_(prompt) {}

    void show() override { show_line(prompt_, prompt_.size()); }
    bool take(const Event& event) override {
        if (event.kind != Event::Kind::key) return false;
        key_ = event;
        return true;
    }
    const Event& key() const { return key_; }

  private:
    const std::string& prompt_;
    Event key_;
};

class LinePrompt : public Prompt {
  public:
    LinePrompt(TPUEditor& session, const std::string& prompt, Asking how)
        : Prompt(session),
          prompt_(prompt),
          echo_(how.echo),
          at_rest_(how.at_rest),
          input_(session.charset, std::move(how)) {}

    void show() override {
        if (!echo_) return show_line(prompt_, prompt_.size());
        show_line(prompt_ + input_.text(), prompt_.size() + input_.cursor());
    }
    bool take(const Event& event) override {
        if (event.kind == Event::Kind::paste) input_.paste(event.text);
        if (event.kind != Event::Kind::key) return false;
        if (event.text.empty()) return input_.key(event.key);
        bool ended = false;
        for (char byte : event.text) ended = input_.key(static_cast<unsigned char>(byte));
        return ended;
    }
    bool is_at_rest() const override { return at_rest_; }
    const LineInput& input() const { return input_; }

  private:
    const std::string& prompt_;
    const bool echo_, at_rest_;
    LineInput input_;
};

// Shows what it has found so far after each key.
class FindPrompt : public Prompt {
  public:
    explicit FindPrompt(TPUEditor& session) : Prompt(session), find_(*session.current_buffer) {
        search();
    }

    void show() override {
        editor.memory_reserve.help([&] {
            editor.message = shown_;
            editor.draw();
        });
    }
    // Without the buffer that it began in, or elsewhere, there is nothing to find.
    bool take(const Event& event) override {
        if (find_.buffer() != editor.current_buffer) return true;
        if (event.kind == Event::Kind::none) return false;
        if (!searched_) tell(find_.search());
        if (event.kind == Event::Kind::paste) find_.paste(event.text);
        bool ended = event.kind == Event::Kind::key && find_.key(event.key);
        if (!ended) search();
        return ended;
    }
    bool is_at_rest() const override { return true; }
    void step_aside() override { find_.step_aside(); }
    // What is found again is not told again.
    void step_back() override {
        if (find_.buffer() != editor.current_buffer || find_.step_back()) return;
        searched_ = editor.memory_reserve.help([&] { shown_ = find_.search(); });
    }
    void forget(const Buffer& buffer) override { find_.forget(buffer); }
    const std::string& result() const { return find_.result(); }

  private:
    void search() {
        searched_ = editor.memory_reserve.help([&] { tell(find_.search()); });
    }
    void tell(std::string found) {
        shown_ = std::move(found);
        editor.set_message(shown_);
    }

    FindSession find_;
    std::string shown_;
    bool searched_ = false;
};

}  // namespace

Event TPUEditor::read_one_key(const std::string& prompt) {
    if (headless) return {};
    KeyPrompt mode(*this, prompt);
    // Seen even when the answer was typed ahead: what comes next may show something else.
    if (ports.terminal.key_waiting()) mode.show();
    run_mode(mode);
    return mode.key();
}

// A line that nobody has finished must not be acted upon.
std::optional<std::string> TPUEditor::ask(const std::string& prompt, Asking how) {
    if (headless) return "";
    LinePrompt mode(*this, prompt, std::move(how));
    if (!run_mode(mode) || mode.input().cancelled()) return std::nullopt;
    return mode.input().text();
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
    how.at_rest = true;
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
    FindPrompt mode(*this);
    if (run_mode(mode)) set_message(mode.result());
}

}  // namespace tpu
