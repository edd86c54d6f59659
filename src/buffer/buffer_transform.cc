// Changes to the characters of a text: fill, case, translation, shift.
#include <algorithm>
#include <array>
#include <optional>

#include "buffer/buffer.h"
#include "text/ascii.h"

namespace tpu {

namespace {

// What becomes of each byte.
using ByteMap = std::array<char, 256>;

ByteMap case_map(Buffer::Case mode) {
    ByteMap map;
    for (std::size_t i = 0; i < map.size(); ++i)
        map[i] = Buffer::xform_case(static_cast<char>(i), mode);
    return map;
}

ByteMap translation(std::string_view from, std::string_view to) {
    ByteMap map;
    for (std::size_t i = 0; i < map.size(); ++i) {
        auto byte = static_cast<char>(i);
        std::size_t place = from.find(byte);
        map[i] = place < to.size() ? to[place] : byte;  // npos is past any size
    }
    return map;
}

// The bytes [from, to), each that is no line break mapped. Nothing: the work was stopped.
std::optional<LineStore> mapped_bytes(const LineStore& lines, std::uint64_t from, std::uint64_t to,
                                      const ByteMap& map, Work& work) {
    TextBuilder mapped;
    std::string part;
    for (std::uint64_t at = from; at < to;) {
        if (!work.goes_on()) return std::nullopt;
        LineStore::Chunk chunk = lines.chunk_at(at);
        std::string_view rest = chunk.text.substr(at - chunk.begin, to - at);
        std::size_t size = chunk.raw ? rest.size() : std::min(rest.find('\n'), rest.size());
        part.assign(rest.substr(0, size));
        for (char& c : part) c = map[static_cast<unsigned char>(c)];
        mapped.append(part);
        at += size;
        if (size < rest.size()) {
            mapped.append_break();
            ++at;
        }
    }
    return mapped.take();
}

void map_bytes(Buffer& buffer, std::uint64_t from, std::uint64_t to, const ByteMap& map,
               Work* work) {
    Work unwatched;
    std::optional<LineStore> mapped =
        mapped_bytes(buffer.text(), from, to, map, work ? *work : unwatched);
    if (mapped) buffer.edit(from, to, *mapped);
}

// The rows and columns of a range, cut to what the text has, as offsets.
std::pair<std::uint64_t, std::uint64_t> offsets(const LineStore& lines, const Range& range) {
    auto offset = [&](const Marker& marker) {
        if (marker.row >= lines.size()) return lines.bytes();
        return lines.offset({marker.row, std::min(marker.column, lines.length(marker.row))});
    };
    return {offset(range.start), offset(range.end)};
}

// Puts words on lines, each as full as the right margin allows.
class Filler {
  public:
    Filler(std::uint64_t left, std::uint64_t right)
        : indent_(std::min(left - 1, kMostBlanks), ' '), line_(indent_), right_(right) {}

    // False: the work is over.
    bool put(std::string_view word, Work& work) {
        if (first_ || line_.size() + 1 + word.size() <= right_) {
            if (!first_) line_ += ' ';
        } else {
            if (!work.may_add(indent_.size())) return false;
            text_.append(line_);
            text_.append_break();
            line_ = indent_;
        }
        first_ = false;
        line_ += word;
        return work.goes_on();
    }
    LineStore take() {
        text_.append(line_);
        return text_.take();
    }

  private:
    static constexpr std::uint64_t kMostBlanks = 65'535;

