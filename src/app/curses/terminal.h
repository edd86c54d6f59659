// The character terminal that the program runs on, through curses.
#pragma once

#include "app/curses/keyboard.h"
#include "app/curses/painter.h"
#include "app/curses/redirect.h"
#include "editor/ports.h"

struct screen;  // curses' SCREEN

namespace tpu {

// There is at most one that was started. The locale's LC_CTYPE has been set before
// that, since it says what curses sends and how wide characters are.
class CursesTerminal : public Terminal {
  public:
    // `charset`: of what people type.
    explicit CursesTerminal(Charset charset) : charset_(charset) {}
    ~CursesTerminal() override;
    CursesTerminal(const CursesTerminal&) = delete;
    CursesTerminal& operator=(const CursesTerminal&) = delete;

    std::string start() override;
    ScreenSize size() override { return size_; }
    void present(const Frame& frame) override;
    Event read(int wait_ms, const Awaited& others) override;
    bool key_waiting() override { return screen_ && keyboard_.key_waiting(); }
    bool interrupt_waiting() override { return screen_ && keyboard_.interrupt_waiting(); }
    void set_mouse(bool on) override;
    void beep() override;
    void leave() override;
    void enter() override;

  private:
    std::string start_curses(const std::string& type, TerminalStreams streams);
    void resize();
    void switch_modes();

    const Charset charset_;
    screen* screen_ = nullptr;  // null until started
    ScreenSize size_;
    bool brackets_pastes_ = false;  // the terminal can
    bool has_mouse_ = false;        // it can report one
    bool mouse_wanted_ = false;
    Painter painter_;
    Keyboard keyboard_;
};

}  // namespace tpu
