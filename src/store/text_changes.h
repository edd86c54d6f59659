// What has to run to make one text of another.
#pragma once

#include <string>
#include <vector>

#include "text/line_store.h"

namespace tpu {

// Statements that do so wherever the cursor is and whatever the modes of the buffer are.
// What the texts share costs nothing, so that a small change of a large text is cheap.
std::vector<std::string> text_changes(const LineStore& from, const LineStore& to);

// The statement that puts the cursor at an offset (bytes) of the text.
std::string text_place(std::uint64_t offset);

}  // namespace tpu
