#include "pattern/pattern_text.h"

#include <gtest/gtest.h>

#include "pattern/join.h"
#include "value/value.h"

namespace tpu {
namespace {

using Terms = std::vector<std::string>;
using Token = TPUPatternToken;

// A pattern in one line: "^" when anchored, then kind, text, count and "&" of each token.
std::string shown(const TPUPattern& pattern) {
    std::string result = pattern.anchored ? "^" : "";
    for (const Token& t : pattern.tokens) {
        result += "[" + std::to_string(t.kind) + ":" + t.text + ":" + std::to_string(t.count) +
                  (t.joined ? "&]" : "]");
    }
    return result;
}

Token token(Token::Kind kind, std::string text = "", std::uint64_t count = 0, bool joined = false) {
    return {kind, std::move(text), count, joined};
}

TEST(PatternText, is_split_at_operators_outside_quotes_and_parentheses) {
    EXPECT_EQ(split_pattern_terms(" a + \"b+c\" & ANY(\"x\" | (y+z)) |d"),
              (Terms{"a", "\1+ \"b+c\"", "\1& ANY(\"x\" | (y+z))", "\1|d"}));
    EXPECT_EQ(split_pattern_terms(") a + b"), (Terms{") a", "\1+ b"}));
    EXPECT_EQ(split_pattern_terms("\"(\" + b"), (Terms{"\"(\"", "\1+ b"}));
    EXPECT_EQ(split_pattern_terms("(a + b"), (Terms{"(a + b"}));
    EXPECT_EQ(split_pattern_terms(" + a + "), (Terms{"\1+ a", "\1+"}));
}

TEST(PatternText, gives_tokens) {
    struct Case {
        const char* text;
        std::vector<Token> tokens;
        bool anchored = false;
    };
    const Case cases[] = {
        {"", {}},
        {"anchor & LINE_begin & Remain",
         {token(Token::kLineBegin, "", 0, true), token(Token::kRemain, "", 0, true)},
         true},
        {"ANCHOR + UNANCHOR + LINE_END | PAGE_BREAK",
         {token(Token::kUnanchor), token(Token::kLineEnd), token(Token::kPageBreak)}},
        {"any( \"aB\" ) & notany(\"+\")",
         {token(Token::kAny, "aB"), token(Token::kNotAny, "+", 0, true)}},
        {"SCAN(x)+SCANL(\"x\")+SPAN(\" \")+SPANL(\")\")",
         {token(Token::kScan, "x"), token(Token::kScanL, "x"), token(Token::kSpan, " "),
          token(Token::kSpanL, ")")}},
        {"ANYTHING(\"a\") + anyhow", {token(Token::kAny, "a"), token(Token::kAny)}},
        {"ARB(12) + ARB() + ARB(-3) + arb(99999999999999999999) + ARB(7x)",
         {token(Token::kArb, "", 12), token(Token::kArb), token(Token::kArb), token(Token::kArb),
          token(Token::kArb, "", 7)}},
        {"\"ANY\" & \" a \" +   word",
         {token(Token::kLiteral, "ANY"), token(Token::kLiteral, " a ", 0, true),
          token(Token::kLiteral, "word")}},
        {"REMAINS + ANCHORED",
         {token(Token::kLiteral, "REMAINS"), token(Token::kLiteral, "ANCHORED")}},
        {"a +", {token(Token::kLiteral, "a"), token(Token::kLiteral)}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(shown(parse_pattern_expression(c.text)), shown({c.tokens, c.anchored})) << c.text;
    }
}

TEST(PatternText, equals_what_joined_values_make) {
    const Value digits = pattern_value(parse_pattern_expression("ANCHOR + SPAN(\"09\")"));
    const Value x = Value::make_str("x"), number = Value::make_int(7);
    auto joined = [](const Value& a, const Value& b, char op) {
        return shown(*pattern_of(concat_patterns(a, b, op)));
    };
    EXPECT_EQ(joined(x, digits, '&'),
              shown(parse_pattern_expression("\"x\" & SPAN(\"09\") + ANCHOR")));
    EXPECT_EQ(joined(digits, x, '+'), shown(parse_pattern_expression("ANCHOR+SPAN(\"09\")+x")));
    EXPECT_EQ(joined(x, number, '&'), shown(value_to_pattern(x)));
    EXPECT_EQ(joined(number, Value::make_kw("x"), '+'), "");
}

}  // namespace
}  // namespace tpu
