// Typing: characters, strings, tabs, and the wrap that a blank may set off.
#include <algorithm>

#include "buffer/buffer.h"
#include "text/ascii.h"
#include "text/characters.h"

namespace tpu {

namespace {

// Margins and stops may be any number; no blank goes further than this at once.
constexpr std::uint64_t kMostBlanks = 65'535;

// The column that a tab at `column` leads to.
std::uint64_t tab_target(const Buffer& buffer, std::uint64_t column) {
    for (std::uint64_t stop : buffer.tab_stops) {
        if (stop > column + 1) return std::min(stop - 1, column + kMostBlanks);
    }
    std::uint64_t interval = std::clamp<std::uint64_t>(buffer.tab_interval, 1, kMostBlanks);
    return (column / interval + 1) * interval;
}

bool wraps(const Buffer& buffer) {
    return buffer.auto_wrap && buffer.right_margin > 0;
}

std::string indent_of(const Buffer& buffer) {
    std::uint64_t margin = std::max<std::uint64_t>(buffer.left_margin, 1);
    return std::string(std::min(margin - 1, kMostBlanks), ' ');
}

// Types a long string into a copy of the cursor line: the text before the cursor
// in `head`, how much of the text after it was overwritten in `overwritten`. Every
// step does what copy_text(char), split_line and insert_tab do to the buffer.
class TypedText {
  public:
    TypedText(const Buffer& buffer, Charset charset, Work& work)
        : buffer_(buffer),
          charset_(charset),
          work_(work),
          head_(buffer.text().slice({buffer.cursor_row, 0}, buffer.cursor_column)) {}

    // False: the work was over before its end.
    bool type(std::string_view text) {
        while (!text.empty()) {
            if (!work_.goes_on()) return false;
            std::size_t size = 1;
            if (text.front() == '\n') {
                end_line(head_);
                head_.clear();
                no_blank_ = 0;
            } else if (text.front() == '\t') {
                std::uint64_t spaces = tab_target(buffer_, head_.size()) - head_.size();
                if (!work_.may_add(spaces)) return false;
                for (; spaces > 0; --spaces) type_character(" ");
            } else {
                if (charset_ == Charset::utf8)
                    size = std::max<std::size_t>(1, decode_utf8(text).size);
                type_character(text.substr(0, size));
            }
            text.remove_prefix(size);
        }
        return work_.end == Work::End::done;
    }

    std::uint64_t rows() const { return rows_; }
    std::uint64_t column() const { return head_.size(); }
    std::uint64_t overwritten() const { return overwritten_; }
    // So many bytes at the begin of the line are as they were.
    std::uint64_t kept() const { return std::min(kept_, buffer_.cursor_column); }

    // The typed lines; the last one ends at the cursor.
    LineStore take() {
        done_.append(head_);
        return done_.take();
    }

  private:
    void type_character(std::string_view character) {
        head_ += character;
        if (!buffer_.insert_mode) {
            Position under{buffer_.cursor_row, buffer_.cursor_column + overwritten_};
            overwritten_ += character_size(buffer_.text(), under, charset_);
        }
        if (wraps(buffer_) && head_.size() > buffer_.right_margin &&
            ascii::is_space(character.back())) {
            wrap();
        }
    }

    // The head ends with the blank just typed, and that is where the line breaks.
    void wrap() {
        std::size_t blank = std::string_view(head_).substr(no_blank_).find_last_of(" \t");
        if (blank == std::string::npos) {
            no_blank_ = head_.size();
            return;
        }
        blank += std::exchange(no_blank_, 0);
        kept_ = std::min<std::uint64_t>(kept_, rows_ == 0 ? blank : kept_);
        end_line(std::string_view(head_).substr(0, blank));
        const std::string indent = indent_of(buffer_);
        work_.may_add(indent.size());
        head_ = indent + head_.substr(blank + 1);
    }

    void end_line(std::string_view line) {
        done_.append(line);
        done_.append_break();
        ++rows_;
    }

