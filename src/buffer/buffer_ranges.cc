// Spans of a text and rectangles.
#include <algorithm>

#include "buffer/buffer.h"

namespace tpu {

namespace {

bool inside(const LineStore& lines, const Range& range) {
    return range.start.row < lines.size() && range.end.row < lines.size();
}

std::uint64_t clipped_offset(const LineStore& lines, const Marker& marker) {
    return lines.offset({marker.row, std::min(marker.column, lines.length(marker.row))});
}

}  // namespace

void Buffer::erase_range(const Range& range) {
    if (!modifiable || range.buffer() != this || !inside(lines, range)) return;
    cursor_row = range.start.row;
    cursor_column = std::min(range.start.column, lines.length(cursor_row));
    std::uint64_t from = lines.offset({cursor_row, cursor_column});
    lines.erase(from, std::max(from, clipped_offset(lines, range.end)));
    modified = true;
}

std::string Buffer::text_of_range(const Range& range) const {
    if (range.buffer() != this || !inside(lines, range)) return {};
    return lines.text(clipped_offset(lines, range.start), clipped_offset(lines, range.end));
}

LineStore Buffer::lines_of_range(const Range& range) const {
    if (range.buffer() != this || !inside(lines, range)) return {};
    return lines.part(clipped_offset(lines, range.start), clipped_offset(lines, range.end));
}

void Buffer::replace_bytes(std::uint64_t offset, std::uint64_t size, std::string_view text) {
    if (!modifiable) return;
    lines.erase(offset, offset + size);
    lines.insert(offset, text);
    Position end = lines.position(offset + text.size());
    cursor_row = end.row;
    cursor_column = end.column;
    modified = true;
}

void Buffer::replace_text(std::uint64_t offset, std::uint64_t size, const LineStore& text) {
    if (!modifiable) return;
    const std::uint64_t from = std::min(offset, lines.bytes());
    lines.replace(from, from + std::min(size, lines.bytes() - from), text);
    const Position end = lines.position(from + text.bytes());
    cursor_row = end.row;
    cursor_column = end.column;
    modified = true;
}

void Buffer::box_copy(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1,
                      std::uint64_t col2, Work* work) {
    if (col1 > col2) std::swap(col1, col2);
    if (row1 > row2) std::swap(row1, row2);
    std::vector<std::string> box;
    for (std::uint64_t row = row1; row <= row2 && row < lines.size(); ++row) {
        if (work && !work->goes_on()) return;
        box.push_back(lines.slice({row, col1}, col2 - col1));
    }
    box_register = std::move(box);
}

void Buffer::box_cut(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1, std::uint64_t col2,
                     Work* work) {
    if (!modifiable) return;
    const std::vector<std::string> register_before = box_register;
    const LineStore before = lines;
    auto stopped = [&] { return work && !work->goes_on(); };
    box_copy(row1, row2, col1, col2, work);
    if (col1 > col2) std::swap(col1, col2);
    if (row1 > row2) std::swap(row1, row2);
    for (std::size_t i = 0; i < box_register.size() && !stopped(); ++i) {
        std::uint64_t row = row1 + i;
        std::uint64_t from = lines.offset({row, std::min(col1, lines.length(row))});
        lines.erase(from, from + box_register[i].size());
    }
    if (stopped()) {
        lines = before;
        box_register = register_before;
        return;
    }
    cursor_row = std::min(row1, lines.size() - 1);
    cursor_column = std::min(col1, lines.length(cursor_row));
    modified = true;
}

void Buffer::box_paste(std::uint64_t row, std::uint64_t col, Work* work) {
    if (!modifiable || box_register.empty()) return;
    Work unwatched, &watched = work ? *work : unwatched;
    const LineStore before = lines;
    std::uint64_t rows = row + box_register.size();
    if (rows > lines.size()) {
        lines.insert(lines.bytes(), LineStore::from_text(std::string(rows - lines.size(), '\n')));
    }
    for (const std::string& text : box_register) {
        std::uint64_t length = lines.length(row);
        if (!watched.may_add(col - std::min(col, length))) {
            lines = before;
            return;
        }
        if (length < col) {
            lines.insert(lines.offset({row, length}), std::string(col - length, ' '));
        }
        lines.insert(lines.offset({row, col}), text);
        ++row;
    }
    modified = true;
}

}  // namespace tpu
