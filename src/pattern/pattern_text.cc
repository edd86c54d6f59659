#include "pattern/pattern_text.h"

#include <algorithm>
#include <utility>

#include "text/ascii.h"
#include "value/call_text.h"
#include "value/value.h"

namespace tpu {

namespace {

using Token = TPUPatternToken;

constexpr char kJoinMark = '\1';  // before the operator, at the front of a term

struct Keyword {
    std::string_view name;
    Token::Kind kind;
};

// The whole term, but for ANCHOR, which makes no token.
constexpr Keyword kWords[] = {
    {"LINE_BEGIN", Token::kLineBegin}, {"LINE_END", Token::kLineEnd},
    {"PAGE_BREAK", Token::kPageBreak}, {"REMAIN", Token::kRemain},
    {"UNANCHOR", Token::kUnanchor},
};

// The first that the term begins with decides, so a longer name stands before its
// beginning. Nothing says where a name ends: ANYTHING is an ANY.
constexpr Keyword kCalls[] = {
    {"NOTANY", Token::kNotAny}, {"ANY", Token::kAny},   {"ARB", Token::kArb},
    {"SCANL", Token::kScanL},   {"SCAN", Token::kScan}, {"SPANL", Token::kSpanL},
    {"SPAN", Token::kSpan},
};

std::uint64_t arb_count(std::string argument) {
    const long long count = Value::make_str(std::move(argument)).as_int();
    return static_cast<std::uint64_t>(std::max(count, 0LL));
}

// The token of a term that is not ANCHOR.
Token token_of(std::string_view term, std::string_view upper) {
    for (const Keyword& word : kWords) {
        if (upper == word.name) return {word.kind, {}, 0, 0};
    }
    for (const Keyword& call : kCalls) {
        if (!upper.starts_with(call.name)) continue;
        std::string argument = first_call_argument(term);
        if (call.kind == Token::kArb) return {call.kind, {}, arb_count(std::move(argument)), 0};
        return {call.kind, strip_quotes(argument), 0, 0};
    }
    return Token::literal(strip_quotes(term));
}

}  // namespace

std::vector<std::string> split_pattern_terms(std::string_view text) {
    std::vector<std::string> terms;
    std::string mark;
    std::size_t start = 0, depth = 0;
    auto end_term = [&](std::size_t end) {
        std::string term = mark.append(text.substr(start, end - start));
        if (std::string_view trimmed = ascii::trim(term); !trimmed.empty()) {
            terms.emplace_back(trimmed);
        }
    };
    for (SourceScan scan(text); scan.next();) {
        const char c = scan.byte();
        if (scan.in_string()) continue;
        if (c == '(') ++depth;
        if (c == ')' && depth > 0) --depth;
        if (depth > 0 || (c != '+' && c != '&' && c != '|')) continue;
        end_term(scan.at());
        mark = {kJoinMark, c};
        start = scan.at() + 1;
    }
    end_term(text.size());
    return terms;
}

TPUPattern parse_pattern_expression(std::string_view text) {
    TPUPattern pattern;
    for (const std::string& marked : split_pattern_terms(text)) {
        std::string_view term = marked;
        bool and_joined = false;
        if (term.size() >= 2 && term.front() == kJoinMark) {
            and_joined = term[1] == '&';
            term = ascii::trim(term.substr(2));
        }
        const std::string upper = ascii::upper(term);
        if (upper == "ANCHOR") {
            pattern.anchored = true;
            continue;
        }
        if (upper == "UNANCHOR") pattern.anchored = false;
        pattern.tokens.push_back(token_of(term, upper));
        pattern.tokens.back().joined = and_joined;
    }
    return pattern;
}

}  // namespace tpu
