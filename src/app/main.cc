#include <langinfo.h>
#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>

#include "app/curses/redirect.h"
#include "app/curses/terminal.h"
#include "app/signals.h"
#include "app/startup.h"
#include "app/test_mode.h"
#include "app/this_system.h"
#include "editor/version.h"
#include "os/fresh_stack.h"
#include "os/short_memory.h"
#include "os/signal_stack.h"

namespace {

// The locale decides what characters look like and nothing else.
tpu::Charset charset_of_locale() {
    std::setlocale(LC_CTYPE, "");
    bool utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    return utf8 ? tpu::Charset::utf8 : tpu::Charset::bytes;
}

// Lets the interpreter use most of the stack that this program has.
void use_roomy_stack() {
    constexpr rlim_t kMost = rlim_t{6} << 20;
    rlimit limit = {};
    if (getrlimit(RLIMIT_STACK, &limit) != 0) return;
    tpu::fresh_stack::set_first_share(std::min(limit.rlim_cur / 4 * 3, kMost));
}

// In the folder for the state of programs, unless that is switched off.
std::string state_file(tpu::System& system, const std::string& file) {
    if (system.variable("TPU_RECOVERY") == "off") return {};
    std::string state = system.variable("XDG_STATE_HOME").value_or("");
    const std::string home = system.variable("HOME").value_or("");
    if (!state.starts_with('/')) state = home.starts_with('/') ? home + "/.local/state" : "";
    return state.empty() ? state : state + "/tpu/" + file;
}

tpu::StartFiles start_files(tpu::System& system) {
    tpu::StartFiles files;
    files.source = system.variable("TPU_STARTUP").value_or("");
    files.home = system.variable("HOME");
    files.recovery_folder = state_file(system, "recovery");
    files.open_files = state_file(system, "open-files");
    return files;
}

// The exit status of a run that only printed.
int flushed() {
    return std::fflush(stdout) == 0 ? 0 : 1;
}

int run(int argc, char** argv) {
    std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    use_roomy_stack();
    signal(SIGCHLD, SIG_DFL);  // who started us may ignore it: then no child has a status
    tpu::SteadyClock clock;
    tpu::ThisSystem system;
    if (arguments.size() >= 2 && arguments[0] == "--test") {
        tpu::Charset charset = charset_of_locale();
        tpu::CursesTerminal terminal(charset);
        return tpu::run_test_script(arguments[1], {terminal, clock, system}, charset);
    }
    tpu::Options options = tpu::Options::parse(arguments);
    if (options.mode == tpu::Options::Mode::version) {
        std::printf("tpu %s\n", tpu::tpu_version_string().c_str());
        return flushed();
    }
    if (options.mode == tpu::Options::Mode::help) {
        std::fputs(tpu::kUsage, stdout);
        return flushed();
    }
    tpu::zk_redirect_tty();
    tpu::SignalStack for_handlers;
    tpu::handle_faults();
    tpu::Charset charset = charset_of_locale();
    tpu::CursesTerminal terminal(charset);
    return tpu::run_session(options, start_files(system), {terminal, clock, system}, charset);
}

}  // namespace

// Once the main loop runs, it goes on where memory is short.
int main(int argc, char** argv) {
    int status = 1;
    if (tpu::enough_memory([&] { status = run(argc, argv); })) return status;
    std::fputs("tpu: out of memory\n", stderr);
    return 1;
}
