#include "pty/pty_session.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "text/charset.h"

namespace tpu {

namespace {

constexpr int kWait = 10;  // milliseconds between looks at what does not wake us
constexpr std::chrono::seconds kPatience(20);

const char* program() {
    const char* path = std::getenv("TPU_PROGRAM");
    return path ? path : TPU_PROGRAM;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

winsize window_size(int rows, int cols) {
    winsize size = {};
    size.ws_row = static_cast<unsigned short>(rows);
    size.ws_col = static_cast<unsigned short>(cols);
    return size;
}

}  // namespace

PtySession::PtySession(int rows, int cols)
    : rows_(rows), cols_(cols), vterm_(vterm_new(rows, cols)) {
    std::string pattern = std::filesystem::temp_directory_path() / "pty-session-XXXXXX";
    home_ = mkdtemp(pattern.data());
    environment = {{"PATH", "/usr/bin:/bin"},
                   {"HOME", home_},
                   {"TERM", "xterm-256color"},
                   {"LC_ALL", "C.UTF-8"}};
    master_ = posix_openpt(O_RDWR | O_NOCTTY);
    grantpt(master_);
    unlockpt(master_);
    terminal_name_ = ptsname(master_);
    slave_ = open(terminal_name_.c_str(), O_RDWR | O_NOCTTY);
    fcntl(master_, F_SETFD, FD_CLOEXEC);
    fcntl(slave_, F_SETFD, FD_CLOEXEC);
    winsize size = window_size(rows, cols);
    ioctl(master_, TIOCSWINSZ, &size);
    vterm_set_utf8(vterm_, 1);
    VTermScreen* screen = vterm_obtain_screen(vterm_);
    vterm_screen_enable_altscreen(screen, 1);
    vterm_screen_reset(screen, 1);
}

PtySession::~PtySession() {
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    if (master_ >= 0) close(master_);
    close(slave_);
    vterm_free(vterm_);
    std::filesystem::remove_all(home_);
}

void PtySession::start(std::vector<std::string> arguments, const std::string& input) {
    arguments.insert(arguments.begin(), program());
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment) variables.push_back(name + "=" + value);
    child_ = fork();
    if (child_ != 0) return;
    run_program(pointers(arguments).data(), pointers(variables).data(), input);
    _exit(126);
}

// In the child.
void PtySession::run_program(char* const* arguments, char* const* variables,
                             const std::string& input) {
    setsid();
    ioctl(slave_, TIOCSCTTY, 0);
    int in = input.empty() ? slave_ : open(input.c_str(), O_RDONLY);
    int errors = open(path("standard-error").c_str(), O_WRONLY | O_CREAT, 0600);
    dup2(in, STDIN_FILENO);
    dup2(slave_, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    if (chdir(home_.c_str()) == 0) execve(arguments[0], arguments, variables);
}

void PtySession::edit(const std::string& name, const std::string& text) {
    write(name, text);
    start({name});
    ASSERT_TRUE(shows("INSERT")) << screen() << errors();
}

void PtySession::type(std::string_view bytes) {
    while (!bytes.empty()) {
        pollfd ready = {master_, POLLIN | POLLOUT, 0};
        poll(&ready, 1, kWait);
        if (ready.revents & POLLIN) take_output(0);
        if (!(ready.revents & POLLOUT)) continue;
        ssize_t count = ::write(master_, bytes.data(), std::min<std::size_t>(bytes.size(), 1024));
        if (count < 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void PtySession::type_unseen(std::string_view bytes) {
    EXPECT_EQ(::write(master_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

void PtySession::resize(int rows, int cols) {
    rows_ = rows;
    cols_ = cols;
    vterm_set_size(vterm_, rows, cols);
    winsize size = window_size(rows, cols);
    ioctl(master_, TIOCSWINSZ, &size);
}

void PtySession::send_signal(int signal) {
    kill(child_, signal);
}

void PtySession::hang_up() {
    close(master_);
    master_ = -1;
}

// Shows what has been written to the terminal. True when it was something.
bool PtySession::take_output(int wait_ms) {
    pollfd ready = {master_, POLLIN, 0};
    if (poll(&ready, 1, wait_ms) <= 0 || !(ready.revents & POLLIN)) return false;
    char bytes[4096];
    ssize_t count = ::read(master_, bytes, sizeof bytes);
    if (count <= 0) return false;
    auto size = static_cast<std::size_t>(count);
    output_.append(bytes, size);
    vterm_input_write(vterm_, bytes, size);
    return true;
}

bool PtySession::eventually(const std::function<bool()>& holds) {
    auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        take_output(kWait);
    }
    return true;
}

bool PtySession::shows(std::string_view text) {
    return eventually([&] { return screen().find(text) != std::string::npos; });
}

bool PtySession::shows(int place, std::string_view text) {
    return eventually([&] { return row(place) == text; });
}

bool PtySession::has_cursor_at(int row, int col) {
    return eventually([&] {
        VTermPos place = {};
        vterm_state_get_cursorpos(vterm_obtain_state(vterm_), &place);
        return place.row == row && place.col == col;
    });
}

bool PtySession::ends_unseen() {
    auto deadline = std::chrono::steady_clock::now() + kPatience;
    siginfo_t ended = {};
    do {
        poll(nullptr, 0, kWait);
        waitid(P_PID, static_cast<id_t>(child_), &ended, WEXITED | WNOHANG | WNOWAIT);
    } while (ended.si_pid == 0 && std::chrono::steady_clock::now() < deadline);
    return ended.si_pid != 0;
}

int PtySession::exit_status() {
    int status = -1;
    if (!eventually([&] { return waitpid(child_, &status, WNOHANG) == child_; })) return -1;
    child_ = -1;
    while (take_output(0)) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

VTermScreenCell PtySession::cell(int row, int col) const {
    VTermScreenCell cell = {};
    vterm_screen_get_cell(vterm_obtain_screen(vterm_), {row, col}, &cell);
    return cell;
}

std::string PtySession::row(int row) const {
    std::string text;
    for (int col = 0; col < cols_; ++col) {
        VTermScreenCell shown = cell(row, col);
        if (shown.chars[0] == static_cast<std::uint32_t>(-1)) continue;  // right half
        if (shown.chars[0] == 0) text += ' ';
        for (int i = 0; i < VTERM_MAX_CHARS_PER_CELL && shown.chars[i]; ++i) {
            text += encode_utf8(shown.chars[i]);
        }
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string PtySession::screen() const {
    std::string text;
    for (int i = 0; i < rows_; ++i) text += row(i) + "|\n";
    return text;
}

bool PtySession::is_reverse(int row, int col) const {
    return cell(row, col).attrs.reverse;
}

termios PtySession::attributes() const {
    termios result = {};
    tcgetattr(slave_, &result);
    return result;
}

void PtySession::write(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
}

std::string PtySession::read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(path(name), std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace tpu
