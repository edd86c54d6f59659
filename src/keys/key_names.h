// Names of keys as people and programs write them.
#pragma once

#include <string>
#include <string_view>

namespace tpu {

// The code of a key name such as "PF2", "gold_e" or "x", in any case; kNoKey when
// there is no such key. A single character stands for its upper-case form.
int key_code_of(std::string_view name);

// How people read a code: the key's first name, CTRL_A and F5 for keys that have none, a
// visible character as it is, or else the code in decimal.
std::string key_name_of(int code);

}  // namespace tpu
