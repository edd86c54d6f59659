// The subprocesses of the session.
#include <algorithm>

#include "editor/editor.h"
#include "editor/process.h"

namespace tpu {

void TPUEditor::poll_processes() {
    // All of them together have one share, or the least that is worth a poll.
    constexpr std::size_t kLeast = 4096;
    std::size_t most = std::max(kLeast, TPUProcess::kPollShare / (processes.size() + 1));
    for (const auto& process : processes) process->poll_output(most);
    for (const auto& process : dismissed_processes_) process->poll_output();
    auto has_ended = [](const auto& process) { return process->pid() < 0; };
    if (attached_process && has_ended(attached_process)) attached_process.reset();
    std::erase_if(processes, has_ended);
    std::erase_if(dismissed_processes_, has_ended);
}

void TPUEditor::dismiss_process(const std::shared_ptr<TPUProcess>& process) {
    if (std::erase(processes, process) == 0) return;
    if (attached_process == process) attached_process.reset();
    process->dismiss();
    dismissed_processes_.push_back(process);
}

void TPUEditor::send_text(TPUProcess& process, std::string_view text) {
    if (!process.send(text)) {
        set_message("SEND: too much waits for the process already; the text was dropped");
    }
}

bool TPUEditor::has_processes() const {
    return !processes.empty() || !dismissed_processes_.empty();
}

bool TPUEditor::processes_talk() const {
    return std::any_of(processes.begin(), processes.end(),
                       [](const auto& process) { return process->is_talking(); });
}

Awaited TPUEditor::awaited_of_processes() const {
    Awaited awaited;
    for (const auto& process : processes) process->await(awaited);
    return awaited;
}

}  // namespace tpu
