// Running code that nests deeply.
#pragma once

#include "lang/parser.h"
#include "os/fresh_stack.h"

namespace tpu {

// Runs `work` on a fresh stack. False: there is no memory for one, and it did not run.
template <class Work>
bool on_fresh_stack(MiniTPUParser& run, Work& work) {
    struct Task {
        MiniTPUParser& run;
        Work& work;
    } task{run, work};
    auto go = [](void* pointer, const char* limit) {
        auto& self = *static_cast<Task*>(pointer);
        const char* outer = std::exchange(self.run.stack_limit, limit);
        self.work();
        self.run.stack_limit = outer;
    };
    return fresh_stack::run(go, &task);
}

// Runs `work`, which may nest kDeepestExpression levels deep, on a stack that has room
// for it. Without memory for one an error is recorded instead.
template <class Work>
void on_roomy_stack(MiniTPUParser& run, Work work) {
    constexpr std::size_t kRoom = fresh_stack::kFrameFactor * (std::size_t{16} << 20);
    if (run.stack_limit && fresh_stack::here() > run.stack_limit + kRoom) {
        work();
    } else if (!on_fresh_stack(run, work)) {
        run.record_error("TPU$_STACKOVER", "No memory for an expression nested so deeply");
    }
}

inline bool stack_is_low(const MiniTPUParser& run) {
    return fresh_stack::here() < run.stack_limit;
}

}  // namespace tpu
