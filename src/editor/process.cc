#include "editor/process.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <utility>

#include "buffer/buffer.h"
#include "os/child.h"
#include "os/held_signal.h"
#include "os/running_children.h"
#include "os/short_memory.h"

namespace tpu {

namespace {

constexpr std::size_t kMostUnsent = 16 << 20;

// The most that a pipe holds, whatever the child has made of it.
constexpr std::size_t kLargestPipe = 1 << 20;

}  // namespace

TPUProcess::~TPUProcess() {
    if (pid_ <= 0) return;
    signal_child(pid_, SIGTERM);
    if (!reap()) has_ended();
}

bool TPUProcess::start(System& system, const std::string& command_line, Buffer* output_buffer,
                       Failure& why, Charset charset) {
    assert(pid_ < 0 && !output_);
    command = command_line;
    output = output_buffer;
    charset_ = charset;
    Pipe to_child, from_child;
    if (!to_child.open(why) || !from_child.open(why)) return false;
    if (!set_nonblocking(to_child.write, why) || !set_nonblocking(from_child.read, why)) {
        return false;
    }
    const Descriptor& out = from_child.write;
    pid_ = system.start(command, {to_child.read, out, out}, why);
    if (pid_ < 0) return false;
    remember_child(pid_);
    input_ = std::move(to_child.write);
    output_ = std::move(from_child.read);
    return true;
}

bool TPUProcess::send(std::string_view text) {
    if (input_closed_ || !input_) return true;
    if (unsent_.size() - sent_ + text.size() > kMostUnsent) return false;
    unsent_ += text;
    flush_input();
    return true;
}

void TPUProcess::send_eof() {
    input_closed_ = true;
    flush_input();
}

void TPUProcess::dismiss() {
    output = nullptr;
    input_.close();
    output_.close();
    if (pid_ > 0) signal_child(pid_, SIGTERM);
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
    while (sent_ < unsent_.size()) {
        ssize_t written = write(input_.get(), unsent_.data() + sent_, unsent_.size() - sent_);
        if (written >= 0) {
            sent_ += static_cast<std::size_t>(written);
        } else if (errno == EAGAIN) {
            break;
        } else if (errno != EINTR) {
            sent_ = unsent_.size();  // nobody will read it
        }
    }
    if (sent_ < unsent_.size() / 2) return;
    unsent_.erase(0, sent_);
    sent_ = 0;
}

void TPUProcess::deliver(std::string_view text) {
    if (!output || text.empty()) return;
    const Buffer::State before = output->state();
    bool modifiable = std::exchange(output->modifiable, true);
    bool done = enough_memory([&] { output->copy_text(text, charset_); });
    output->modifiable = modifiable;
    if (done) return;
    output->put_back(before);
    throw std::bad_alloc();
}

// Reads what is there now. False when `most` bytes have come and there may be more.
bool TPUProcess::read_output(std::string& text, std::size_t most) {
    std::array<char, 16384> chunk;
    for (std::size_t total = 0; output_ && total < most;) {
        flush_input();  // what was read may have made room for more input
        ssize_t count = read(output_.get(), chunk.data(), std::min(chunk.size(), most - total));
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) output_.close();  // lest its end is awaited again and again
        if (count <= 0) return true;
        total += static_cast<std::size_t>(count);
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return !output_;
}

// True when the child has ended just now.
bool TPUProcess::reap() {
    if (pid_ <= 0) return false;
    pid_t result = waitpid(pid_, nullptr, WNOHANG);
    if (result == 0 || (result < 0 && errno == EINTR)) return false;
    has_ended();  // an error says that there is no such child any more
    return true;
}

void TPUProcess::has_ended() {
    forget_child(pid_);
    pid_ = -1;
}

void TPUProcess::end_all(const std::vector<std::shared_ptr<TPUProcess>>& processes) {
    std::vector<pid_t> children;
    for (const auto& process : processes) {
        if (process->pid_ > 0) children.push_back(process->pid_);
    }
    end_children(children, kChildPatience);
    for (const auto& process : processes) {
        if (process->pid_ > 0) process->has_ended();
    }
}

bool TPUProcess::poll_output(std::size_t most) {
    flush_input();
    std::string& text = undelivered_;
    std::size_t before = text.size();
    talking_ = true;  // for those that memory is too short for: they are not to ask at once again
    // Once the child is known to have ended, its last words are in the pipe.
    bool ended = before < most && read_output(text, most) && reap();
    if (ended) read_output(text, kLargestPipe);
    bool may_be_cut = pid_ > 0 && charset_ == Charset::utf8;
    std::size_t whole = text.size() - (may_be_cut ? cut_character(text) : 0);
    std::string rest = text.substr(whole);
    deliver(std::string_view(text).substr(0, whole));
    talking_ = text.size() > before;
    text.swap(rest);
    return pid_ > 0;
}

void TPUProcess::await(Awaited& awaited) const {
    if (output_) awaited.readable.push_back(output_.get());
    if (input_ && !unsent_.empty()) awaited.writable.push_back(input_.get());
}

}  // namespace tpu
