// An editor session without a terminal: keys go in, frames come out.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/this_system.h"
#include "editor/editor.h"

namespace tpu {

// Among the keys of a FakeTerminal, what comes in beside keys.
inline constexpr int kKeyPaste = 1000;
inline constexpr int kKeyHangup = 1001;

// The code that stands for an event there.
int code_of(const Event& event);

// A terminal that gives the keys it was told to and remembers what was shown. Bytes that make
// a UTF-8 character come together, as from a real one.
class FakeTerminal : public Terminal {
  public:
    std::string start() override { return {}; }
    ScreenSize size() override { return screen; }
    void present(const Frame& frame) override {
        shown = frame;
        ++frames;
    }
    Event read(int wait_ms, const Awaited& others) override;
    bool key_waiting() override { return !keys.empty(); }
    bool interrupt_waiting() override {
        auto pressed = std::find(keys.begin(), keys.end(), control('C'));
        if (pressed == keys.end()) return false;
        keys.erase(keys.begin(), pressed + 1);
        return true;
    }
    void set_mouse(bool on) override { reports_mouse = on; }
    void beep() override { ++beeps; }
    void leave() override {}
    void enter() override {}

    ScreenSize screen{24, 80};
    std::deque<int> keys;  // once they are used up, the terminal hangs up
    std::string pasted;    // by kKeyPaste
    MouseEvent clicked;    // by kKeyMouse
    bool reports_mouse = false;
    int beeps = 0;
    Frame shown;
    int frames = 0;
    std::vector<int> waits;            // milliseconds that each key was waited for
    Awaited others;                    // what was awaited beside the last key
    std::function<void()> before_key;  // called before each key is given
};

class FakeClock : public Clock {
  public:
    time_point now() override { return time += step; }
    void sleep(std::chrono::milliseconds for_time) override { time += for_time; }
    std::chrono::milliseconds step{0};  // that passes from look to look
    time_point time;
};

// Key codes of a text in which <UP>, <CTRL_F>, <GOLD>, <RETURN>, <ESC> and the other
// names of keys stand for those keys, and <<> for "<".
std::vector<int> key_codes(std::string_view keys);

// A UTF-8 session with the default keys and one buffer, "MAIN".
struct Session {
    explicit Session(std::vector<std::string> lines = {}, int rows = 24, int cols = 80);

    // Presses keys one after the other, as key_codes reads them.
    void press(std::string_view keys);
    // What a person would see, a text for each row, without trailing blanks.
    std::vector<std::string> screen();
    std::vector<std::string> lines() { return buffer->text().lines(); }
    Position cursor() const { return {buffer->cursor_row, buffer->cursor_column}; }

    FakeTerminal terminal;
    FakeClock clock;
    ThisSystem system;
    TPUEditor editor;
    Buffer* buffer;
};

// The variable of an upper-case name; null: there is none.
const Value* variable(TPUEditor& editor, std::string_view name);
// What an expression gives.
Value value_of(TPUEditor& editor, const std::string& expression);

}  // namespace tpu
