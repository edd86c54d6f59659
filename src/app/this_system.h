// The system that the program runs on.
#pragma once

#include "os/system.h"

namespace tpu {

class ThisSystem : public System {
  public:
    int run(const std::string& command, Failure& why) override;
    pid_t start(std::string command, const ChildStreams& streams, Failure& why) override;
    std::time_t time() override;
    std::tm local_time(std::time_t time) override;
    std::optional<std::string> variable(const char* name) override;
};

}  // namespace tpu
