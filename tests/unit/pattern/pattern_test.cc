// The matchers and searches against a plain reading of the rules, on small random
// texts and patterns.
#include "pattern/pattern.h"

#include <gtest/gtest.h>

#include <random>

#include "buffer/buffer.h"
#include "pattern/search.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;
using Token = TPUPatternToken;

Token token(Token::Kind kind, std::string text = "", std::uint64_t count = 0) {
    return {kind, std::move(text), count, 0};
}

// One attempt at a time, byte by byte, over a vector of lines.
struct PlainMatcher {
    const Lines& lines;
    std::uint64_t row, column;

    int character() const {
        if (row >= lines.size()) return -1;
        return column < lines[row].size() ? static_cast<unsigned char>(lines[row][column]) : '\n';
    }
    bool at_line_end() const { return row < lines.size() && column >= lines[row].size(); }
    void advance() {
        if (row >= lines.size()) return;
        if (at_line_end()) {
            ++row;
            column = 0;
        } else {
            ++column;
        }
    }
    bool in(const std::string& set) const {
        return set.find(static_cast<char>(character())) != std::string::npos;
    }
    bool inside() const { return character() != -1 && !at_line_end(); }

    bool apply(const Token& t) {
        Position before{row, column};
        switch (t.kind) {
            case Token::kLiteral:
                for (char c : t.text) {
                    if (character() != static_cast<unsigned char>(c)) return false;
                    advance();
                }
                return true;
            case Token::kAny:
            case Token::kNotAny:
                if (!inside() || in(t.text) != (t.kind == Token::kAny)) return false;
                advance();
                return true;
            case Token::kArb:
                for (std::uint64_t i = 0; i < t.count; ++i, advance()) {
                    if (character() == -1) return false;
                }
                return true;
            case Token::kScan:
            case Token::kScanL:
                while (character() != -1 && !(inside() && in(t.text))) advance();
                return t.kind == Token::kScanL || character() != -1;
            case Token::kSpan:
            case Token::kSpanL:
                while (inside() && in(t.text)) advance();
                return t.kind == Token::kSpanL || before != Position{row, column};
            case Token::kLineBegin: return column == 0;
            case Token::kLineEnd: return character() == -1 || at_line_end();
            case Token::kPageBreak:
                if (!inside() || character() != '\f') return false;
                advance();
                return true;
            case Token::kRemain:
                if (row < lines.size()) column = lines[row].size();
                return true;
            case Token::kUnanchor: return true;
        }
        return false;
    }

    bool match(const TPUPattern& pattern) {
        for (const Token& t : pattern.tokens) {
            if (!apply(t)) return false;
        }
        return true;
    }
};

using Span = std::optional<std::pair<Position, Position>>;

Span search_rows(const Lines& lines, const TPUPattern& pattern, Position from, std::uint64_t end) {
    for (std::uint64_t row = from.row; row < end; ++row) {
        std::uint64_t first = row == from.row ? from.column : 0;
        std::uint64_t last = pattern.anchored ? first : lines[row].size();
        for (std::uint64_t column = first; column <= last; ++column) {
            PlainMatcher matcher{lines, row, column};
            if (matcher.match(pattern)) {
                return {{{row, column}, {matcher.row, matcher.column}}};
            }
        }
    }
    return std::nullopt;
}

Span span(const std::optional<Range>& range) {
    if (!range) return std::nullopt;
    return {{range->start.position(), range->end.position()}};
}

class RandomPatterns : public testing::TestWithParam<unsigned> {
  protected:
    std::uint64_t below(std::uint64_t n) { return random_() % n; }

    std::string letters(std::uint64_t most, const char* alphabet) {
        std::string text;
        for (std::uint64_t n = below(most + 1); n > 0; --n)
            text += alphabet[below(std::string_view(alphabet).size())];
        return text;
    }

    Lines some_lines() {
        Lines lines(1 + below(5));
        for (std::string& line : lines)
            line = letters(below(2) ? 3 : 12, below(3) ? "aaab\fc" : "aab\n");
        return lines;
    }

    TPUPattern some_pattern() {
        TPUPattern pattern;
        pattern.anchored = below(6) == 0;
        for (std::uint64_t n = below(5); n > 0; --n) {
            auto kind = static_cast<Token::Kind>(below(13));
            pattern.tokens.push_back(
                token(kind, letters(2, below(4) ? "ab" : "abc\n\f"), below(4)));
        }
        return pattern;
    }

    std::mt19937 random_{GetParam()};
};

TEST_P(RandomPatterns, are_found_where_a_plain_reading_of_the_rules_finds_them) {
    for (int i = 0; i < 4000; ++i) {
        Lines lines = some_lines();
        TPUPattern pattern = some_pattern();
        Buffer buffer("B", "");
        buffer.set_text(LineStore(lines));
        std::uint64_t row = below(lines.size()), column = below(lines[row].size() + 1);

        PlainMatcher plain{lines, row, column};
        std::uint64_t end_row = 77, end_column = 77;
        bool matched = pattern.match_at_buffer(buffer.text(), row, column, end_row, end_column);
        ASSERT_EQ(matched, plain.match(pattern));
        Position untouched{77, 77}, end{end_row, end_column};
        Position plain_end{plain.row, plain.column};
        ASSERT_EQ(end, matched ? plain_end : untouched);

        bool wrap = below(2) == 0;
        Span expected = search_rows(lines, pattern, {row, column}, lines.size());
        if (!expected && wrap) expected = search_rows(lines, pattern, {0, 0}, row);
        buffer.cursor_row = row;
        buffer.cursor_column = column;
        ASSERT_EQ(span(search_pattern_forward(buffer, pattern, true, wrap)), expected);
        Position cursor{buffer.cursor_row, buffer.cursor_column}, here{row, column};
        ASSERT_EQ(cursor, expected ? expected->first : here);
    }
}

