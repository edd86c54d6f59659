// From a list of statements to nested blocks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lang/stmt.h"

namespace tpu {

// Blocks nested deeper than this are cut off: their statements are dropped.
inline constexpr std::size_t kDeepestBlock = 10'000;

// Parses statements from `index` on, until one that is a terminator, alone or with
// a blank and more behind it, or until the end. Terminators are in upper case.
// Leaves `index` on the statement that stopped it. `lines` has the line of each
// statement and may be shorter. A block that is not closed ends where the one
// around it does. `too_deep`, when given, is set if blocks were cut off.
std::vector<Stmt> parse_block(const std::vector<std::string>& statements,
                              const std::vector<int>& lines, std::size_t& index,
                              const std::vector<std::string_view>& terminators,
                              bool* too_deep = nullptr);

}  // namespace tpu
