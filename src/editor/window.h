// A window: the part of the screen that shows a buffer.
#pragma once

#include <cstdint>
#include <string>

#include "value/value.h"

namespace tpu {

struct TPUWindow : Object {
    int top = 0;     // first screen row
    int height = 1;  // rows, the window's own status row included
    int left = 0;    // first screen column
    int width = 0;   // columns; below 1: up to the right edge
    bool has_status = true;
    Buffer* buffer = nullptr;   // not owned; null: unmapped
    std::string status_format;  // template of the status line; empty: the fixed layout
    bool visible = true;
    std::uint64_t saved_line = 0;
    std::uint64_t saved_column = 0;
    std::uint64_t saved_top_line = 0;
    bool saved_valid = false;

    // Columns in use on a screen of `cols` columns.
    int effective_width(int cols) const { return width >= 1 ? width : cols - left; }
    // Rows of text, at least 1.
    int text_rows() const {
        int count = has_status ? height - 1 : height;
        return count > 1 ? count : 1;
    }

    std::string text() const override;
};

inline Value window_value(TPUWindow* window) {
    return Value::make_window(window);
}
// Null for a value of another type.
inline TPUWindow* window_of(const Value& value) {
    return static_cast<TPUWindow*>(value.window());
}

// The buffer that a value names: a buffer, or the one of a window, marker or range;
// null for any other value.
Buffer* buffer_of(const Value& value);

}  // namespace tpu