    const Buffer& buffer_;
    Charset charset_;
    Work& work_;
    std::string head_;
    std::size_t no_blank_ = 0;  // the first bytes of the head, known to be no blanks
    std::uint64_t overwritten_ = 0;
    std::uint64_t kept_ = UINT64_MAX;
    std::uint64_t rows_ = 0;
    TextBuilder done_;
};

// The text as it goes in when nothing is overwritten or wrapped: tabs become spaces. When
// the work is over before its end it is of no use.
LineStore expand_tabs(const Buffer& buffer, std::string_view text, std::uint64_t& rows,
                      std::uint64_t& column, Work& work) {
    TextBuilder builder;
    while (!text.empty() && work.goes_on()) {
        std::size_t end = std::min(text.find_first_of("\n\t"), text.size());
        builder.append(text.substr(0, end));
        column += end;
        text.remove_prefix(end);
        if (text.empty()) break;
        if (text.front() == '\n') {
            builder.append_break();
            ++rows;
            column = 0;
        } else {
            std::uint64_t target = tab_target(buffer, column);
            if (!work.may_add(target - column)) break;
            builder.append(std::string(target - column, ' '));
            column = target;
        }
        text.remove_prefix(1);
    }
    return builder.take();
}

}  // namespace

void Buffer::copy_text(char c) {
    if (!modifiable) return;
    type_character({&c, 1}, Charset::bytes);
}

void Buffer::type_character(std::string_view character, Charset charset) {
    if (!modifiable) return;
    materialize_cursor_column();
    leave_character(charset);
    std::uint64_t offset = text_.offset({cursor_row, cursor_column});
    std::uint64_t under =
        insert_mode ? 0 : character_size(text_, {cursor_row, cursor_column}, charset);
    edit(offset, offset + under, character);
    cursor_column += character.size();
    if (wraps(*this) && cursor_column > right_margin && ascii::is_space(character.back())) {
        wrap_current_line();
    }
}

Range Buffer::copy_text(std::string_view text, Charset charset, Work* work) {
    Marker start = mark(false);
    if (!modifiable || text.empty()) return Range(start, start);
    Work unwatched, &watched = work ? *work : unwatched;
    if (text.front() == '\n') {
        cursor_column = std::min(cursor_column, line_length());  // a line end needs no padding
    } else {
        materialize_cursor_column();
    }
    leave_character(charset);
    std::uint64_t rows = 0, column = cursor_column, line_start = text_.row_start(cursor_row);
    bool as_it_is = insert_mode && !wraps(*this);
    if (as_it_is && text.find_first_of("\n\t") == std::string_view::npos) {
        edit(line_start + cursor_column, line_start + cursor_column, text);
        column += text.size();
    } else if (as_it_is) {
        LineStore typed = expand_tabs(*this, text, rows, column, watched);
        if (watched.end != Work::End::done) return Range(start, start);
        edit(line_start + cursor_column, line_start + cursor_column, typed);
    } else {
        TypedText typed_text(*this, charset, watched);
        if (!typed_text.type(text)) return Range(start, start);
        rows = typed_text.rows();
        column = typed_text.column();
        std::uint64_t end = line_start + cursor_column + typed_text.overwritten();
        const LineStore typed = typed_text.take();
        const std::uint64_t kept = typed_text.kept();
        edit(line_start + kept, end, kept == 0 ? typed : typed.part(kept, typed.bytes()));
    }
    cursor_row += rows;
    cursor_column = column;
    return Range(start, mark(false));
}

void Buffer::copy_lines(const LineStore& text, Charset charset, Work* work) {
    bool as_it_is = insert_mode && !wraps(*this) && !text.may_hold_feeds() && !text.find("\t", 0);
    // Before a line end a free cursor is not padded for; copy_text knows.
    as_it_is = as_it_is && text.length(0) > 0;
    if (!as_it_is) {
        copy_text(text.text(), charset, work);
        return;
    }
    if (!modifiable) return;
    materialize_cursor_column();
    leave_character(charset);
    std::uint64_t last_row = text.size() - 1;
    const std::uint64_t here = text_.offset({cursor_row, cursor_column});
    edit(here, here, text);
    cursor_column = text.length(last_row) + (last_row == 0 ? cursor_column : 0);
    cursor_row += last_row;
}

void Buffer::insert_tab(Charset charset) {
    if (!modifiable) return;
    leave_character(charset);
    std::uint64_t spaces = tab_target(*this, cursor_column) - cursor_column;
    for (; spaces > 0; --spaces) type_character(" ", charset);
}

void Buffer::wrap_current_line() {
    if (!modifiable) return;
    clamp_cursor();
    std::uint64_t length = text_.length(cursor_row);
    if (length <= right_margin) return;
    std::uint64_t start = text_.row_start(cursor_row);
    // Look for the last blank before the cursor, a stretch at a time.
    constexpr std::uint64_t kStretch = 256;
    std::uint64_t p = std::min(cursor_column, length);
    std::size_t blank = std::string::npos;
    while (p > 0 && blank == std::string::npos) {
        std::uint64_t from = p - std::min(p, kStretch);
        blank = text_.text(start + from, start + p).find_last_of(" \t");
        p = from;
    }
    if (blank == std::string::npos) return;
    std::uint64_t cut = p + blank;
    edit(start + cut, start + cut + 1, LineBreak());
    std::string indent = indent_of(*this);
    edit(start + cut + 1, start + cut + 1, indent);
    ++cursor_row;
    cursor_column = std::min(cursor_column - cut - 1 + indent.size(), text_.length(cursor_row));
}

}  // namespace tpu
