// Living without a signal for a while.
#pragma once

#include <csignal>

namespace tpu {

// Lets writes fail that would otherwise end the program.
class IgnoredSignal {
  public:
    explicit IgnoredSignal(int number) : number_(number) {
        struct sigaction ignore = {};
        ignore.sa_handler = SIG_IGN;
        sigaction(number_, &ignore, &before_);
    }
    ~IgnoredSignal() { sigaction(number_, &before_, nullptr); }
    IgnoredSignal(const IgnoredSignal&) = delete;
    IgnoredSignal& operator=(const IgnoredSignal&) = delete;

  private:
    int number_;
    struct sigaction before_ = {};
};

}  // namespace tpu
