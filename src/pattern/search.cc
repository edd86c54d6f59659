#include "pattern/search.h"

#include <algorithm>

#include "pattern/match_buffer.h"
#include "pattern/match_line.h"

namespace tpu {

namespace {

using Token = TPUPatternToken;

// Walks the starts of a forward search and skips those where the first token
// cannot match.
class ForwardSearch {
  public:
    ForwardSearch(const TPUPattern& pattern, const LineStore& lines, Work& work)
        : lines_(lines),
          work_(work),
          reader_(lines),
          matcher_(pattern, lines, RememberedRuns(pattern)),
          anchored_(pattern.anchored) {
        for (const Token& token : pattern.tokens) {
            first_ = &token;
            if (token.kind != Token::kUnanchor) break;
        }
        if (first_) {
            for (char c : first_->text) set_.set(static_cast<unsigned char>(c));
        }
    }

    // Tries the starts in [from, last] in order; the match as offsets.
    struct Match {
        std::uint64_t start, end;
    };
    std::optional<Match> run(std::uint64_t from, std::uint64_t last) {
        for (std::uint64_t start = from; start <= last && work_.goes_on(); ++start) {
            if (anchored_) {
                if (start != from) start = row_start(start);
            } else {
                start = candidate(start, last);
            }
            std::uint64_t end = 0;
            if (start > last) break;
            if (matcher_.match(start, end)) return Match{start, end};
            if (matcher_.is_hopeless()) break;
            if (!anchored_) start = std::max(start, matcher_.same_until());
        }
        return std::nullopt;
    }

  private:
    // The first row start at or after `offset`; kNowhere after the last one.
    std::uint64_t row_start(std::uint64_t offset) {
        if (reader_.at_line_begin(offset)) return offset;
        std::uint64_t end = reader_.line_end(offset);
        return end < lines_.bytes() ? end + 1 : kNowhere;
    }

    std::uint64_t candidate(std::uint64_t from, std::uint64_t last) {
        if (!first_) return from;
        switch (first_->kind) {
            case Token::kLiteral: return literal(from);
            case Token::kAny:
            case Token::kSpan: return next_byte(from, last, true);
            case Token::kNotAny: return next_byte(from, last, false);
            case Token::kPageBreak: return lines_.find("\f", from).value_or(kNowhere);
            case Token::kLineBegin: return row_start(from);
            case Token::kLineEnd: return reader_.line_end(from);
            default: return from;
        }
    }

    std::uint64_t literal(std::uint64_t from) {
        if (first_->text.empty()) return from;
        std::size_t head = first_->text.find('\n');
        if (head == std::string::npos) return lines_.find(first_->text, from).value_or(kNowhere);
        // The literal starts that far before a line feed.
        return head > lines_.bytes() - from ? kNowhere : line_feed(from + head) - head;
    }

    // The first line feed at or after `offset`, be it a line end or text.
    std::uint64_t line_feed(std::uint64_t offset) {
        while (offset < lines_.bytes()) {
            const LineStore::Chunk& chunk = reader_.chunk(offset);
            std::size_t feed = chunk.text.find('\n', offset - chunk.begin);
            if (feed != std::string_view::npos) return chunk.begin + feed;
            offset = chunk.end();
        }
        return lines_.bytes();
    }

    // The first offset from `from` on whose byte is (or is not) in the first token's set.
    std::uint64_t next_byte(std::uint64_t from, std::uint64_t last, bool wanted) {
        std::uint64_t limit = std::min(last + 1, lines_.bytes());
        while (from < limit) {
            const LineStore::Chunk& chunk = reader_.chunk(from);
            if (!work_.goes_on()) return kNowhere;
            for (; from < limit && from < chunk.end(); ++from) {
                char c = chunk.text[from - chunk.begin];
                if (set_[static_cast<unsigned char>(c)] == wanted && (c != '\n' || chunk.raw)) {
                    return from;
                }
            }
        }
        return kNowhere;
    }

