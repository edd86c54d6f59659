#include "os/running_children.h"

#include <array>
#include <atomic>

#include "os/child.h"
#include "os/terminal_state.h"

namespace tpu {

namespace {

// Atomic, and not guarded by anything, since a signal may come at any time. 0: free.
std::array<std::atomic<pid_t>, 256> running;
static_assert(std::atomic<pid_t>::is_always_lock_free);

void end_running_children() {
    std::array<pid_t, running.size()> children;
    std::size_t count = 0;
    for (const auto& slot : running) {
        if (pid_t child = slot) children[count++] = child;
    }
    end_children({children.data(), count}, kChildPatience);
}

void replace(pid_t from, pid_t to) {
    for (auto& slot : running) {
        pid_t expected = from;
        if (slot.compare_exchange_strong(expected, to)) return;
    }
}

}  // namespace

void remember_child(pid_t child) {
    set_children_ender(end_running_children);
    replace(0, child);
}

void forget_child(pid_t child) {
    replace(child, 0);
}

}  // namespace tpu
