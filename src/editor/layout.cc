#include "editor/layout.h"

#include <algorithm>
#include <cstdint>

namespace tpu {

namespace layout {

void adjust(TPUWindow& window, int top_delta, int bottom_delta, int rows) {
    std::int64_t top = std::max<std::int64_t>(std::int64_t{window.top} + top_delta, 0);
    std::int64_t end = std::int64_t{window.top} + window.height + bottom_delta;
    end = std::min<std::int64_t>(end, rows - 1);
    window.top = static_cast<int>(std::min<std::int64_t>(top, kFarthestRow));
    window.height = static_cast<int>(std::max<std::int64_t>(end - top, 1));
}

bool split_horizontal(TPUWindow& window, TPUWindow& upper) {
    if (window.height < 4) return false;
    upper = TPUWindow();
    upper.top = window.top;
    upper.height = window.height / 2;
    upper.buffer = window.buffer;
    window.top += upper.height;
    window.height -= upper.height;
    return true;
}

bool split_vertical(TPUWindow& window, int cols, TPUWindow& right) {
    int width = window.effective_width(cols);
    if (width < 8) return false;
    right = TPUWindow();
    right.top = window.top;
    right.height = window.height;
    right.has_status = window.has_status;
    right.buffer = window.buffer;
    right.left = window.left + width / 2;
    right.width = width - width / 2;
    window.width = width / 2;
    return true;
}

}  // namespace layout

namespace {

Place place_of(const TPUWindow& window) {
    return {window.top, window.height, window.left, window.width};
}

// An edge at `edge` of `old_size` cells, on a screen with `size` of them.
int scale(int edge, int old_size, int size) {
    if (old_size <= 0) return edge;
    std::int64_t scaled = (std::int64_t{edge} * size * 2 + old_size) / (std::int64_t{old_size} * 2);
    return static_cast<int>(std::clamp<std::int64_t>(scaled, 0, layout::kFarthestRow));
}

// Scales one dimension: begin and extent, kept within [0, limit).
void scale_span(int& begin, int& extent, int old_size, int size, int limit) {
    int end = std::min(scale(begin + extent, old_size, size), limit);
    begin = std::clamp(scale(begin, old_size, size), 0, std::max(limit - 1, 0));
    extent = std::max(end - begin, 1);
}

// Rows that windows share out: all but the global status line and the message line.
int window_rows(int rows) {
    return std::max(rows - 2, 1);
}

Place scaled(Place place, int old_rows, int old_cols, int rows, int cols) {
    bool reaches_over_status = place.top + place.height > window_rows(old_rows);
    int limit = reaches_over_status ? std::max(rows - 1, 1) : window_rows(rows);
    scale_span(place.top, place.height, window_rows(old_rows), window_rows(rows), limit);
    if (place.width >= 1) {
        scale_span(place.left, place.width, old_cols, cols, cols);
    } else {
        place.left = std::clamp(scale(place.left, old_cols, cols), 0, std::max(cols - 1, 0));
    }
    return place;
}

}  // namespace

bool ResizeMemory::holds_for(const std::vector<TPUWindow*>& windows) const {
    return places_.size() == windows.size() &&
           std::all_of(windows.begin(), windows.end(), [&](const TPUWindow* window) {
               auto memory = places_.find(window);
               return memory != places_.end() && memory->second.given == place_of(*window);
           });
}

void ResizeMemory::resize(const std::vector<TPUWindow*>& windows, int old_rows, int old_cols,
                          int rows, int cols) {
    if (!holds_for(windows)) {
        places_.clear();
        rows_ = old_rows;
        cols_ = old_cols;
        for (const TPUWindow* window : windows) places_[window].original = place_of(*window);
    }
    for (TPUWindow* window : windows) {
        Memory& memory = places_[window];
        memory.given = scaled(memory.original, rows_, cols_, rows, cols);
        window->top = memory.given.top;
        window->height = memory.given.height;
        window->left = memory.given.left;
        window->width = memory.given.width;
    }
}

}  // namespace tpu
