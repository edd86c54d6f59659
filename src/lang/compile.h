// From text to code. Compiling is total and silent: it consumes what reading the
// text would consume, stops where that would stop, and reports nothing.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "lang/code.h"
#include "lang/stmt.h"

namespace tpu {

// Parentheses, calls and subscripts nested deeper than this are not read; running
// such an expression records an error.
inline constexpr int kDeepestExpression = 10'000;

// How tightly the operators of an expression bind.
enum class Level { or_, and_, compare, add, multiply, unary, primary };

// The expression that the whole text is; what is left over behind it is ignored.
// Null for a text without anything but blanks.
NodePtr compile_expression(std::string_view text, SymbolTable& symbols);
// The expression at byte `position`, which is left behind what was read.
NodePtr compile_level(std::string_view text, std::size_t& position, Level level,
                      SymbolTable& symbols);
// The arguments of a call from its "(" on; `position` is left behind the ")".
CallSite compile_arguments(std::string_view text, std::size_t& position, SymbolTable& symbols);

// What a statement says.
std::shared_ptr<const StmtCode> compile_statement(const Stmt& stmt, SymbolTable& symbols);
// The same for the text of a plain statement, trimmed.
std::shared_ptr<const StmtCode> compile_plain(std::string_view text, SymbolTable& symbols);

// Passes blanks.
void skip_blanks(std::string_view text, std::size_t& position);
// Passes blanks and then `word` in any case, unless more of a word follows it. True
// when the word stood there; otherwise only blanks are passed.
bool match_word(std::string_view text, std::size_t& position, std::string_view word);

// The pieces between commas that are outside quotes, parentheses and braces, as they
// stand; none for a text of blanks.
std::vector<std::string_view> split_top_args(std::string_view text);

}  // namespace tpu
