#include "os/child.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <string_view>
#include <vector>

extern char** environ;

namespace tpu {

namespace {

// The file behind `fd`, which is closed, under a number that children do not inherit
// and that is none of the standard three, as a pipe made without them would have.
Descriptor lifted(int fd, Failure& why) {
    if (fd < 0) why.note_errno();
    Descriptor low(fd), high(fd < 0 ? -1 : fcntl(fd, F_DUPFD_CLOEXEC, 3));
    if (low && !high) why.note_errno();
    return high;
}

std::vector<std::string> child_environment() {
    std::vector<std::string> variables{"TERM=dumb"};
    for (char** variable = environ; *variable; ++variable) {
        if (!std::string_view(*variable).starts_with("TERM=")) variables.emplace_back(*variable);
    }
    return variables;
}

// Signals as a program expects them, whatever the editor ignores or blocks.
void set_attributes(posix_spawnattr_t& attributes) {
    sigset_t all, none;
    sigfillset(&all);
    sigdelset(&all, SIGKILL);
    sigdelset(&all, SIGSTOP);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    constexpr int kFlags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID;
    posix_spawnattr_setflags(&attributes, static_cast<short>(kFlags));
}

using std::chrono::milliseconds;

// Reaps. A second look finds no such child any more.
bool any_child_runs(std::span<const pid_t> children) {
    bool any = false;
    for (pid_t child : children) any |= waitpid(child, nullptr, WNOHANG) == 0;
    return any;
}

bool any_group_is_left(std::span<const pid_t> children) {
    auto is_left = [](pid_t child) { return kill(-child, 0) == 0; };
    return std::any_of(children.begin(), children.end(), is_left);
}

// Waits until all have ended, at most for `patience`, and once the children themselves
// have, `more` for what they have started.
void wait_for_end(std::span<const pid_t> children, milliseconds patience, milliseconds more) {
    using Clock = std::chrono::steady_clock;
    Clock::time_point end = Clock::now() + patience;
    for (;;) {
        bool runs = any_child_runs(children);
        if (!runs && !any_group_is_left(children)) return;
        Clock::time_point now = Clock::now();
        if (!runs) end = std::min(end, now + more);
        if (now >= end) return;
        timespec step = {0, 2'000'000};
        nanosleep(&step, nullptr);
    }
}

}  // namespace

bool Pipe::open(Failure& why) {
    int ends[2];
    if (pipe(ends) != 0) return why.note_errno();
    read = lifted(ends[0], why);
    write = lifted(ends[1], why);
    return read && write;
}

Descriptor open_null_device(Failure& why) {
    return lifted(::open("/dev/null", O_RDWR | O_CLOEXEC), why);
}

bool set_nonblocking(const Descriptor& descriptor, Failure& why) {
    int flags = fcntl(descriptor.get(), F_GETFL);
    bool is_set = flags >= 0 && fcntl(descriptor.get(), F_SETFL, flags | O_NONBLOCK) == 0;
    return is_set || why.note_errno();
}

pid_t spawn_shell(std::string command, const ChildStreams& streams, Failure& why) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, streams.in.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.out.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.errors.get(), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    set_attributes(attributes);

    std::string name = "sh", option = "-c";
    char* arguments[] = {name.data(), option.data(), command.data(), nullptr};
    std::vector<std::string> variables = child_environment();
    std::vector<char*> environment;
    for (std::string& variable : variables) environment.push_back(variable.data());
    environment.push_back(nullptr);

    pid_t pid = -1;
    int failure =
        posix_spawn(&pid, "/bin/sh", &actions, &attributes, arguments, environment.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) why.note(failure);
    return failure == 0 ? pid : -1;
}

void signal_child(pid_t child, int signal) {
    kill(-child, signal);
}

void end_children(std::span<const pid_t> children, milliseconds patience) {
    constexpr milliseconds kToFollow{50};
    constexpr milliseconds kToDie{100};  // more than enough, unless the system is stuck
    if (children.empty()) return;
    for (pid_t child : children) signal_child(child, SIGTERM);
    wait_for_end(children, patience, kToFollow);
    for (pid_t child : children) signal_child(child, SIGKILL);
    wait_for_end(children, kToDie, milliseconds(0));
}

}  // namespace tpu
