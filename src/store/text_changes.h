// What has to run to make one text of another.
#pragma once

#include <string>
#include <vector>

#include "text/differences.h"

namespace tpu {

// Statements that make up for the differences to a text, whatever the modes of the buffer
// are and wherever its cursor is, which they leave behind the last of them.
std::vector<std::string> text_changes(const std::vector<Difference>& found, const LineStore& to);

// The statement that puts the cursor at an offset (bytes) of the text.
std::string text_place(std::uint64_t offset);

}  // namespace tpu
