// Patterns written as text: ANCHOR + "ab" & SPAN("0123456789").
//
// Everything here is total: any text is a pattern, since what is no keyword is a
// literal. |, though read as an operator, joins as + does: there is no alternation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pattern/pattern.h"

namespace tpu {

// The terms between the operators +, & and | that stand outside double quotes and
// parentheses. Terms are trimmed; empty ones are left out. A term that follows an
// operator begins with byte 1 and that operator.
std::vector<std::string> split_pattern_terms(std::string_view text);

TPUPattern parse_pattern_expression(std::string_view text);

}  // namespace tpu
