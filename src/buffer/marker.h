// Places and spans that the language hands around.
#pragma once

#include "text/position.h"

namespace tpu {

class Buffer;

// A frozen place in a buffer; it does not follow later edits.
struct Marker {
    Buffer* buffer = nullptr;  // not owned
    std::uint64_t row = 0;
    std::uint64_t column = 0;
    bool free_cursor = false;

    Position position() const { return {row, column}; }
};

// A span of a buffer, start inclusive and end exclusive. Default: invalid.
struct Range {
    Marker start;
    Marker end;
    bool valid = false;

    Range() = default;
    Range(const Marker& a, const Marker& b) : start(a), end(b), valid(true) { normalize(); }

    // Puts start before end; markers in different buffers make the range invalid.
    void normalize();
    // The buffer of a valid range, else null.
    Buffer* buffer() const { return valid ? start.buffer : nullptr; }
};

}  // namespace tpu
