// What a text is once it has been saved.
#pragma once

#include <cstdint>

#include "text/line_store.h"

namespace tpu {

// What loading gives of a file that a text was written to. Loading drops a line feed at the
// end of the file and a carriage return at the end of each line, so that this may be
// less than the text.
LineStore as_loaded(const LineStore& text);

// Tells texts apart without holding them.
struct TextIdentity {
    std::uint64_t bytes = 0;
    std::uint64_t hash = 0;  // the same on every machine

    bool operator==(const TextIdentity&) const = default;
};

// Reads the whole text.
TextIdentity identity_of(const LineStore& text);

}  // namespace tpu
