// Functions that make patterns.
#include <algorithm>

#include "builtins/families.h"
#include "pattern/join.h"
#include "pattern/pattern.h"

namespace tpu::builtins {

namespace {

using Token = TPUPatternToken;

Value token(Token::Kind kind, std::string text = {}, std::uint64_t count = 0) {
    TPUPattern pattern;
    pattern.tokens.push_back({kind, std::move(text), count, 0});
    return pattern_value(std::move(pattern));
}

template <Token::Kind kind>
Value bare(Call&) {
    return token(kind);
}

// A set of bytes.
template <Token::Kind kind>
Value set(Call& call) {
    return token(kind, call.args.text(0));
}

Value anchor(Call&) {
    TPUPattern pattern;
    pattern.anchored = true;
    return pattern_value(std::move(pattern));
}

Value arb(Call& call) {
    return token(Token::kArb, {}, static_cast<std::uint64_t>(std::max(call.args.number(0), 0LL)));
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "ANCHOR", .function = anchor, .bare = true, .form = "ANCHOR",
     .help = "Match only where the search begins in each line."},
    {.name = "UNANCHOR", .function = bare<Token::kUnanchor>, .bare = true, .form = "UNANCHOR",
     .help = "Match nothing, anywhere."},
    {.name = "REMAIN", .function = bare<Token::kRemain>, .bare = true, .form = "REMAIN",
     .help = "Match the rest of the line."},
    {.name = "PAGE_BREAK", .function = bare<Token::kPageBreak>, .bare = true, .form = "PAGE_BREAK",
     .help = "Match a form feed."},
    {.name = "ANY", .function = set<Token::kAny>, .form = "ANY(characters)",
     .help = "Match one of the characters."},
    {.name = "NOTANY", .function = set<Token::kNotAny>, .form = "NOTANY(characters)",
     .help = "Match one character that is none of these."},
    {.name = "SCAN", .function = set<Token::kScan>, .form = "SCAN(characters)",
     .help = "Match what comes before the next of the characters, across lines."},
    {.name = "SCANL", .function = set<Token::kScanL>, .form = "SCANL(characters)",
     .help = "The same, or up to the end of the text."},
    {.name = "SPAN", .function = set<Token::kSpan>, .form = "SPAN(characters)",
     .help = "Match a run of the characters within the line, at least one."},
    {.name = "SPANL", .function = set<Token::kSpanL>, .form = "SPANL(characters)",
     .help = "The same, but it may be empty."},
    {.name = "ARB", .function = arb, .form = "ARB(n)",
     .help = "Match n characters."},
};
// clang-format on

}  // namespace

std::span<const Builtin> patterns() {
    return kRows;
}

}  // namespace tpu::builtins
