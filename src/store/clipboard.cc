#include "store/clipboard.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>

#include "os/child.h"
#include "os/file_io.h"
#include "os/held_signal.h"

namespace tpu {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char* kWriters[] = {"pbcopy", "wl-copy", "xclip -selection clipboard",
                                    "xsel  --clipboard --input"};
constexpr const char* kReaders[] = {"pbpaste", "wl-paste --no-newline",
                                    "xclip -selection clipboard -o", "xsel  --clipboard --output"};

class Deadline {
  public:
    explicit Deadline(milliseconds wait) : end_(steady_clock::now() + wait) {}
    bool is_over() const { return steady_clock::now() >= end_; }
    // Waits until the descriptor is ready for `events`, or has an error to report.
    // False: time is over.
    bool wait_for(const Descriptor& descriptor, short events) const {
        pollfd wanted{descriptor.get(), events, 0};
        while (true) {
            auto left = std::chrono::ceil<milliseconds>(end_ - steady_clock::now());
            if (left.count() <= 0) return false;
            int ready = poll(&wanted, 1, static_cast<int>(left.count()));
            if (ready != 0 && (ready > 0 || errno != EINTR)) return ready > 0;
        }
    }

  private:
    steady_clock::time_point end_;
};

// A command of the shell. Its complaints, most often that there is no such command,
// are no business of the user's. It can be ended with all that it has started, and does
// not end with the terminal: many a command leaves a process behind that holds the
// selection.
class Command {
  public:
    Command() = default;
    ~Command() { end(); }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    bool start(System& system, const char* line, const Descriptor& in, const Descriptor& out,
               Failure& why) {
        Descriptor nowhere = open_null_device(why);
        if (!nowhere) return false;
        const ChildStreams streams{in ? in : nowhere, out ? out : nowhere, nowhere};
        pid_ = system.start(line, streams, why);
        return pid_ > 0;
    }

    // Waits until it has ended; true when that was with exit status zero.
    bool succeeds(const Deadline& deadline) {
        // What it leaves behind may hold the pipe, which therefore says nothing.
        while (!has_ended()) {
            if (deadline.is_over()) return false;
            std::this_thread::sleep_for(milliseconds(1));
        }
        return WIFEXITED(status_) && WEXITSTATUS(status_) == 0;
    }

  private:
    bool has_ended() {
        if (pid_ <= 0) return true;
        pid_t result = waitpid(pid_, &status_, WNOHANG);
        if (result == 0 || (result < 0 && errno == EINTR)) return false;
        if (result < 0) status_ = -1;  // no child of that number: nobody knows how it ended
        pid_ = -1;
        return true;
    }

    void end() {
        constexpr milliseconds kToDie{100};  // more than enough, unless the system is stuck
        if (has_ended()) return;
        signal_child(pid_, SIGKILL);
        succeeds(Deadline(kToDie));
    }

    pid_t pid_ = -1;
    int status_ = -1;
};

bool send_all(const Descriptor& pipe, std::string_view text, const Deadline& deadline) {
    HeldSignal no_reader(SIGPIPE);
    while (!text.empty()) {
        ssize_t written = write(pipe.get(), text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            if (!deadline.wait_for(pipe, POLLOUT)) return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool receive_all(const Descriptor& pipe, std::string& text, const Deadline& deadline,
                 Failure& why) {
    std::array<char, 65536> chunk;
    while (deadline.wait_for(pipe, POLLIN)) {
        ssize_t count = read_some(pipe.get(), chunk.data(), chunk.size(), why);
        if (count <= 0) return count == 0;
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return false;
}

bool write_through(System& system, const char* line, std::string_view text,
                   const Deadline& deadline) {
    Pipe pipe;
    Command command;
    Failure untold;
    if (!pipe.open(untold) || !set_nonblocking(pipe.write, untold)) return false;
    if (!command.start(system, line, pipe.read, {}, untold)) return false;
    pipe.read.close();
    if (!send_all(pipe.write, text, deadline)) return false;
    pipe.write.close();
    return command.succeeds(deadline);
}

bool read_through(System& system, const char* line, std::string& text, const Deadline& deadline,
                  Failure& why) {
    Pipe pipe;
    Command command;
    text.clear();
    if (!pipe.open(why) || !command.start(system, line, {}, pipe.write, why)) return false;
    pipe.write.close();
    return receive_all(pipe.read, text, deadline, why) && command.succeeds(deadline) &&
           !text.empty();
}

}  // namespace

bool clipboard_write_system(System& system, std::string_view text, milliseconds wait) {
    const Deadline deadline(wait);
    for (const char* line : kWriters) {
        if (write_through(system, line, text, deadline)) return true;
        if (deadline.is_over()) break;
    }
    return false;
}

bool clipboard_read_system(System& system, std::string& text, Failure& why, milliseconds wait) {
    const Deadline deadline(wait);
    why = {};
    for (const char* line : kReaders) {
        if (read_through(system, line, text, deadline, why)) return true;
        if (deadline.is_over()) break;
    }
    text.clear();
    if (deadline.is_over()) return why.note(ETIMEDOUT, "The clipboard did not answer in time");
    if (!why) why.note(ENODATA, "No command gave a text");
    return false;
}

}  // namespace tpu
