#include "pattern/join.h"

#include <iterator>
#include <string>
#include <utility>

namespace tpu {

namespace {

struct PatternObject : Object {
    explicit PatternObject(TPUPattern held) : pattern(std::move(held)) {}
    bool truth() const override { return !pattern.tokens.empty(); }

    TPUPattern pattern;
};

// To be changed in place; null when anybody else holds it.
TPUPattern* own_pattern(const Value& value) {
    return value.is_only_holder() ? const_cast<TPUPattern*>(pattern_of(value)) : nullptr;
}

}  // namespace

Value pattern_value(TPUPattern pattern) {
    auto object = std::make_shared<PatternObject>(std::move(pattern));
    return Value::make_object(Value::Type::pattern, std::move(object));
}

const TPUPattern* pattern_of(const Value& value) {
    auto object = value.object<PatternObject>(Value::Type::pattern);
    return object ? &object->pattern : nullptr;
}

TPUPattern value_to_pattern(const Value& value) {
    TPUPattern pattern;
    if (value.is(Value::Type::string)) {
        pattern.tokens.push_back(TPUPatternToken::literal(std::string(value.text())));
    } else if (const TPUPattern* held = pattern_of(value)) {
        pattern = *held;
    }
    return pattern;
}

std::size_t pattern_bytes(const Value& value) {
    const TPUPattern* held = pattern_of(value);
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
    if (!own_pattern(a)) a = pattern_value(value_to_pattern(a));
    TPUPattern& joined = *own_pattern(a);
    append(joined, value_to_pattern(b), op);
    joined.bytes = bytes;
    return a;
}

}  // namespace tpu
