#include "app/curses/terminal.h"

#define NCURSES_NOMACROS 1
#include <curses.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <term.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "app/curses/key_table.h"
#include "app/signals.h"
#include "os/terminal_state.h"

namespace tpu {

namespace {

// What the signal handler needs to give the screen back.
int output_descriptor = STDOUT_FILENO;

// Past curses, so that the signal handler can do it too.
void write_all(std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t count = write(output_descriptor, bytes.data(), bytes.size());
        if (count <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

// A mode of the terminal that curses does not know.
struct Mode {
    std::string_view on, off;
    volatile sig_atomic_t is_on = 0;

    void set(bool wanted) {
        if (wanted == (is_on != 0)) return;
        is_on = true;  // before it is, lest a signal leaves it on
        write_all(wanted ? on : off);
        is_on = wanted;
    }
};

// Curses' own work: `off` is what it would send at its end, which a signal handler must
// not let it do, since it may have been interrupted anywhere.
std::string end_of_screen;
Mode full_screen{"", ""};
Mode bracketed_paste{"\033[?2004h", "\033[?2004l"};
// Buttons, reported with decimal numbers where the terminal can do that.
Mode mouse_reports{"\033[?1000h\033[?1006h", "\033[?1006l\033[?1000l"};

void switch_modes_off() {
    mouse_reports.set(false);
    bracketed_paste.set(false);
}

// Curses takes these calls before it is started and after it has ended.
void end_screen() {
    if (!isendwin()) endwin();
    full_screen.is_on = false;
    switch_modes_off();
}

// The same in a signal handler.
void abandon_screen() {
    full_screen.set(false);
    switch_modes_off();
}

int add_to_end(int byte) {
    end_of_screen += static_cast<char>(byte);
    return byte;
}

std::string terminal_type() {
    const char* type = std::getenv("TERM");
    return type && *type ? type : "xterm-256color";
}

const char* capability(const char* name) {
    const char* value = tigetstr(name);
    return value == reinterpret_cast<char*>(-1) ? nullptr : value;
}

// The attributes, the last row, and the screen and keys of before.
void compose_end_of_screen() {
    end_of_screen.clear();
    auto add = [](const char* text) {
        if (text) tputs(text, 1, add_to_end);
    };
    for (const char* name : {"sgr0", "op"}) add(capability(name));
    add(tiparm(capability("cup"), LINES - 1, 0));
    for (const char* name : {"rmcup", "cnorm", "rmkx"}) add(capability(name));
    full_screen.off = end_of_screen;
}

// Descriptions are often older than the terminal: these families can bracket pastes
// and report the mouse anyway.
bool is_of_modern_family(std::string_view type) {
    constexpr std::string_view kFamilies[] = {
        "alacritty", "foot", "kitty", "konsole", "rxvt",  "screen",
        "st",        "tmux", "vte",   "wezterm", "xterm",
    };
    std::string_view family = type.substr(0, type.find_first_of("-."));
    for (std::string_view name : kFamilies) {
        if (family == name) return true;
    }
    return false;
}

// The signals that end the session. What they did before is kept, in case the
// screen cannot be started.
class EndingSignals {
  public:
    void install() {
        for (Saved& saved : saved_) {
            struct sigaction action = {};
            action.sa_handler = saved.handler;
            action.sa_flags = SA_RESTART;
            sigemptyset(&action.sa_mask);
            for (const Saved& other : saved_) sigaddset(&action.sa_mask, other.signal);
            sigaction(saved.signal, &action, &saved.action);
        }
    }
    void put_back() const {
        for (const Saved& saved : saved_) sigaction(saved.signal, &saved.action, nullptr);
    }

  private:
    struct Saved {
        int signal;
        void (*handler)(int);
        struct sigaction action;
    };
    Saved saved_[4] = {{SIGINT, terminal_signal_handler, {}},
                       {SIGTERM, terminal_signal_handler, {}},
                       {SIGHUP, terminal_signal_handler, {}},
                       {SIGALRM, terminal_timer_handler, {}}};
};

void set_modes() {
    raw();
    noecho();
    keypad(stdscr, true);
    nonl();
    intrflush(stdscr, false);
    curs_set(1);
    clear();
    refresh();
    signal(SIGTSTP, SIG_IGN);
    signal(SIGTTOU, SIG_IGN);  // a shell of the user's may have the terminal when we end
    leaveok(stdscr, false);
    typeahead(-1);  // what is drawn is drawn whole
}

}  // namespace

CursesTerminal::~CursesTerminal() {
    if (screen_) {
        painter_.close();
        end_screen();
        set_screen_ender(nullptr);
        restore_terminal_state();
        delscreen(screen_);
    }
    close_redirected_streams();
}

std::string CursesTerminal::start() {
    TerminalStreams streams = terminal_streams();
    if (!isatty(fileno(streams.input))) return "tpu: standard input is not a terminal";
    if (!isatty(fileno(streams.output))) return "tpu: standard output is not a terminal";
    std::string type = terminal_type();
    save_terminal_state();
    output_descriptor = fileno(streams.output);
    EndingSignals signals;
    set_screen_ender(abandon_screen);
    signals.install();
    std::string error = start_curses(type, streams);
    if (!error.empty()) {
        set_screen_ender(nullptr);
        signals.put_back();
        return error;
    }
    compose_end_of_screen();
    full_screen.set(true);
    keyboard_.open(fileno(streams.input), terminal_keys, charset_);
    set_modes();
    setenv("TERM", type.c_str(), 1);  // for children
    getmaxyx(stdscr, size_.rows, size_.cols);
    painter_.open(size_.rows, size_.cols);
    brackets_pastes_ = capability("BE") || is_of_modern_family(type);
    has_mouse_ = capability("kmous") || is_of_modern_family(type);
    switch_modes();
    return {};
}

// By newterm: unlike initscr, it neither prints nor exits when it fails.
std::string CursesTerminal::start_curses(const std::string& type, TerminalStreams streams) {
    screen_ = newterm(type.c_str(), streams.output, streams.input);
    if (!screen_) return "newterm() failed for TERM=" + type;
    set_term(screen_);
    if (capability("cup")) return {};
    // Curses would go on, and fill the screen with blanks and line feeds.
    reset_shell_mode();
    delscreen(screen_);
    screen_ = nullptr;
    return "tpu: a terminal of type " + type + " cannot place its cursor";
}

void CursesTerminal::present(const Frame& frame) {
    if (screen_) painter_.present(frame);
}

Event CursesTerminal::read(int wait_ms, const Awaited& others) {
    if (!screen_) return {Event::Kind::hang_up};
    Event event = keyboard_.read(wait_ms, others);
    if (event.kind == Event::Kind::resize) resize();
    return event;
}

void CursesTerminal::resize() {
    winsize cells = {};
    if (ioctl(output_descriptor, TIOCGWINSZ, &cells) == 0 && cells.ws_row > 0 && cells.ws_col > 0) {
        resizeterm(cells.ws_row, cells.ws_col);
    }
    getmaxyx(stdscr, size_.rows, size_.cols);
    painter_.open(size_.rows, size_.cols);
    clearok(curscr, true);  // the terminal may have moved what it showed
}

void CursesTerminal::beep() {
    if (screen_) ::beep();
}

void CursesTerminal::leave() {
    if (!screen_) return;
    def_prog_mode();
    end_screen();
}

void CursesTerminal::enter() {
    if (!screen_) return;
    full_screen.set(true);
    reset_prog_mode();
    wrefresh(curscr);
    switch_modes();
}

void CursesTerminal::set_mouse(bool on) {
    mouse_wanted_ = on;
    if (screen_) switch_modes();
}

void CursesTerminal::switch_modes() {
    bracketed_paste.set(brackets_pastes_);
    mouse_reports.set(mouse_wanted_ && has_mouse_);
}

}  // namespace tpu
