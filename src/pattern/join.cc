#include "pattern/join.h"

#include <iterator>
#include <string>
#include <utility>

namespace tpu {

TPUPattern value_to_pattern(const Value& value) {
    TPUPattern pattern;
    if (value.is(Value::Type::string)) {
        pattern.tokens.push_back(TPUPatternToken::literal(std::string(value.text())));
    } else if (auto held = value.pattern()) {
        pattern = *held;
    }
    return pattern;
}

std::size_t pattern_bytes(const Value& value) {
    auto held = value.pattern();
    if (!held) return value.text().size();
    if (held->bytes > 0) return held->bytes;
    std::size_t bytes = held->tokens.size() * sizeof(TPUPatternToken);
    for (const TPUPatternToken& token : held->tokens) bytes += token.text.size();
    return bytes;
}

namespace {

void append(TPUPattern& joined, TPUPattern next, char op) {
    joined.anchored = joined.anchored || next.anchored;
    if (op == '&' && !next.tokens.empty()) next.tokens.front().joined = 1;
    joined.tokens.insert(joined.tokens.end(), std::make_move_iterator(next.tokens.begin()),
                         std::make_move_iterator(next.tokens.end()));
}

}  // namespace

Value concat_patterns(Value a, const Value& b, char op) {
    const std::size_t bytes = pattern_bytes(a) + pattern_bytes(b);
    if (!a.own_pattern()) a = Value::make_pattern(value_to_pattern(a));
    TPUPattern& joined = *a.own_pattern();
    append(joined, value_to_pattern(b), op);
    joined.bytes = bytes;
    return a;
}

}  // namespace tpu
