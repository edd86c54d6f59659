// Taking apart the text of a call: its quoted strings and its argument.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tpu {

// Without blanks at both ends and then, if it stands in double quotes, without
// those. Doubled quotes inside stay as they are.
std::string strip_quotes(std::string_view text);

// The text between the first "(" and the last ")", as it stands; nothing without such a pair.
std::optional<std::string_view> between_parentheses(std::string_view text);

// The trimmed text between the first "(" and the last ")"; empty without such a pair.
std::string first_call_argument(std::string_view text);

}  // namespace tpu
