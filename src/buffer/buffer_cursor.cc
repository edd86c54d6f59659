// The cursor, marks and the selection.
#include <algorithm>

#include "buffer/buffer.h"

namespace tpu {

namespace {

// How far a free cursor may stand past the text.
constexpr std::uint64_t kFreeCursorLimit = 4096;

std::uint64_t magnitude(int n) {
    return n < 0 ? -static_cast<std::uint64_t>(n) : static_cast<std::uint64_t>(n);
}

}  // namespace

void Buffer::clamp_cursor() {
    cursor_row = std::min(cursor_row, text_.size() - 1);
    if (cursor_column == 0) return;
    std::uint64_t length = text_.length(cursor_row);
    if (cursor_column <= length) return;
    cursor_column = free_cursor ? std::min(cursor_column, kFreeCursorLimit) : length;
}

std::string Buffer::current_line() {
    clamp_cursor();
    return text_[cursor_row];
}

std::uint64_t Buffer::line_length() {
    clamp_cursor();
    return text_.length(cursor_row);
}

char Buffer::current_character() const {
    std::uint64_t row = std::min(cursor_row, text_.size() - 1);
    if (cursor_column >= text_.length(row)) return '\n';
    return static_cast<char>(text_.at({row, cursor_column}));
}

std::uint64_t Buffer::current_offset_in_line() const {
    std::uint64_t row = std::min(cursor_row, text_.size() - 1);
    return text_.offset({row, std::min(cursor_column, text_.length(row))});
}

void Buffer::move_vertical(int n) {
    if (n < 0) {
        cursor_row -= std::min(cursor_row, magnitude(n));
    } else if (n > 0) {
        cursor_row = std::min(cursor_row + magnitude(n), text_.size() - 1);
    }
    clamp_cursor();
}

void Buffer::move_horizontal(int n) {
    clamp_cursor();
    std::uint64_t count = magnitude(n);
    if (n < 0) {
        if (count <= cursor_column) {
            cursor_column -= count;
        } else if (cursor_row > 0) {
            // Deliberate: one line end at most, the rest of the count is dropped.
            cursor_column = text_.length(--cursor_row);
        } else {
            cursor_column = 0;
        }
    } else if (n > 0 && free_cursor) {
        cursor_column = std::min(cursor_column + count, kFreeCursorLimit);
    } else if (n > 0) {
        std::uint64_t length = text_.length(cursor_row);
        if (cursor_column + count <= length) {
            cursor_column += count;
        } else if (cursor_row + 1 == text_.size()) {
            cursor_column = length;
        } else {
            ++cursor_row;
            cursor_column = 0;
        }
    }
}

void Buffer::materialize_cursor_column() {
    clamp_cursor();
    std::uint64_t length = text_.length(cursor_row);
    if (cursor_column <= length || !modifiable) return;
    const std::uint64_t end = text_.offset({cursor_row, length});
    edit(end, end, std::string(cursor_column - length, ' '));
}

void Buffer::beginning_of_buffer() {
    cursor_row = cursor_column = view_line = 0;
}

void Buffer::end_of_buffer() {
    cursor_row = text_.size() - 1;
    cursor_column = text_.length(cursor_row);
}

void Buffer::position(const Marker& marker) {
    if (marker.buffer != this) return;
    cursor_row = marker.row;
    cursor_column = marker.column;
    clamp_cursor();
}

void Buffer::go_to(std::uint64_t offset) {
    const Position place = text_.position(offset);
    cursor_row = place.row;
    cursor_column = place.column;
}

Marker Buffer::mark(bool free) {
    clamp_cursor();
    return {this, cursor_row, cursor_column, free};
}

void Buffer::select() {
    select_anchor = mark(false);
    box_select = false;
}

std::optional<Range> Buffer::select_range() {
    if (!select_anchor) return std::nullopt;
    Range range(*select_anchor, mark(false));
    if (!range.valid) return std::nullopt;
    return range;
}

bool Buffer::position_in_range(std::uint64_t row, std::uint64_t column, const Range& range) const {
    if (range.buffer() != this) return false;
    if (box_select) {
        auto [left, right] = std::minmax(range.start.column, range.end.column);
        return row >= range.start.row && row <= range.end.row && column >= left && column < right;
    }
    Position here{row, column};
    return here >= range.start.position() && here < range.end.position();
}

}  // namespace tpu
