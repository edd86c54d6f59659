// Where two versions of a text differ.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "text/change_log.h"
#include "text/line_store.h"

namespace tpu {

// The bytes [old_begin, old_end) of one text are [new_begin, new_end) in the other.
struct Difference {
    std::uint64_t old_begin = 0, old_end = 0;
    std::uint64_t new_begin = 0, new_end = 0;

    bool only_inserts() const { return old_begin == old_end; }
    bool only_erases() const { return new_begin == new_end; }
};

// What has to be replaced in `old` to make `fresh` of it, front to back, by the changes that
// have led from one to the other. Without those it is all that lies between the memory that
// both begin with and that which both end with, so that it costs little in a text of any size.
// Differences that lie close together are given as one.
std::vector<Difference> differences(const LineStore& old, const LineStore& fresh,
                                    const std::optional<std::vector<Change>>& changes = {});

// The same as one change; of no bytes when there is no difference.
Change change_between(const LineStore& old, const LineStore& fresh);

}  // namespace tpu
