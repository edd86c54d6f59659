// The terminal of sessions that have none.
#pragma once

#include "editor/ports.h"

namespace tpu {

// Shows nothing, and gives nothing.
class NoTerminal : public Terminal {
  public:
    std::string start() override { return "no terminal"; }
    ScreenSize size() override { return {}; }
    void present(const Frame&) override {}
    Event read(int, const Awaited&) override { return {Event::Kind::hang_up}; }
    bool key_waiting() override { return false; }
    bool interrupt_waiting() override { return false; }
    void set_mouse(bool) override {}
    void beep() override {}
    void leave() override {}
    void enter() override {}
};

}  // namespace tpu
