#include <langinfo.h>

#include <clocale>
#include <cstdio>
#include <cstring>

#include "app/redirect.h"
#include "app/startup.h"
#include "app/version.h"
#include "editor/curses/terminal.h"

namespace {

// The locale decides what characters look like and nothing else.
tpu::Charset charset_of_locale() {
    std::setlocale(LC_CTYPE, "");
    bool utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    return utf8 ? tpu::Charset::utf8 : tpu::Charset::bytes;
}

// The exit status of a run that only printed.
int flushed() {
    return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (arguments.size() >= 2 && arguments[0] == "--test") {
        std::fprintf(stderr, "tpu --test: this version cannot run scripts yet\n");
        return 2;
    }
    tpu::Options options = tpu::Options::parse(arguments);
    if (options.mode == tpu::Options::Mode::version) {
        std::printf("tpu %s\n", tpu::kVersion);
        return flushed();
    }
    if (options.mode == tpu::Options::Mode::help) {
        std::fputs(tpu::kUsage, stdout);
        return flushed();
    }
    tpu::zk_redirect_tty();
    tpu::Charset charset = charset_of_locale();
    tpu::CursesTerminal terminal;
    tpu::SteadyClock clock;
    return tpu::run_session(options, {terminal, clock}, charset);
}
