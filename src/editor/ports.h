// The outside world as the editor sees it, handed in so that tests can be it.
#pragma once

#include <chrono>
#include <string>
#include <thread>

#include "editor/event.h"
#include "editor/frame.h"
#include "os/descriptor.h"
#include "os/system.h"

namespace tpu {

struct ScreenSize {
    int rows = 0;
    int cols = 0;
};

// A character terminal.
class Terminal {
  public:
    virtual ~Terminal() = default;

    // Takes the terminal over for full-screen work. Empty on success, else one
    // line that says why it cannot be.
    virtual std::string start() = 0;
    virtual ScreenSize size() = 0;
    virtual void present(const Frame& frame) = 0;

    // The next event, waiting at most `wait_ms` milliseconds for it (below 0: without
    // limit); none when the time is up, or one of `others` is ready and nothing has come.
    // A resize: size() has changed.
    virtual Event read(int wait_ms, const Awaited& others) = 0;
    // True when read() would give an event without waiting.
    virtual bool key_waiting() = 0;
    // True when Ctrl-C was pressed since the last event was read. The keys up to it, and
    // it itself, are dropped then.
    virtual bool interrupt_waiting() = 0;
    // Whether the mouse is reported, from start() on too; at first it is not.
    virtual void set_mouse(bool on) = 0;

    virtual void beep() = 0;
    // Gives the terminal back for a while, and takes it over again.
    virtual void leave() = 0;
    virtual void enter() = 0;
};

class Clock {
  public:
    using time_point = std::chrono::steady_clock::time_point;

    virtual ~Clock() = default;
    virtual time_point now() = 0;
    virtual void sleep(std::chrono::milliseconds time) = 0;
};

class SteadyClock : public Clock {
  public:
    time_point now() override { return std::chrono::steady_clock::now(); }
    void sleep(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
};

struct Ports {
    Terminal& terminal;
    Clock& clock;
    System& system;
};

}  // namespace tpu
