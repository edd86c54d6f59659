// Splitting, joining and erasing lines and characters.
#include <algorithm>

#include "buffer/buffer.h"

namespace tpu {

void Buffer::split_line() {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t column = std::min(cursor_column, text_.length(cursor_row));
    const std::uint64_t here = text_.offset({cursor_row, column});
    edit(here, here, LineBreak());
    ++cursor_row;
    cursor_column = 0;
}

void Buffer::append_line() {
    if (!modifiable) return;
    clamp_cursor();
    if (cursor_row == 0) return;
    --cursor_row;
    cursor_column = text_.length(cursor_row);
    std::uint64_t line_end = text_.offset({cursor_row, cursor_column});
    edit(line_end, line_end + 1, "");
}

void Buffer::erase_line() {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t from = text_.row_start(cursor_row), to = from + text_.length(cursor_row);
    if (to < text_.bytes()) {
        ++to;  // the break after the line
    } else if (from > 0) {
        --from;  // the last line: the break before it
    }
    edit(from, to, "");
    cursor_row = std::min(cursor_row, text_.size() - 1);
    cursor_column = std::min(cursor_column, text_.length(cursor_row));
}

void Buffer::erase_character_at_cursor() {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t length = text_.length(cursor_row);
    // Past the end of the line it is the line end that goes, wherever a free cursor stands.
    if (cursor_column >= length && cursor_row + 1 == text_.size()) return;
    std::uint64_t offset = text_.offset({cursor_row, std::min(cursor_column, length)});
    edit(offset, offset + 1, "");
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
    if (cursor_column >= text_.length(cursor_row)) return;
    std::uint64_t offset = text_.offset({cursor_row, cursor_column});
    edit(offset, offset + 1, "");
}

void Buffer::erase_n_characters(int n) {
    if (!modifiable) return;
    // A free cursor past the line's end goes step by step until it stands in the text ...
    clamp_cursor();
    while (n != 0 && cursor_column > text_.length(cursor_row)) {
        std::uint64_t rows = text_.size();
        n > 0 ? erase_character_at_cursor() : erase_character_left();
        if (n > 0 && text_.size() == rows) return;
        n > 0 ? --n : ++n;
    }
    // ... from where n characters are one span.
    std::uint64_t here = text_.offset({cursor_row, cursor_column}), from = here, to = here;
    if (n > 0) to = std::min(here + static_cast<std::uint64_t>(n), text_.bytes());
    if (n < 0) from = here - std::min(here, -static_cast<std::uint64_t>(n));
    if (from == to) return;
    edit(from, to, "");
    go_to(from);
}

}  // namespace tpu
