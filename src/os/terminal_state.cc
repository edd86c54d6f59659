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
volatile sig_atomic_t loop_runs = 0;
volatile sig_atomic_t requested = 0;
volatile sig_atomic_t taken_up = 0;
volatile sig_atomic_t ticks = 0;

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

void give_terminal_back() {
    if (screen_ender) screen_ender();
    restore_terminal_state();
}

void end_children_at_once() {
    if (children_ender) children_ender();
}

void drop_stuck_output() {
    fd_set terminal;
    FD_ZERO(&terminal);
    FD_SET(STDIN_FILENO, &terminal);
    timeval at_once = {};
    if (select(STDIN_FILENO + 1, nullptr, &terminal, nullptr, &at_once) != 0) return;
    tcflush(STDIN_FILENO, TCOFLUSH);
}

// Further signals change nothing: a terminal that is closed often sends two.
bool request_end() {
    if (!loop_runs) return false;
    if (requested) return true;
    requested = 1;
    ticks = 0;
    drop_stuck_output();
    const itimerval timer = {{0, kTick}, {0, kTick}};
    setitimer(ITIMER_REAL, &timer, nullptr);
    return true;
}

bool end_is_overdue() {
    ticks = ticks + 1;
    drop_stuck_output();
    return loop_runs && !taken_up && ticks >= kMostTicks;
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

}  // namespace tpu
