// The terminal of sessions that have none.
#pragma once

#include "editor/ports.h"

namespace tpu {

// Shows nothing, and gives no key.
class NoTerminal : public Terminal {
  public:
    std::string start() override { return "no terminal"; }
    ScreenSize size() override { return {}; }
    void present(const Frame&) override {}
    int read_key(int, const Awaited&) override { return kKeyHangup; }
    bool key_waiting() override { return false; }
    bool interrupt_waiting() override { return false; }
    std::string take_paste() override { return {}; }
    std::optional<MouseEvent> mouse() override { return {}; }
    void set_mouse(bool) override {}
    void beep() override {}
    void leave() override {}
    void enter() override {}
};

}  // namespace tpu
