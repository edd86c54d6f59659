// Splitting, joining and erasing lines and characters.
#include <algorithm>

#include "buffer/buffer.h"

namespace tpu {

void Buffer::split_line() {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t column = std::min(cursor_column, lines.length(cursor_row));
    lines.insert_break(lines.offset({cursor_row, column}));
    ++cursor_row;
    cursor_column = 0;
    modified = true;
}

void Buffer::append_line() {
    if (!modifiable) return;
    clamp_cursor();
    if (cursor_row == 0) return;
    --cursor_row;
    cursor_column = lines.length(cursor_row);
    std::uint64_t line_end = lines.offset({cursor_row, cursor_column});
    lines.erase(line_end, line_end + 1);
    modified = true;
}

void Buffer::erase_line() {
    if (!modifiable) return;
    clamp_cursor();
    if (lines.size() > 1) {
        lines.erase_line(cursor_row);
        cursor_row = std::min(cursor_row, lines.size() - 1);
        cursor_column = std::min(cursor_column, lines.length(cursor_row));
    } else {
        lines = LineStore();
        cursor_row = cursor_column = 0;
    }
    modified = true;
}

void Buffer::erase_character_at_cursor() {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t length = lines.length(cursor_row);
    // Past the end of the line it is the line end that goes, wherever a free cursor stands.
    if (cursor_column >= length && cursor_row + 1 == lines.size()) return;
    std::uint64_t offset = lines.offset({cursor_row, std::min(cursor_column, length)});
    lines.erase(offset, offset + 1);
    modified = true;
}

void Buffer::erase_character_left() {
    if (!modifiable) return;
    clamp_cursor();
    if (cursor_column == 0) {
        append_line();
        return;
    }
    --cursor_column;
    // A free cursor past the line's end has no byte to its left: it just moves.
    if (cursor_column >= lines.length(cursor_row)) return;
    std::uint64_t offset = lines.offset({cursor_row, cursor_column});
    lines.erase(offset, offset + 1);
    modified = true;
}

void Buffer::erase_n_characters(int n) {
    if (!modifiable) return;
    // A free cursor past the line's end goes step by step until it stands in the text ...
    clamp_cursor();
    while (n != 0 && cursor_column > lines.length(cursor_row)) {
        std::uint64_t rows = lines.size();
        n > 0 ? erase_character_at_cursor() : erase_character_left();
        if (n > 0 && lines.size() == rows) return;
        n > 0 ? --n : ++n;
    }
    // ... from where n characters are one span.
    std::uint64_t here = lines.offset({cursor_row, cursor_column}), from = here, to = here;
    if (n > 0) to = std::min(here + static_cast<std::uint64_t>(n), lines.bytes());
    if (n < 0) from = here - std::min(here, -static_cast<std::uint64_t>(n));
    if (from == to) return;
    Position place = lines.position(from);
    lines.erase(from, to);
    cursor_row = place.row;
    cursor_column = place.column;
    modified = true;
}

}  // namespace tpu
