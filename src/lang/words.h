// Words that stand for a value of their own in expressions, whatever variables there are.
#pragma once

#include <string_view>
#include <vector>

#include "value/value.h"

namespace tpu {

// The value of TRUE, FORWARD, UNSPECIFIED and the like, given in upper case; null for
// a word that is none of them.
const Value* constant_word(std::string_view word);
std::vector<std::string_view> constant_words();

}  // namespace tpu
