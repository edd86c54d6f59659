// Finding bytes among bytes.
#pragma once

#include <string_view>

namespace tpu {

// Index of the first occurrence of `needle`, which is not empty, in `text`; npos
// without one. As memmem, but quicker for short needles, and linear like it.
std::size_t find_bytes(std::string_view text, std::string_view needle);

}  // namespace tpu
