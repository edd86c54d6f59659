// Starting children of the shell, and the pipes that join them to the editor.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <span>
#include <string>

#include "os/descriptor.h"
#include "os/failure.h"

namespace tpu {

// Two ends that other children do not inherit.
struct Pipe {
    Descriptor read;
    Descriptor write;

    [[nodiscard]] bool open(Failure& why);
};

// What is read from and written to nowhere; empty when it cannot be opened.
Descriptor open_null_device(Failure& why);

[[nodiscard]] bool set_nonblocking(const Descriptor& descriptor, Failure& why);

// What a child has as its standard three.
struct ChildStreams {
    const Descriptor& in;
    const Descriptor& out;
    const Descriptor& errors;
};

// Starts the shell on a command line; its process id, or -1. The child finds default
// signals, the editor's environment and, since pipes are none, a dumb terminal. It
// leads a session of its own: it cannot take the editor's terminal, and all that it
// starts can be signalled through it.
pid_t spawn_shell(std::string command, const ChildStreams& streams, Failure& why);

// Signals a child and all that it has started and that stayed in its group.
void signal_child(pid_t child, int signal);

// Asks running children to end, with all that they have started, and kills what is
// left after `patience`. They are reaped. Fit to run in a signal handler.
void end_children(std::span<const pid_t> children, std::chrono::milliseconds patience);

}  // namespace tpu