    const LineStore& lines_;
    Work& work_;
    TextReader reader_;
    BufferMatcher<RememberedRuns> matcher_;
    bool anchored_;
    const Token* first_ = nullptr;
    std::bitset<256> set_;
};

}  // namespace

std::optional<Range> search_pattern_forward(Buffer& buffer, const TPUPattern& pattern,
                                            bool move_cursor, bool wrap, Work* work) {
    Work unwatched, &watched = work ? *work : unwatched;
    buffer.clamp_cursor();
    std::uint64_t column = std::min(buffer.cursor_column, buffer.text().length(buffer.cursor_row));
    auto match = ForwardSearch(pattern, buffer.text(), watched)
                     .run(buffer.text().offset({buffer.cursor_row, column}), buffer.text().bytes());
    if (!match && wrap && buffer.cursor_row > 0) {
        match = ForwardSearch(pattern, buffer.text(), watched)
                    .run(0, buffer.text().row_start(buffer.cursor_row) - 1);
    }
    if (!match) return std::nullopt;
    Position start = buffer.text().position(match->start),
             end = text_position(buffer.text(), match->end);
    if (move_cursor) {
        buffer.cursor_row = start.row;
        buffer.cursor_column = start.column;
    }
    return Range({&buffer, start.row, start.column}, {&buffer, end.row, end.column});
}

std::optional<Range> search_pattern_backward(Buffer& buffer, const TPUPattern& pattern,
                                             bool move_cursor, Work* work) {
    buffer.clamp_cursor();
    std::uint64_t before =
        std::min(buffer.cursor_column, buffer.text().length(buffer.cursor_row) + 1);
    std::uint64_t start = buffer.text().row_start(buffer.cursor_row),
                  end_of_row = start + buffer.text().length(buffer.cursor_row);
    for (std::uint64_t row = buffer.cursor_row;;) {
        std::string line = buffer.text().text(start, end_of_row);
        LineMatcher<RememberedRuns> matcher(pattern, line, RememberedRuns(pattern));
        for (std::uint64_t column = before; column-- > 0;) {
            if (work && !work->goes_on()) return std::nullopt;
            std::size_t end = 0;
            if (!matcher.match(column, end)) continue;
            if (move_cursor) {
                buffer.cursor_row = row;
                buffer.cursor_column = column;
            }
            return Range({&buffer, row, column}, {&buffer, row, end});
        }
        if (row == 0) return std::nullopt;
        end_of_row = start - 1;
        start = buffer.text().row_start(--row);
        before = end_of_row - start;
    }
}

namespace {

// Moves the cursor to the first occurrence among the bytes [from, to).
bool find_text(Buffer& buffer, std::string_view text, std::uint64_t from, std::uint64_t to) {
    auto found = buffer.text().find(text, from, to);
    if (!found) return false;
    Position place = buffer.text().position(*found);
    buffer.cursor_row = place.row;
    buffer.cursor_column = place.column;
    return true;
}

// Where a search starts that skips what stands at the cursor.
std::uint64_t past_cursor(const Buffer& buffer) {
    std::uint64_t row = std::min(buffer.cursor_row, buffer.text().size() - 1);
    return buffer.text().offset(
        {row, std::min(buffer.cursor_column + 1, buffer.text().length(row))});
}

}  // namespace

bool search_forward(Buffer& buffer, std::string_view text) {
    return find_text(buffer, text, past_cursor(buffer), buffer.text().bytes());
}

bool search_from_top(Buffer& buffer, std::string_view text) {
    return find_text(buffer, text, 0, buffer.text().bytes());
}

bool search_round(Buffer& buffer, std::string_view text) {
    std::uint64_t start = past_cursor(buffer);
    return find_text(buffer, text, start, buffer.text().bytes()) ||
           find_text(buffer, text, 0, start + text.size());
}

}  // namespace tpu
