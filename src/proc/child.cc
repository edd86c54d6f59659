#include "proc/child.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <string_view>
#include <vector>

extern char** environ;

namespace tpu {

namespace {

// The file behind `fd`, which is closed, under a number that children do not inherit
// and that is none of the standard three, as a pipe made without them would have.
Descriptor lifted(int fd) {
    Descriptor low(fd);
    return Descriptor(fcntl(fd, F_DUPFD_CLOEXEC, 3));
}

std::vector<std::string> child_environment() {
    std::vector<std::string> variables{"TERM=dumb"};
    for (char** variable = environ; *variable; ++variable) {
        if (!std::string_view(*variable).starts_with("TERM=")) variables.emplace_back(*variable);
    }
    return variables;
}

// Signals as a program expects them, whatever the editor ignores or blocks.
void set_attributes(posix_spawnattr_t& attributes, ProcessGroup group) {
    sigset_t all, none;
    sigfillset(&all);
    sigdelset(&all, SIGKILL);
    sigdelset(&all, SIGSTOP);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    int flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
    if (group == ProcessGroup::its_own) flags |= POSIX_SPAWN_SETPGROUP;
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, static_cast<short>(flags));
}

}  // namespace

bool Pipe::open() {
    int ends[2];
    if (pipe(ends) != 0) return false;
    read = lifted(ends[0]);
    write = lifted(ends[1]);
    return read && write;
}

Descriptor open_null_device() {
    int fd = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    return fd < 0 ? Descriptor() : lifted(fd);
}

bool set_nonblocking(const Descriptor& descriptor) {
    int flags = fcntl(descriptor.get(), F_GETFL);
    return flags >= 0 && fcntl(descriptor.get(), F_SETFL, flags | O_NONBLOCK) == 0;
}

pid_t spawn_shell(std::string command, const ChildStreams& streams, ProcessGroup group) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, streams.in.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.out.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.errors.get(), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    set_attributes(attributes, group);

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
    return failure == 0 ? pid : -1;
}

}  // namespace tpu
