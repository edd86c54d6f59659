#include "proc/process.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <thread>
#include <utility>

#include "core/buffer.h"
#include "core/held_signal.h"
#include "proc/child.h"

namespace tpu {

namespace {

// Most bytes that one poll delivers, so that a child which never stops writing
// leaves the editor time for keys.
constexpr std::size_t kMostPerPoll = 1 << 20;

constexpr std::size_t kMostUnsent = 16 << 20;

}  // namespace

TPUProcess::~TPUProcess() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    reap();
}

bool TPUProcess::start(const std::string& command_line, Buffer* output_buffer) {
    assert(pid_ < 0 && !output_);
    command = command_line;
    output = output_buffer;
    Pipe to_child, from_child;
    if (!to_child.open() || !from_child.open()) return false;
    if (!set_nonblocking(to_child.write) || !set_nonblocking(from_child.read)) return false;
    const Descriptor& out = from_child.write;
    pid_ = spawn_shell(command, {to_child.read, out, out}, ProcessGroup::ours);
    if (pid_ < 0) return false;
    input_ = std::move(to_child.write);
    output_ = std::move(from_child.read);
    return true;
}

bool TPUProcess::send(std::string_view text) {
    if (input_closed_ || !input_) return true;
    if (unsent_.size() + text.size() > kMostUnsent) return false;
    unsent_ += text;
    flush_input();
    return true;
}

void TPUProcess::send_eof() {
    input_closed_ = true;
    flush_input();
}

// Hands over as much input as the pipe takes at once. To wait for more room could be
// for ever: the child may itself be waiting for its output to be read.
void TPUProcess::flush_input() {
    if (!input_) return;
    if (!unsent_.empty()) write_unsent();
    if (unsent_.empty() && input_closed_) input_.close();
}

void TPUProcess::write_unsent() {
    HeldSignal no_reader(SIGPIPE);
    while (!unsent_.empty()) {
        ssize_t written = write(input_.get(), unsent_.data(), unsent_.size());
        if (written >= 0) {
            unsent_.erase(0, static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            unsent_.clear();  // nobody will read it
        }
    }
}

void TPUProcess::deliver(std::string_view text) {
    if (!output) return;
    bool modifiable = std::exchange(output->modifiable, true);
    output->copy_text(text);
    output->modifiable = modifiable;
}

// Reads what is there now, within the share of one poll. False when that is used up.
bool TPUProcess::collect_output() {
    std::array<char, 16384> chunk;
    for (std::size_t total = 0; output_ && total < kMostPerPoll;) {
        flush_input();  // what was read may have made room for more input
        ssize_t count = read(output_.get(), chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return true;
        total += static_cast<std::size_t>(count);
        deliver({chunk.data(), static_cast<std::size_t>(count)});
    }
    return !output_;
}

// True when the child has ended just now.
bool TPUProcess::reap() {
    if (pid_ <= 0) return false;
    pid_t result = waitpid(pid_, nullptr, WNOHANG);
    if (result == 0 || (result < 0 && errno == EINTR)) return false;
    pid_ = -1;  // an error says that there is no such child any more
    return true;
}

void TPUProcess::end_all(const std::vector<std::shared_ptr<TPUProcess>>& processes,
                         std::chrono::milliseconds patience) {
    using Clock = std::chrono::steady_clock;
    for (const auto& process : processes) {
        if (process->pid_ > 0) kill(process->pid_, SIGTERM);
    }
    auto all_ended = [&] {
        return std::all_of(processes.begin(), processes.end(), [](const auto& process) {
            return process->pid_ <= 0 || process->reap();
        });
    };
    for (Clock::time_point end = Clock::now() + patience; !all_ended();) {
        if (Clock::now() >= end) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    for (const auto& process : processes) {
        if (process->pid_ <= 0) continue;
        kill(process->pid_, SIGKILL);
        waitpid(process->pid_, nullptr, 0);
        process->pid_ = -1;
    }
}

bool TPUProcess::poll_output() {
    // Once the child is known to have ended, its last words are in the pipe.
    if (collect_output() && reap()) collect_output();
    return pid_ > 0;
}

}  // namespace tpu
