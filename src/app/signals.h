// What signals do to the program.
#pragma once

namespace tpu {

// For SIGINT, SIGTERM and SIGHUP. While a main loop runs, they ask it to end, which keeps
// what is unsaved. Else, and when the loop does not come round within some
// seconds, they leave full-screen work, restore the terminal, end the children and the
// process. The status is 0 in any case.
void terminal_signal_handler(int signal);

// For SIGALRM, which comes again and again from then on: sees to it that this gets on.
void terminal_timer_handler(int signal);

// From now on, signals that mean a fault leave full-screen work and restore the terminal
// before they do what they do by default. Losing the file behind a text is none, see
// TextBlock::repair_fault.
void handle_faults();

}  // namespace tpu
