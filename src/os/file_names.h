// Which file a name means.
#pragma once

#include <string>

namespace tpu {

// True when both names lead to the same file, be it there already or not.
bool is_same_file(const std::string& a, const std::string& b);

// One name for all that lead to the file, be it there already or not.
std::string canonical_name(const std::string& path);

}  // namespace tpu
