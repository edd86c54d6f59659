// Starting children of the shell, and the pipes that join them to the editor.
#pragma once

#include <sys/types.h>

#include <string>

#include "core/descriptor.h"

namespace tpu {

// Two ends that other children do not inherit.
struct Pipe {
    Descriptor read;
    Descriptor write;

    [[nodiscard]] bool open();
};

// What is read from and written to nowhere; empty when it cannot be opened.
Descriptor open_null_device();

[[nodiscard]] bool set_nonblocking(const Descriptor& descriptor);

// What a child has as its standard three.
struct ChildStreams {
    const Descriptor& in;
    const Descriptor& out;
    const Descriptor& errors;
};

enum class ProcessGroup { ours, its_own };

// Starts the shell on a command line; its process id, or -1. The child finds default
// signals, the editor's environment and, since pipes are none, a dumb terminal.
pid_t spawn_shell(std::string command, const ChildStreams& streams, ProcessGroup group);

}  // namespace tpu
