#include "app/signals.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "os/terminal_state.h"
#include "text/text_block.h"

namespace tpu {

namespace {

[[noreturn]] void end_at_once() {
    drop_stuck_output();
    give_terminal_back();
    end_children_at_once();
    _exit(0);  // Deliberate: a hang-up or an interrupt is an ordinary end.
}

void handle_fault(int fault, siginfo_t* info, void*) {
    if (fault == SIGBUS && TextBlock::repair_fault(info->si_addr)) return;
    give_terminal_back();
    signal(fault, SIG_DFL);
    raise(fault);
}

}  // namespace

void terminal_signal_handler(int) {
    int error = errno;
    if (!request_end()) end_at_once();
    errno = error;
}

void terminal_timer_handler(int) {
    int error = errno;
    if (end_is_overdue()) end_at_once();
    errno = error;
}

void handle_faults() {
    struct sigaction action = {};
    action.sa_sigaction = handle_fault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int fault : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGQUIT}) {
        sigaction(fault, &action, nullptr);
    }
}

}  // namespace tpu
