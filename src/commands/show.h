// What SHOW can show.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tpu {

class TPUEditor;

struct ShowItem {
    std::array<std::string_view, 2> names;  // upper case; the second may be empty
    std::string_view buffer;                // where the text goes; empty: it is a message
    // The text. A name is given where the item takes one, and makes it a message.
    std::string (*text)(TPUEditor&, const std::string& name);
    std::string_view help;  // one sentence
};

std::span<const ShowItem> show_items();

// The words of the command; the first is SHOW itself.
void show_command(TPUEditor& editor, const std::vector<std::string>& words);

}  // namespace tpu
