// Writing to where a signal would be the answer to a failure.
#pragma once

#include <signal.h>

namespace tpu {

// Holds a signal back from this thread, and takes it away if it came meanwhile. What the
// process does about the signal stays as it is.
class HeldSignal {
  public:
    explicit HeldSignal(int number);
    ~HeldSignal();
    HeldSignal(const HeldSignal&) = delete;
    HeldSignal& operator=(const HeldSignal&) = delete;

  private:
    bool is_pending() const;

    int number_;
    sigset_t set_;
    sigset_t old_mask_;
    bool was_pending_;
};

}  // namespace tpu
