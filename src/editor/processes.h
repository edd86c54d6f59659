// The subprocesses of a session.
#pragma once

#include <memory>
#include <vector>

#include "os/descriptor.h"

namespace tpu {

class TPUProcess;

class Processes {
  public:
    std::vector<std::shared_ptr<TPUProcess>> running;  // in the order in which they were started
    std::shared_ptr<TPUProcess> attached;              // gets the keys while set

    // True when poll() has something to do, also for such as have been asked to end.
    bool any() const { return !running.empty() || !dismissed_.empty(); }
    // Takes what they have written since, a share of each, and forgets those that have ended.
    void poll();
    bool talk() const;        // the last poll has found output
    Awaited awaited() const;  // what makes it worth while to poll again
    // Asks it to end; afterwards the session has no such process.
    void dismiss(const std::shared_ptr<TPUProcess>& process);
    // Asks all of them to end, and kills those that have not after a while.
    void end_all() const;

  private:
    std::vector<std::shared_ptr<TPUProcess>> dismissed_;  // until they have ended
};

}  // namespace tpu
