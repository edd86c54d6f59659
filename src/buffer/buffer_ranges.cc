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
    if (!modifiable || range.buffer() != this || !inside(text_, range)) return;
    cursor_row = range.start.row;
    cursor_column = std::min(range.start.column, text_.length(cursor_row));
    std::uint64_t from = text_.offset({cursor_row, cursor_column});
    edit(from, std::max(from, clipped_offset(text_, range.end)), "");
}

std::string Buffer::text_of_range(const Range& range) const {
    if (range.buffer() != this || !inside(text_, range)) return {};
    return text_.text(clipped_offset(text_, range.start), clipped_offset(text_, range.end));
}

LineStore Buffer::lines_of_range(const Range& range) const {
    if (range.buffer() != this || !inside(text_, range)) return {};
    return text_.part(clipped_offset(text_, range.start), clipped_offset(text_, range.end));
}

void Buffer::replace_bytes(std::uint64_t offset, std::uint64_t size, std::string_view text) {
    if (edit(offset, offset + size, text)) go_to(offset + text.size());
}

void Buffer::replace_text(std::uint64_t offset, std::uint64_t size, const LineStore& text) {
    const std::uint64_t from = std::min(offset, text_.bytes());
    const std::uint64_t to = from + std::min(size, text_.bytes() - from);
    if (edit(from, to, text)) go_to(from + text.bytes());
}

std::vector<std::string> Buffer::box_of(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1,
                                        std::uint64_t col2, Work* work) const {
    std::vector<std::string> box;
    for (std::uint64_t row = row1; row <= row2 && row < text_.size(); ++row) {
        if (work && !work->goes_on()) break;
        box.push_back(text_.slice({row, col1}, col2 - col1));
    }
    return box;
}

void Buffer::box_copy(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1,
                      std::uint64_t col2, Work* work) {
    if (col1 > col2) std::swap(col1, col2);
    if (row1 > row2) std::swap(row1, row2);
    std::vector<std::string> box = box_of(row1, row2, col1, col2, work);
    if (!work || work->goes_on()) box_register = std::move(box);
}

void Buffer::box_cut(std::uint64_t row1, std::uint64_t row2, std::uint64_t col1, std::uint64_t col2,
                     Work* work) {
    if (!modifiable) return;
    auto stopped = [&] { return work && !work->goes_on(); };
    if (col1 > col2) std::swap(col1, col2);
    if (row1 > row2) std::swap(row1, row2);
    std::vector<std::string> box = box_of(row1, row2, col1, col2, work);
    LineStore cut = text_;
    for (std::size_t i = 0; i < box.size() && !stopped(); ++i) {
        std::uint64_t row = row1 + i;
        std::uint64_t from = cut.offset({row, std::min(col1, cut.length(row))});
        cut.erase(from, from + box[i].size());
    }
    if (stopped()) return;
    replace_rows(row1, row1 + box.size(), std::move(cut));
    box_register = std::move(box);
    cursor_row = std::min(row1, text_.size() - 1);
    cursor_column = std::min(col1, text_.length(cursor_row));
}

void Buffer::box_paste(std::uint64_t row, std::uint64_t col, Work* work) {
    if (!modifiable || box_register.empty()) return;
    Work unwatched, &watched = work ? *work : unwatched;
    LineStore pasted = text_;
    const std::uint64_t first = row, rows = row + box_register.size();
    if (rows > pasted.size()) {
        pasted.insert(pasted.bytes(),
                      LineStore::from_text(std::string(rows - pasted.size(), '\n')));
    }
    for (const std::string& text : box_register) {
        std::uint64_t length = pasted.length(row);
        if (!watched.may_add(col - std::min(col, length))) return;
        if (length < col) {
            pasted.insert(pasted.offset({row, length}), std::string(col - length, ' '));
        }
        pasted.insert(pasted.offset({row, col}), text);
        ++row;
    }
    replace_rows(first, rows, std::move(pasted));
}

}  // namespace tpu
