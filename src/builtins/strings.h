// The functions on strings. A character is a byte, places count from 1, and an
// argument beyond the last one reads as the unspecified value; none of them fails.
#pragma once

#include <span>

#include "value/value.h"

namespace tpu::strings {

Value str(std::span<const Value> arguments);      // STR(x): x as a string
Value integer(std::span<const Value> arguments);  // INT(x): x as an integer

// ASCII(s): the code of the first character, 0 to 255; 0 for an empty text.
Value ascii_code(std::span<const Value> arguments);

Value length(std::span<const Value> arguments);  // LENGTH(x)

// INDEX(s, t): where t first occurs in s, 1 for an empty t; 0 when it does not.
Value index(std::span<const Value> arguments);

// SUBSTR(s, start, length): a start below 1 counts as 1, a negative length as 0;
// both together may reach beyond the text.
Value substr(std::span<const Value> arguments);

// EDIT(s, mode): s in the case that UPPER, LOWER or INVERT names, in any case; s
// itself for another mode.
Value edit(std::span<const Value> arguments);

}  // namespace tpu::strings
