// Names for the files that stand beside a file while it is saved and afterwards.
#pragma once

#include <string>
#include <string_view>

#include "os/failure.h"

namespace tpu {

// The name of a file in the folder of `path` whose name is that of `path` with something
// before and behind it. Where that would be longer than the file system allows, the middle
// is cut between two characters and gets a number, the same every time.
std::string name_beside(const std::string& path, std::string_view before, std::string_view behind);

bool is_symbolic_link(const std::string& path);

// The name of the file itself that a path leads to, through links to a file that is still
// to be made too. Empty: there cannot be one.
std::string real_name(const std::string& path, Failure& why);

}  // namespace tpu
