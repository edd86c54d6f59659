// The children that run, for the signal handler that ends the program. Process-wide.
#pragma once

#include <sys/types.h>

#include <chrono>

namespace tpu {

// How long children may take to end by themselves when the editor ends.
inline constexpr std::chrono::milliseconds kChildPatience{800};

// From now on until it is forgotten, the child is ended with the program when a signal
// ends that. There is room for a few hundred; beyond that a child is left to notice by
// its closed pipes.
void remember_child(pid_t child);
void forget_child(pid_t child);

}  // namespace tpu
