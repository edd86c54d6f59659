// The arithmetic of windows on the screen, in character cells.
#pragma once

#include <map>
#include <vector>

#include "editor/window.h"

namespace tpu::layout {

// Windows may stand past the ends of the screen, but not so far that sums overflow.
constexpr int kFarthestRow = 1 << 28;

// Moves the edges of a window by so many rows, within a screen of `rows` rows.
// Deliberate: unlike a new window it may reach down over the global status line.
void adjust(TPUWindow& window, int top_delta, int bottom_delta, int rows);

// Halves: `window` becomes the lower (left) half, the upper (right) one is
// returned. Too small a window (below 4 rows, 8 columns) stays whole: false.
bool split_horizontal(TPUWindow& window, TPUWindow& upper);
bool split_vertical(TPUWindow& window, int cols, TPUWindow& right);

}  // namespace tpu::layout

namespace tpu {

// Where a window stands.
struct Place {
    int top = 0, height = 1, left = 0, width = 0;

    friend bool operator==(const Place&, const Place&) = default;
};

// Lays the windows out anew when the screen changes its size. It remembers what
// the windows were before the first of several changes, so that dragging a
// terminal small and large again brings the old layout back.
class ResizeMemory {
  public:
    void resize(const std::vector<TPUWindow*>& windows, int old_rows, int old_cols, int rows,
                int cols);

  private:
    struct Memory {
        Place original, given;
    };
    bool holds_for(const std::vector<TPUWindow*>& windows) const;

    int rows_ = 0, cols_ = 0;  // of the screen for which `original` was
    std::map<const TPUWindow*, Memory> places_;
};

}  // namespace tpu
