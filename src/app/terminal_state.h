// The terminal as it was before the editor took it over, for everyone who may
// have to give it back. Process-wide, because a signal handler needs it.
#pragma once

namespace tpu {

// Keeps the attributes of standard input, if it is a terminal.
void save_terminal_state();

// Puts the kept attributes back; does nothing when none were kept.
void restore_terminal_state();

// Registers what leaves full-screen work. It must be fit to run in a signal
// handler. Null: there is nothing to leave.
void set_screen_ender(void (*end)());

// Registers what ends the children of the program, with the same condition.
void set_children_ender(void (*end)());

// For SIGINT, SIGTERM and SIGHUP: leaves full-screen work, restores the terminal,
// ends the children and the process. The status is always 0.
void terminal_signal_handler(int signal);

// From now on, signals that mean a fault leave full-screen work and restore the terminal
// before they do what they do by default. Losing the file behind a text is none, see
// TextBlock::mend_fault.
void handle_faults();

}  // namespace tpu
