#include "editor/processes.h"

#include <algorithm>

#include "editor/process.h"

namespace tpu {

void Processes::poll() {
    // All of them together have one share, or the least that is worth a poll.
    constexpr std::size_t kLeast = 4096;
    std::size_t most = std::max(kLeast, TPUProcess::kPollShare / (running.size() + 1));
    for (const auto& process : running) process->poll_output(most);
    for (const auto& process : dismissed_) process->poll_output();
    auto has_ended = [](const auto& process) { return process->pid() < 0; };
    if (attached && has_ended(attached)) attached.reset();
    std::erase_if(running, has_ended);
    std::erase_if(dismissed_, has_ended);
}

bool Processes::talk() const {
    return std::any_of(running.begin(), running.end(),
                       [](const auto& process) { return process->is_talking(); });
}

Awaited Processes::awaited() const {
    Awaited awaited;
    for (const auto& process : running) process->await(awaited);
    return awaited;
}

void Processes::dismiss(const std::shared_ptr<TPUProcess>& process) {
    if (std::erase(running, process) == 0) return;
    if (attached == process) attached.reset();
    process->dismiss();
    dismissed_.push_back(process);
}

void Processes::end_all() const {
    std::vector<std::shared_ptr<TPUProcess>> all = running;
    all.insert(all.end(), dismissed_.begin(), dismissed_.end());
    TPUProcess::end_all(all);
}

}  // namespace tpu
