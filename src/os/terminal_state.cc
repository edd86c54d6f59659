#include "os/terminal_state.h"

#include <signal.h>
#include <sys/select.h>
#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

namespace tpu {

namespace {

constexpr int kTick = 100'000;  // microseconds between looks at how the end gets on
constexpr int kMostTicks = 50;  // in which a main loop is to come round

termios saved_attributes;
bool attributes_saved = false;
void (*volatile screen_ender)() = nullptr;
void (*volatile children_ender)() = nullptr;
bool (*volatile memory_mender)(void* address) = nullptr;
volatile sig_atomic_t loop_runs = 0;
volatile sig_atomic_t requested = 0;
volatile sig_atomic_t taken_up = 0;
volatile sig_atomic_t ticks = 0;

void give_terminal_back() {
    if (screen_ender) screen_ender();
    restore_terminal_state();
}

// Whoever writes to a terminal that takes no more output would wait for ever.
void drop_stuck_output() {
    fd_set terminal;
    FD_ZERO(&terminal);
    FD_SET(STDIN_FILENO, &terminal);
    timeval at_once = {};
    if (select(STDIN_FILENO + 1, nullptr, &terminal, nullptr, &at_once) != 0) return;
    tcflush(STDIN_FILENO, TCOFLUSH);
}

// Further signals change nothing: a terminal that is closed often sends two.
void request_end() {
    if (requested) return;
    requested = 1;
    ticks = 0;
    drop_stuck_output();
    const itimerval timer = {{0, kTick}, {0, kTick}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

[[noreturn]] void end_at_once() {
    drop_stuck_output();
    give_terminal_back();
    if (children_ender) children_ender();
    _exit(0);  // Deliberate: a hang-up or an interrupt is an ordinary end.
}

void handle_fault(int fault, siginfo_t* info, void*) {
    if (fault == SIGBUS && memory_mender(info->si_addr)) return;
    give_terminal_back();
    signal(fault, SIG_DFL);
    raise(fault);
}

}  // namespace

void save_terminal_state() {
    if (tcgetattr(STDIN_FILENO, &saved_attributes) == 0) attributes_saved = true;
}

void restore_terminal_state() {
    if (attributes_saved) tcsetattr(STDIN_FILENO, TCSANOW, &saved_attributes);
}

void set_screen_ender(void (*end)()) {
    screen_ender = end;
}

void set_children_ender(void (*end)()) {
    children_ender = end;
}

void terminal_signal_handler(int) {
    int error = errno;
    loop_runs ? request_end() : end_at_once();
    errno = error;
}

void terminal_timer_handler(int) {
    int error = errno;
    ticks = ticks + 1;
    drop_stuck_output();
    if (loop_runs && !taken_up && ticks >= kMostTicks) end_at_once();
    errno = error;
}

EndOnRequest::EndOnRequest() {
    taken_up = 0;
    requested = 0;
    loop_runs = 1;
}

EndOnRequest::~EndOnRequest() {
    loop_runs = 0;
    requested = 0;
}

void EndOnRequest::take_up() {
    taken_up = 1;
}

bool end_requested() {
    return requested != 0;
}

void handle_faults(bool (*mend_memory)(void* address)) {
    memory_mender = mend_memory;
    struct sigaction action = {};
    action.sa_sigaction = handle_fault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int fault : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGQUIT}) {
        sigaction(fault, &action, nullptr);
    }
}

}  // namespace tpu
