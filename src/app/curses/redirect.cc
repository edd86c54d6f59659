#include "app/curses/redirect.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <initializer_list>

namespace tpu {

namespace {

bool tty_redirected = false;
TerminalStreams redirected{nullptr, nullptr};

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    _exit(1);
}

int open_terminal(const char* path) {
    int descriptor = open(path, O_RDWR | O_NOCTTY);
    if (descriptor < 0) fail("ZK_TTY open failed");
    if (!isatty(descriptor)) {
        std::fprintf(stderr, "ZK_TTY is not a TTY: %s\n", path);
        close(descriptor);
        _exit(1);
    }
    return descriptor;
}

void make_standard(int descriptor) {
    for (int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (dup2(descriptor, standard) < 0) fail("ZK_TTY dup2 failed");
    }
    if (descriptor > STDERR_FILENO) close(descriptor);
    // A process that leads no session keeps its controlling terminal, if any.
    ioctl(STDIN_FILENO, TIOCSCTTY, 0);
}

void open_streams() {
    int input = dup(STDIN_FILENO);
    int output = dup(STDOUT_FILENO);
    if (input < 0 || output < 0) fail("ZK_TTY dup stream failed");
    // Children use the standard descriptors and need none of these.
    fcntl(input, F_SETFD, FD_CLOEXEC);
    fcntl(output, F_SETFD, FD_CLOEXEC);
    redirected = {fdopen(input, "r+"), fdopen(output, "w+")};
    if (!redirected.input || !redirected.output) fail("ZK_TTY fdopen failed");
    for (std::FILE* stream : {redirected.input, redirected.output, stderr}) {
        std::setvbuf(stream, nullptr, _IONBF, 0);
    }
}

}  // namespace

void zk_redirect_tty() {
    const char* path = std::getenv("ZK_TTY");
    if (!path || !*path) return;
    make_standard(open_terminal(path));
    open_streams();
    const char* type = std::getenv("TERM");
    if (!type || !*type) setenv("TERM", "xterm-256color", 1);
    tty_redirected = true;
}

TerminalStreams terminal_streams() {
    return tty_redirected ? redirected : TerminalStreams{stdin, stdout};
}

void close_redirected_streams() {
    if (!tty_redirected) return;
    std::fclose(redirected.input);
    std::fclose(redirected.output);
    tty_redirected = false;
}

}  // namespace tpu
