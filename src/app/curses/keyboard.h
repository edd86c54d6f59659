// Keys from a terminal's descriptor, with time limits.
#pragma once

#include <chrono>

#include "app/curses/key_decoder.h"
#include "os/descriptor.h"

namespace tpu {

// Reads the descriptor itself, in large pieces, since the line of keys that curses
// keeps takes a system call for each byte. Also notices that the screen has
// changed its size, and takes a signal that asks for the end for a terminal that hangs up.
class Keyboard {
  public:
    // Reads from this descriptor from now on. `keys` is asked what the terminal's
    // keys send when the first bytes have come, which is after the first picture.
    // `charset`: of what is typed.
    void open(int descriptor, std::vector<KeySequence> (*keys)(), Charset charset);

    // As Terminal does; a resize is told once for each change.
    Event read(int wait_ms, const Awaited& others);
    bool key_waiting();
    bool interrupt_waiting();

  private:
    using SteadyTime = std::chrono::steady_clock::time_point;

    Event next();
    int patience() const;
    void look_for_end();
    bool fill(int wait_ms, const Awaited& others = {});
    bool wait_for_input(int wait_ms, const Awaited& others = {});
    void read_input();
    void take(std::string_view bytes);

    int descriptor_ = -1;
    std::vector<KeySequence> (*keys_)() = nullptr;  // until they have been asked for
    Charset charset_ = Charset::bytes;
    KeyDecoder decoder_;
    Event ahead_;            // found by key_waiting()
    std::size_t unfed_ = 0;  // bytes that were read, but not taken for want of memory
    bool hung_up_ = false;
    bool others_ready_ = false;  // after wait_for_input()
    SteadyTime last_input_;      // but for what may be no part of the paste that is open
};

}  // namespace tpu
