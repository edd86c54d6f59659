// A terminal that swallows what it is shown.
#pragma once

#include <benchmark/benchmark.h>

#include "app/no_terminal.h"

namespace tpu {

struct SwallowingTerminal : NoTerminal {
    std::string start() override { return {}; }
    ScreenSize size() override { return {50, 120}; }
    void present(const Frame& frame) override { benchmark::DoNotOptimize(&frame); }
    Event read(int, const Awaited&) override { return {}; }
};

}  // namespace tpu
