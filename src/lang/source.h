// Source text: comments, continuation lines, and the statements it is made of.
//
// Everything here is total: any text has statements, and nothing is reported.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "value/call_text.h"

namespace tpu::source {

// The leading run of letters, digits, "_" and "$".
std::string_view leading_word(std::string_view text);

// Drops "!" and what follows it on its line, outside double quotes.
std::string strip_comments(std::string_view text);

// Joins a line that ends with "-", outside double quotes, to the next one.
std::string join_continuations(std::string_view text);

// The statements of a source text, trimmed, and for each the line on which it
// starts, counting from 1. A continuation line does not count, nor does a line end
// inside a string.
std::vector<std::string> split_statements(std::string_view text, std::vector<int>& lines);
std::vector<std::string> split_statements(std::string_view text);

// The place of the first ":=" outside double quotes and parentheses; npos without one.
std::size_t find_assignment(std::string_view statement);

}  // namespace tpu::source
