#include "buffer/marker.h"

#include <utility>

namespace tpu {

void Range::normalize() {
    if (!valid) return;
    if (start.buffer != end.buffer) {
        valid = false;
    } else if (end.position() < start.position()) {
        std::swap(start, end);
    }
}

}  // namespace tpu
