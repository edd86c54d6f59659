#include "help_blocks.h"

namespace tpu {

namespace {

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        lines.emplace_back(line);
        text.remove_prefix(std::min(text.size(), line.size() + 1));
    }
    return lines;
}

}  // namespace

std::vector<HelpBlock> help_blocks(std::string_view text) {
    std::vector<HelpBlock> blocks;
    std::vector<std::string> lines = lines_of(text);
    bool goes_on = false;    // the next line belongs to the last block
    bool after_gap = false;  // there was an empty line
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (line.empty()) {
            after_gap = true;
            continue;
        }
        bool literal = line.starts_with("  ");
        // A gap within a list or program does not end it.
        goes_on = goes_on && blocks.back().literal == literal && (literal || !after_gap);
        if (!goes_on) blocks.push_back({literal, {}});
        if (goes_on && literal && after_gap) blocks.back().lines.emplace_back();
        blocks.back().lines.push_back(literal ? line.substr(2) : line);
        goes_on = true;
        after_gap = false;
    }
    return blocks;
}

}  // namespace tpu
