#include "commands/command_words.h"

#include <sstream>

#include "core/ascii.h"

namespace tpu {

CommandLine::CommandLine(std::string text) : line(std::move(text)) {
    std::istringstream stream(line);
    for (std::string word; stream >> word;) words.push_back(word);
}

std::string_view CommandLine::from_word(std::size_t i) const {
    return i < words.size() ? std::string_view(line).substr(line.find(words[i])) : "";
}

const Command* find_command(const CommandLine& line) {
    if (line.words.empty()) return nullptr;
    std::string name = ascii::upper(line.words[0]);
    std::string second = line.words.size() > 1 ? ascii::upper(line.words[1]) : "";
    for (const Command& command : commands()) {
        if (command.name != name) continue;
        if (command.second.empty() || command.second == second) return &command;
    }
    return nullptr;
}

}  // namespace tpu
