// Reading a text from an open file in one pass.
#pragma once

#include <cstdint>
#include <optional>

#include "core/line_store.h"

namespace tpu {

// The lines of all that is left of a file. Lines end at line feeds; a carriage
// return at the end of a line is dropped, and so is a line feed at the end of the
// file. `expected` is the number of bytes to make room for; more and fewer are
// fine. Nothing when reading fails, memory is short, or there are more than `most` bytes.
std::optional<LineStore> read_lines(int fd, std::uint64_t expected,
                                    std::uint64_t most = UINT64_MAX);

// The lines of a file of `size` bytes without copying them: the text is only mapped,
// and TextBlock::settle_some must make it the editor's own soon. Nothing when the
// file cannot be mapped, or when carriage returns would have to go.
std::optional<LineStore> map_lines(int fd, std::uint64_t size);

}  // namespace tpu
