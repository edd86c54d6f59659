// Going on with deep recursion on another stack when the running one is nearly used up.
#pragma once

#include <cstddef>

namespace tpu::fresh_stack {

// How much more stack code needs here than it does without sanitizers.
#ifdef TPU_SANITIZE
inline constexpr std::size_t kFrameFactor = 8;
#else
inline constexpr std::size_t kFrameFactor = 1;
#endif

// Bytes that code may use of the stack on which it was entered before it looks for
// another one. A program that knows its own stack's size may raise it.
void set_first_share(std::size_t bytes);

// The address below which a stack that is entered here counts as nearly used up.
const char* first_limit();

inline const char* here() {
    return static_cast<const char*>(__builtin_frame_address(0));
}

// Runs work(argument, limit) on a stack of its own, of which `limit` is the address
// below which it is nearly used up, and waits for it. What is
// thrown there comes out here. False: there is no memory for the stack.
bool run(void (*work)(void* argument, const char* limit), void* argument);

}  // namespace tpu::fresh_stack
