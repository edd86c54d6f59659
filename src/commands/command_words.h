// The commands of the command line.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tpu {

class TPUEditor;

// A line split at white space, with the line itself.
struct CommandLine {
    std::string line;
    std::vector<std::string> words;

    explicit CommandLine(std::string text);
    // The rest of the line from the first place where word `i` occurs in it.
    std::string_view from_word(std::size_t i) const;
};

struct Command {
    std::string_view name;    // first word, upper case
    std::string_view second;  // second word of a two-word command, else empty
    void (*run)(TPUEditor&, const CommandLine&);
    std::string_view form;  // how it is written
    std::string_view help;  // one sentence
};

// All commands; of two that match a line the first is meant.
std::span<const Command> commands();

// The command that a line calls, or null.
const Command* find_command(const CommandLine& line);

}  // namespace tpu
