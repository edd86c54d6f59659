// Running on another terminal than the one the program was started from.
#pragma once

#include <cstdio>

namespace tpu {

// Moves the process to the terminal that ZK_TTY names: descriptors 0 to 2 and two
// streams for the screen. Does nothing when ZK_TTY is unset or empty. Any failure
// is told on standard error and ends the process with status 1.
void zk_redirect_tty();

struct TerminalStreams {
    std::FILE* input;
    std::FILE* output;
};

// The streams of the terminal to work on: those that zk_redirect_tty made, else
// the standard ones.
TerminalStreams terminal_streams();

// Closes the streams that zk_redirect_tty made, if it did.
void close_redirected_streams();

}  // namespace tpu
