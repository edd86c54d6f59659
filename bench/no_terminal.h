// A terminal that gives no keys and swallows what it is shown.
#pragma once

#include <benchmark/benchmark.h>

#include "editor/ports.h"

namespace tpu {

struct NoTerminal : Terminal {
    std::string start() override { return {}; }
    ScreenSize size() override { return {50, 120}; }
    void present(const Frame& frame) override { benchmark::DoNotOptimize(&frame); }
    int read_key(int, const Awaited&) override { return kNoKey; }
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
