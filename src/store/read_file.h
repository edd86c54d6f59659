// Reading a text from a file in one pass.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "os/input_file.h"
#include "text/line_store.h"

namespace tpu {

// A device may give bytes for ever; what a pipe gives is seldom as much.
inline constexpr std::uint64_t kMostOfStream = std::uint64_t{1} << 30;

// The lines of all that is left of a file. Lines end at line feeds; a carriage
// return at the end of a line is dropped, and so is a line feed at the end of the
// file. Nothing when reading fails, memory is short, or something other than a regular
// file has more than `most` bytes.
std::optional<LineStore> read_lines(InputFile& file, Failure& why,
                                    std::uint64_t most = kMostOfStream);

// The lines of a file of `size` bytes without copying them: the text is only mapped,
// and TextBlock::detach_some must make it the editor's own soon. Nothing when the
// file cannot be mapped, or when carriage returns would have to go. The block is what
// the lines are in.
std::optional<LineStore> map_lines(int fd, std::uint64_t size, Ref<TextBlock>& block);

// All bytes of a file. Nothing when it cannot be read, or has more than `most`.
std::optional<std::string> read_whole(InputFile& file, Failure& why,
                                      std::uint64_t most = kMostOfStream);
std::optional<std::string> read_whole(const std::string& path, Failure& why, Waiting waiting = {});

}  // namespace tpu
