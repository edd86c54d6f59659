#include "app/terminal_state.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

namespace tpu {

namespace {

termios saved_attributes;
bool attributes_saved = false;
void (*volatile screen_ender)() = nullptr;
void (*volatile children_ender)() = nullptr;

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
    if (screen_ender) screen_ender();
    restore_terminal_state();
    if (children_ender) children_ender();
    _exit(0);  // Deliberate: a hang-up or an interrupt is an ordinary end.
}

void terminal_fault_handler(int fault) {
    if (screen_ender) screen_ender();
    restore_terminal_state();
    signal(fault, SIG_DFL);
    raise(fault);
}

}  // namespace tpu
