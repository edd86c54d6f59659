// From parsed statements back to source text.
#pragma once

#include <string>
#include <string_view>

#include "lang/stmt.h"

namespace tpu {

// A text that parses into the same statement, blocks within it too. Line ends occur
// inside strings alone.
std::string text_of(const Stmt& stmt);

// The statement with every string that holds a line feed replaced by a call that
// makes the same string: it fits on one line.
std::string on_one_line(std::string_view statement);

// An expression for a text: a string, or where a string cannot hold it, a call. It has
// no line feed in it.
std::string expression_for(std::string_view text);

}  // namespace tpu
