#include "app/this_system.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "os/child.h"
#include "os/terminal_state.h"

extern char** environ;

namespace tpu {

namespace {

void wake_up(int) {}

// What the terminal sends to all that runs on it concerns the command alone. That it has
// ended, or that we are to end, ends a wait for signals, and comes at no other time.
class Signals {
  public:
    Signals() {
        sigset_t held;
        sigemptyset(&held);
        for (int signal : {SIGCHLD, SIGTERM, SIGHUP, SIGTTOU}) sigaddset(&held, signal);
        pthread_sigmask(SIG_BLOCK, &held, &mask_);
        struct sigaction action = {};
        sigemptyset(&action.sa_mask);
        action.sa_handler = wake_up;
        sigaction(SIGCHLD, &action, &child_);
        action.sa_handler = SIG_IGN;
        sigaction(SIGINT, &action, &interrupt_);
        sigaction(SIGQUIT, &action, &quit_);
    }
    ~Signals() {
        sigaction(SIGQUIT, &quit_, nullptr);
        sigaction(SIGINT, &interrupt_, nullptr);
        sigaction(SIGCHLD, &child_, nullptr);
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    const sigset_t& mask() const { return mask_; }

  private:
    sigset_t mask_;
    struct sigaction child_, interrupt_, quit_;
};

// The process id of a shell that runs the command on our terminal; -1: there is none.
pid_t start_on_terminal(std::string command, const sigset_t& mask, Failure& why) {
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    for (int signal : {SIGINT, SIGQUIT, SIGTTOU}) sigaddset(&defaults, signal);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setsigmask(&attributes, &mask);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::string name = "sh", option = "-c";
    char* arguments[] = {name.data(), option.data(), command.data(), nullptr};
    pid_t pid = -1;
    int failure = posix_spawn(&pid, "/bin/sh", nullptr, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) why.note(failure);
    return failure == 0 ? pid : -1;
}

// Tells the command as a terminal that goes away would, which interactive shells heed too,
// and leaves it a moment.
void hang_up_on(pid_t shell) {
    pid_t front = tcgetpgrp(STDIN_FILENO);
    for (int signal : {SIGHUP, SIGCONT}) {
        kill(shell, signal);
        if (front > 0 && front != getpgrp()) kill(-front, signal);
    }
    timespec moment = {0, 200'000'000};
    while (nanosleep(&moment, &moment) != 0) {
    }
}

}  // namespace

// As system(3); but a signal that asks for our end ends the wait.
int ThisSystem::run(const std::string& command, Failure& why) {
    const bool has_terminal = tcgetpgrp(STDIN_FILENO) == getpgrp();
    Signals signals;
    pid_t pid = start_on_terminal(command, signals.mask(), why);
    int status = -1;
    while (pid > 0 && waitpid(pid, &status, WNOHANG) == 0) {
        if (end_requested()) {
            hang_up_on(pid);
            break;
        }
        sigsuspend(&signals.mask());
    }
    // A shell may have taken it, and not given it back.
    if (has_terminal) tcsetpgrp(STDIN_FILENO, getpgrp());
    return status;
}

pid_t ThisSystem::start(std::string command, const ChildStreams& streams, Failure& why) {
    return spawn_shell(std::move(command), streams, why);
}

std::time_t ThisSystem::time() {
    return std::time(nullptr);
}

std::tm ThisSystem::local_time(std::time_t time) {
    std::tm local = {};
    localtime_r(&time, &local);
    return local;
}

std::optional<std::string> ThisSystem::variable(const char* name) {
    const char* value = std::getenv(name);
    if (!value) return std::nullopt;
    return value;
}

}  // namespace tpu
