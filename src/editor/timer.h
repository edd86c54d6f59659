// A statement that runs again and again.
#pragma once

#include <string>

#include "editor/ports.h"

namespace tpu {

class Timer {
  public:
    int interval = 0;    // milliseconds; 0 or less: it never runs
    std::string action;  // empty: likewise

    bool is_on() const { return interval > 0; }
    bool is_due(Clock& clock) const {
        return is_on() && !action.empty() &&
               clock.now() - since_ >= std::chrono::milliseconds(interval);
    }
    // It is due again an interval from now.
    void start(Clock& clock) { since_ = clock.now(); }

  private:
    Clock::time_point since_;
};

}  // namespace tpu