// The nearest match before the cursor, one line at a time, no match across line ends.
Span plain_backward(const Lines& lines, const TPUPattern& pattern, Position from) {
    for (std::uint64_t row = from.row + 1; row-- > 0;) {
        std::uint64_t before = row == from.row ? from.column : lines[row].size();
        for (std::uint64_t column = before; column-- > 0;) {
            std::size_t end = 0;
            if (pattern.match_at(lines[row], column, end)) return {{{row, column}, {row, end}}};
        }
    }
    return std::nullopt;
}

TEST_P(RandomPatterns, are_found_backward_from_line_to_line) {
    for (int i = 0; i < 4000; ++i) {
        Lines lines = some_lines();
        TPUPattern pattern = some_pattern();
        Buffer buffer("B", "");
        buffer.set_text(LineStore(lines));
        buffer.cursor_row = below(lines.size());
        buffer.cursor_column = below(lines[buffer.cursor_row].size() + 1);
        Position from{buffer.cursor_row, buffer.cursor_column};
        Span expected = plain_backward(lines, pattern, from);
        bool move = below(2) == 0;
        ASSERT_EQ(span(search_pattern_backward(buffer, pattern, move)), expected);
        Position cursor{buffer.cursor_row, buffer.cursor_column};
        ASSERT_EQ(cursor, move && expected ? expected->first : from);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomPatterns, testing::Range(1u, 5u));

TEST(Pattern, treats_line_ends_in_one_line_as_its_matcher_does) {
    struct Case {
        Token token;
        std::string line;
        std::size_t start;
        std::optional<std::size_t> end;
    };
    const Case cases[] = {
        {token(Token::kScan, "x"), "abxd", 0, 2},
        {token(Token::kScan, "x"), "abcd", 0, std::nullopt},
        {token(Token::kScanL, "x"), "abcd", 0, 4},
        {token(Token::kSpan, "ab"), "abba!", 1, 4},
        {token(Token::kSpan, "x"), "abba!", 1, std::nullopt},
        {token(Token::kSpanL, "x"), "abba!", 1, 1},
        {token(Token::kArb, "", 3), "abcd", 1, 4},
        {token(Token::kArb, "", 4), "abcd", 1, std::nullopt},
        {token(Token::kAny, "\n"), "ab", 2, std::nullopt},
        {token(Token::kRemain), "abcd", 1, 4},
        {token(Token::kLineEnd), "abcd", 4, 4},
        {token(Token::kLineBegin), "abcd", 1, std::nullopt},
        {token(Token::kPageBreak), "a\fb", 1, 2},
    };
    for (const Case& c : cases) {
        std::size_t end = 99;
        TPUPattern pattern{{c.token}, false};
        EXPECT_EQ(pattern.match_at(c.line, c.start, end), c.end.has_value());
        EXPECT_EQ(end, c.end.value_or(99)) << c.token.kind << " in " << c.line;
    }
}

TEST(Pattern, matches_from_a_column_past_the_end_of_a_line) {
    LineStore lines(Lines{"", "b"});
    std::uint64_t row = 0, column = 0;
    TPUPattern nothing, begin{{token(Token::kLineBegin)}, false},
        next{{token(Token::kArb, "", 2)}, false};
    EXPECT_TRUE(nothing.match_at_buffer(lines, 0, 5, row, column));
    EXPECT_EQ(column, 5u);
    EXPECT_FALSE(begin.match_at_buffer(lines, 0, 5, row, column));
    EXPECT_TRUE(next.match_at_buffer(lines, 0, 5, row, column));
    EXPECT_EQ((Position{row, column}), (Position{1, 1}));
}

// Every one of these is quadratic when starts repeat what earlier ones walked. The
// lines are long enough that such a search would run into the tests' time limit.
TEST(Search, is_linear_for_patterns_that_never_match) {
    const std::string long_line(1'000'000, 'a');
    Buffer buffer("B", "");
    buffer.set_text(LineStore(Lines{long_line, "", long_line}));
    const TPUPattern hopeless[] = {
        {{token(Token::kScan, "x")}, false},
        {{token(Token::kSpan, "a"), token(Token::kLiteral, "b")}, false},
        {{token(Token::kSpanL, "ab"), token(Token::kAny, "x")}, false},
        {{token(Token::kScanL, "x"), token(Token::kLiteral, "y")}, false},
        {{token(Token::kRemain), token(Token::kLiteral, "\nb")}, false},
        {{token(Token::kArb, "", 9), token(Token::kRemain), token(Token::kPageBreak)}, false},
        {{token(Token::kAny, "a"), token(Token::kSpan, "a"), token(Token::kAny, "b")}, false},
        {{token(Token::kLiteral, std::string(1000, 'a') + "\nb")}, false},
    };
    for (const TPUPattern& pattern : hopeless) {
        buffer.beginning_of_buffer();
        EXPECT_FALSE(search_pattern_forward(buffer, pattern, false, false));
        buffer.end_of_buffer();
        EXPECT_FALSE(search_pattern_backward(buffer, pattern, false));
    }
}

}  // namespace
}  // namespace tpu
