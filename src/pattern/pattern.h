// Patterns: a flat sequence of tokens, matched left to right without backtracking.
//
// Each token consumes as much as its rule says; one that fails makes the whole
// attempt fail at that start. There are two matchers with the same rules but for
// line ends: one sees a single line, the other a whole text in which every line
// end, the last line's included, counts as one line feed.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/line_store.h"
#include "text/position.h"

namespace tpu {

struct TPUPatternToken {
    enum Kind : std::uint32_t {
        kLiteral,
        kAny,
        kNotAny,
        kArb,
        kScan,
        kScanL,
        kSpan,
        kSpanL,
        kLineBegin,
        kLineEnd,
        kPageBreak,
        kRemain,
        kUnanchor,
    };

    Kind kind = kLiteral;
    std::string text;          // the literal, or the set of bytes
    std::uint64_t count = 0;   // the length of ARB
    std::uint64_t joined = 0;  // 1: joined to what comes before with &; no matcher reads it

    static TPUPatternToken literal(std::string text) { return {kLiteral, std::move(text), 0, 0}; }
};

struct TPUPattern {
    std::vector<TPUPatternToken> tokens;  // in match order
    bool anchored = false;                // a search tries only where it starts
    std::size_t bytes = 0;                // what joins have counted; 0: nothing

    // True when byte `c` occurs in `set`.
    static bool contains_char(std::string_view set, char c) {
        return set.find(c) != std::string_view::npos;
    }

    // Matches within `line` from byte `start`. On success true, and `end` is the
    // byte just past the match; else false, and `end` is left alone.
    bool match_at(std::string_view line, std::size_t start, std::size_t& end) const;

    // Matches in a text from a row and byte column, across line ends. On success
    // true, and the end is the place just past the match, which may be column 0
    // of the row after the last; else false, and the end is left alone.
    bool match_at_buffer(const LineStore& lines, std::uint64_t row, std::uint64_t column,
                         std::uint64_t& end_row, std::uint64_t& end_column) const;
};

}  // namespace tpu
