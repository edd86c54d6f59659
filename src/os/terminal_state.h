// The terminal as it was before the editor took it over, for everyone who may
// have to give it back, and what signals do. Process-wide, because a signal handler
// needs it.
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

// For SIGINT, SIGTERM and SIGHUP. While a main loop runs, they ask it to end, which keeps
// what is unsaved. Else, and when the loop does not come round within some
// seconds, they leave full-screen work, restore the terminal, end the children and the
// process. The status is 0 in any case.
void terminal_signal_handler(int signal);

// For SIGALRM, which comes again and again from then on: sees to it that this gets on.
void terminal_timer_handler(int signal);

// The life of a main loop.
class EndOnRequest {
  public:
    EndOnRequest();
    ~EndOnRequest();
    EndOnRequest(const EndOnRequest&) = delete;
    EndOnRequest& operator=(const EndOnRequest&) = delete;
    // The loop has ended. What there still is to do may take its time.
    void take_up();
};

// True when a signal has asked for the end.
bool end_requested();

// From now on, signals that mean a fault leave full-screen work and restore the terminal
// before they do what they do by default. `mend_memory` is asked first when memory that a
// file stands for cannot be read any more: true when it can now, which is no fault then.
void handle_faults(bool (*mend_memory)(void* address));

}  // namespace tpu