    std::string indent_, line_;
    TextBuilder text_;
    std::uint64_t right_;
    bool first_ = true;
};

// False: the work was over before its end.
bool fill(std::string_view text, Filler& filler, Work& work) {
    auto end = text.begin();
    while (true) {
        auto begin = std::find_if_not(end, text.end(), ascii::is_space);
        if (begin == text.end()) return true;
        end = std::find_if(begin, text.end(), ascii::is_space);
        if (!filler.put({begin, end}, work)) return false;
    }
}

// The first column from `column` on whose byte is or is not a blank; else the line's length.
std::uint64_t find_blank(const LineStore& lines, Position from, bool wanted) {
    constexpr std::uint64_t kStretch = 256;
    std::uint64_t length = lines.length(from.row);
    while (from.column < length) {
        std::string stretch = lines.slice(from, kStretch);
        for (char c : stretch) {
            if (ascii::is_space(c) == wanted) return from.column;
            ++from.column;
        }
    }
    return length;
}

}  // namespace

void Buffer::fill_range(const Range& range, std::uint64_t left, std::uint64_t right, Work* work) {
    if (!modifiable || range.buffer() != this) return;
    if (right <= left || right == 0) right = right_margin;
    if (right == 0) right = UINT64_MAX;
    if (left == 0) left = 1;
    Work unwatched, &watched = work ? *work : unwatched;
    Filler filler(left, right);
    if (!fill(text_of_range(range), filler, watched)) return;
    const Snapshot before = snap();
    const bool was_modified = modified;
    erase_range(range);
    copy_lines(filler.take(), Charset::bytes, &watched);
    modified = true;
    if (watched.end == Work::End::done) return;
    restore_snap(before);
    modified = was_modified;
}

char Buffer::xform_case(char c, Case mode) {
    switch (mode) {
        case Case::upper: return ascii::to_upper(c);
        case Case::lower: return ascii::to_lower(c);
        case Case::invert: return ascii::to_upper(c) != c ? ascii::to_upper(c) : ascii::to_lower(c);
    }
    return c;
}

void Buffer::change_case_buffer(Case mode, Work* work) {
    if (!modifiable) return;
    map_bytes(*this, 0, text_.bytes(), case_map(mode), work);
}

void Buffer::change_case_range(const Range& range, Case mode, Work* work) {
    if (!modifiable || range.buffer() != this) return;
    auto [from, to] = offsets(text_, range);
    map_bytes(*this, from, to, case_map(mode), work);
}

void Buffer::change_case_word(Case mode) {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t begin = find_blank(text_, {cursor_row, cursor_column}, false);
    std::uint64_t end = find_blank(text_, {cursor_row, begin}, true);
    map_bytes(*this, text_.offset({cursor_row, begin}), text_.offset({cursor_row, end}),
              case_map(mode), nullptr);
    cursor_column = std::max(cursor_column, end);
}

void Buffer::translate(std::string_view from, std::string_view to, Work* work) {
    if (!modifiable || from.empty()) return;
    map_bytes(*this, 0, text_.bytes(), translation(from, to), work);
}

void Buffer::translate_range(const Range& range, std::string_view from, std::string_view to,
                             Work* work) {
    if (!modifiable || from.empty() || range.buffer() != this) return;
    auto [begin, end] = offsets(text_, range);
    map_bytes(*this, begin, end, translation(from, to), work);
}

// Deliberate: works on an unmodifiable buffer too, and on every line of it.
void Buffer::shift_columns(int n, Work* work) {
    shift_rows(0, text_.size() - 1, n, work);
}

void Buffer::shift_rows(std::uint64_t first, std::uint64_t last, int n, Work* work) {
    Work unwatched, &watched = work ? *work : unwatched;
    last = std::min(last, text_.size() - 1);
    if (n == 0 || first > last) {
        modified = true;
        return;
    }
    const auto inserted = static_cast<std::size_t>(std::max(n, 0));
    const auto rows = std::min<std::uint64_t>(last - first + 1, UINT32_MAX);  // lest it overflows
    if (!watched.may_add(rows * inserted)) return;
    TextBuilder shifted;
    const std::string spaces(inserted, ' ');
    const std::uint64_t dropped = n < 0 ? -static_cast<std::uint64_t>(n) : 0;
    const std::uint64_t begin = text_.row_start(first);
    std::uint64_t start = begin, end = begin;
    for (std::uint64_t row = first; row <= last; ++row) {
        if (!watched.goes_on()) return;
        if (row > first) shifted.append_break();
        shifted.append(spaces);
        end = start + text_.length(row);
        std::uint64_t kept = std::min(start + dropped, end);
        text_.for_each_span(kept, end, [&](std::string_view span) {
            shifted.append(span);
            return true;
        });
        start = end + 1;
    }
    const LineStore fresh = shifted.take();
    change(begin, end, fresh.bytes(), [&] { text_.replace(begin, end, fresh); });
}

}  // namespace tpu
