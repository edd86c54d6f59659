#include "app/options.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>

#include "text/ascii.h"

namespace tpu {

const char* const kUsage =
    "Usage: tpu [OPTION]... [+LINE] [FILE]\n"
    "Edit FILE in a full-screen editor.\n"
    "\n"
    "  +LINE                 start on this line\n"
    "  --command=FILE        run the source in FILE after the start-up file\n"
    "  --section=FILE        restore the section file FILE\n"
    "  --nosection           restore no section file\n"
    "  --                    everything that follows is a file name\n"
    "  --version             print the version and exit\n"
    "  --help                print this and exit\n"
    "\n"
    "Options may be written in any case, the first three with / in place of --.\n";

namespace {

// An option with a value, in both spellings.
struct ValueOption {
    const char* name;
    std::string Options::*value;
};
constexpr ValueOption kValueOptions[] = {
    {"COMMAND", &Options::command_file},
    {"SECTION", &Options::section_file},
};

// "/NAME" and "--NAME" without what marks them as options; else empty.
std::string_view option_name(std::string_view argument) {
    for (std::string_view mark : {"--", "/"}) {
        if (argument.starts_with(mark)) return argument.substr(mark.size());
    }
    return {};
}

// People type absolute paths: one that exists, or that has a second slash.
bool is_absolute_path(const std::string& argument) {
    return argument[0] == '/' &&
           (argument.find('/', 1) != std::string::npos || access(argument.c_str(), F_OK) == 0);
}

bool is_line_number(const std::string& argument) {
    return argument.size() > 1 && argument[0] == '+' &&
           std::all_of(argument.begin() + 1, argument.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
}

// A number too large for the text, and for us, means its last line.
std::uint64_t line_number(const std::string& digits) {
    std::uint64_t line = UINT64_MAX;  // as it stays when the digits make too large a number
    std::from_chars(digits.data(), digits.data() + digits.size(), line);
    return line;
}

class Scan {
  public:
    explicit Scan(const std::vector<std::string>& arguments) : arguments_(arguments) {}

    Options run() {
        for (; next_ < arguments_.size(); ++next_) {
            const std::string& argument = arguments_[next_];
            if (argument.empty()) continue;
            if (only_files_) {
                take_file(argument);
            } else if (!take_option(argument)) {
                take_plain(argument);
            }
        }
        return options_;
    }

  private:
    bool take_option(const std::string& argument) {
        std::string upper = ascii::upper(argument);
        std::string_view name = option_name(upper);
        for (const ValueOption& option : kValueOptions) {
            std::string_view rest = name;
            if (!rest.starts_with(option.name)) continue;
            rest.remove_prefix(std::string_view(option.name).size());
            if (rest.starts_with('=')) {
                options_.*option.value = argument.substr(argument.find('=') + 1);
                return true;
            }
            if (rest.empty()) {
                if (next_ + 1 < arguments_.size()) options_.*option.value = arguments_[++next_];
                return true;
            }
        }
        if (name == "NOSECTION") return options_.section_file.clear(), true;
        if (upper == "--VERSION") return options_.mode = Options::Mode::version, true;
        if (upper == "--HELP") return options_.mode = Options::Mode::help, true;
        if (argument == "--") return only_files_ = true;
        return false;
    }

    void take_plain(const std::string& argument) {
        if (is_line_number(argument)) {
            options_.line = line_number(argument.substr(1));
        } else if (is_absolute_path(argument) || (argument[0] != '-' && argument[0] != '/')) {
            take_file(argument);
        }
    }

    void take_file(const std::string& argument) {
        if (options_.file.empty()) options_.file = argument;
    }

    const std::vector<std::string>& arguments_;
    std::size_t next_ = 0;
    bool only_files_ = false;
    Options options_;
};

}  // namespace

Options Options::parse(const std::vector<std::string>& arguments) {
    return Scan(arguments).run();
}

}  // namespace tpu
