// Where the characters of a line begin and end.
#pragma once

#include <cstdint>

#include "text/charset.h"
#include "text/line_store.h"

namespace tpu {

// The column where the UTF-8 character that covers `place` begins; a place
// between characters, or among bytes that make none, stays as it is.
std::uint64_t character_start(const LineStore& lines, Position place);

// Bytes of the character at `place`; 0 at or past the end of the line.
std::uint64_t character_size(const LineStore& lines, Position place, Charset charset);

// Bytes of the character that ends at `place`; 0 in column 0.
std::uint64_t character_size_before(const LineStore& lines, Position place, Charset charset);

}  // namespace tpu
