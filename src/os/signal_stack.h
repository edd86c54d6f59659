// A stack for signal handlers.
#pragma once

#include <signal.h>

namespace tpu {

// While it lives, the running thread has handlers that ask for it (SA_ONSTACK) run here:
// there is no room for them on a stack that is used up. It may stand at the far end of
// that very stack.
class SignalStack {
  public:
    SignalStack() {
        stack_t mine = {};
        mine.ss_sp = room_;
        mine.ss_size = sizeof room_;
        sigaltstack(&mine, &before_);
    }
    ~SignalStack() { sigaltstack(&before_, nullptr); }
    SignalStack(const SignalStack&) = delete;
    SignalStack& operator=(const SignalStack&) = delete;

  private:
    char room_[64 << 10];
    stack_t before_;
};

}  // namespace tpu
