// From text to code. Compiling is total and silent: it consumes what reading the
// text would consume, stops where that would stop, and reports nothing.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "lang/code.h"
#include "lang/stmt.h"

namespace tpu {

// Parentheses, calls and subscripts nested deeper than this are not read; running
// such an expression records an error.
inline constexpr int kDeepestExpression = 10'000;

// The expression that the whole text is; what is left over behind it is ignored.
// Null for a text without anything but blanks.
NodePtr compile_expression(std::string_view text, SymbolTable& symbols);
// What a statement says.
std::shared_ptr<const StmtCode> compile_statement(const Stmt& stmt, SymbolTable& symbols);
// The same for the text of a plain statement, trimmed.
std::shared_ptr<const StmtCode> compile_plain(std::string_view text, SymbolTable& symbols);

// The pieces between commas that are outside quotes, parentheses and braces, as they
// stand; none for a text of blanks.
std::vector<std::string_view> split_top_args(std::string_view text);

}  // namespace tpu
