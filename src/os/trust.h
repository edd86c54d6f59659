// Whose files may be believed.
#pragma once

#include <string>

namespace tpu {

// Why the open file must not decide what this program does: it is no regular file, belongs
// neither to the user nor to root, or somebody else may write it. Empty: it may.
std::string distrust_of_file(int fd);
// The same for what has that name; empty for anything but a file that can be read.
std::string distrust_of_file(const std::string& path);

// The same for a folder whose files are read and made without being named by the user: it
// is to be the user's own. Missing parts of its path must be the user's to make. Empty, too,
// for a folder that is not there yet.
std::string distrust_of_folder(const std::string& path);

}  // namespace tpu
