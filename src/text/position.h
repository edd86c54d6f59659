// A place in a text: zero-based row and zero-based byte column.
#pragma once

#include <compare>
#include <cstdint>

namespace tpu {

struct Position {
    std::uint64_t row = 0;
    std::uint64_t column = 0;

    // Row first, then column: the order of the text.
    friend auto operator<=>(const Position&, const Position&) = default;
};

}  // namespace tpu
