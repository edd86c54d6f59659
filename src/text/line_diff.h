// Where two texts differ that have most of their memory in common.
#pragma once

#include <cstdint>
#include <vector>

#include "text/line_store.h"

namespace tpu {

// The bytes [old_begin, old_end) of one text are [new_begin, new_end) in the other.
struct Difference {
    std::uint64_t old_begin = 0, old_end = 0;
    std::uint64_t new_begin = 0, new_end = 0;
};

// What has to be replaced in `old` to make `fresh` of it, front to back. What the texts
// share is found without being read, so that it costs little in a text of any size; a
// text that was copied byte by byte is all different. Differences that lie close
// together are given as one.
std::vector<Difference> differences(const LineStore& old, const LineStore& fresh);

}  // namespace tpu
