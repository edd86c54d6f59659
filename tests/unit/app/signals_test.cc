// What a fault does before it ends the program.
#include "app/signals.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "os/fresh_stack.h"
#include "os/signal_stack.h"
#include "os/terminal_state.h"
#include "text/text_block.h"

namespace tpu {
namespace {

// There is no end that the compiler knows.
int overflow(volatile int* above) {
    volatile int here[256] = {*above};
    return *above < 0 ? 0 : overflow(here) + here[1];
}

void use_stack_up(void*, const char*) {
    volatile int start = 0;
    overflow(&start);
}

TEST(StackOverflow, gives_the_terminal_back) {
    auto fail = [](bool fresh) {
        SignalStack stack;
        set_screen_ender([] { static_cast<void>(write(STDERR_FILENO, "given back", 10) == 0); });
        handle_faults();
        if (!fresh) use_stack_up(nullptr, nullptr);
        fresh_stack::run(use_stack_up, nullptr);
    };
    EXPECT_EXIT(fail(false), testing::KilledBySignal(SIGSEGV), "given back");
#ifndef TPU_SANITIZE
    EXPECT_EXIT(fail(true), testing::KilledBySignal(SIGSEGV), "given back");
#endif
}

}  // namespace
}  // namespace tpu
