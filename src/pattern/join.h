// Patterns out of values: what + and & make of strings and patterns.
#pragma once

#include "pattern/pattern.h"
#include "value/value.h"

namespace tpu {

Value pattern_value(TPUPattern pattern);
// Null for a value of another type.
const TPUPattern* pattern_of(const Value& value);

// A copy of a pattern value's pattern, one literal for a string value (the empty
// one too), the empty pattern for any other.
TPUPattern value_to_pattern(const Value& value);

// The memory that value_to_pattern(value) takes, about.
std::size_t pattern_bytes(const Value& value);

// The pattern value that matches `a` and then `b`, anchored if either is. `op` is '+'
// or '&'; the latter leaves its mark on the first token of `b`, which no matcher reads.
// A pattern that nobody else holds is lengthened in place.
Value concat_patterns(Value a, const Value& b, char op);

}  // namespace tpu
