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

// What follows is fit to run in a signal handler.

// Leaves full-screen work and puts the kept attributes back.
void give_terminal_back();
// Ends the children of the program.
void end_children_at_once();
// Drops what is still to be written to a terminal that takes no more: whoever writes there
// would wait for ever.
void drop_stuck_output();
// Asks the main loop to end, which keeps what is unsaved, and has SIGALRM come again and again
// from then on. False: no main loop runs that could heed it.
bool request_end();
// For each SIGALRM: true when the main loop should have come round by now.
bool end_is_overdue();

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

}  // namespace tpu
