// The system around the program, as those see it who ask for more than files: handed in, so
// that tests can be it.
#pragma once

#include <sys/types.h>

#include <ctime>
#include <optional>
#include <string>

namespace tpu {

struct ChildStreams;
struct Failure;

class System {
  public:
    virtual ~System() = default;

    // Runs a command line of the shell, which has our terminal to itself, and waits for its
    // end or for a signal that asks for ours. The raw wait status; -1: it could not be run.
    virtual int run(const std::string& command, Failure& why) = 0;
    // Starts the shell on a command line, see spawn_shell. Its process id, or -1.
    virtual pid_t start(std::string command, const ChildStreams& streams, Failure& why) = 0;

    // Seconds since the epoch, and what calendar and clock of the user say then.
    virtual std::time_t time() = 0;
    virtual std::tm local_time(std::time_t time) = 0;

    // Of the environment; nothing when it is not set.
    virtual std::optional<std::string> variable(const char* name) = 0;
};

}  // namespace tpu
