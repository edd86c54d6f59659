// The text of a help topic, taken apart.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tpu {

struct HelpBlock {
    bool literal;                    // to be shown line by line, as it is
    std::vector<std::string> lines;  // of a literal block without the two blanks before them
};

// The blocks of a topic's text, but for its heading. Lines that begin with two blanks are
// literal; other lines are paragraphs, which end at empty lines.
std::vector<HelpBlock> help_blocks(std::string_view text);

}  // namespace tpu
