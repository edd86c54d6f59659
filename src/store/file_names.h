// Files as people name them: which file a name means, and what there is to load of it.
#pragma once

#include <string>

#include "core/buffer.h"

namespace tpu {

// True when both names lead to the same file, be it there already or not.
bool is_same_file(const std::string& a, const std::string& b);

struct FileState {
    enum Result { loaded, missing, unreadable };
    Result result;
    std::string trouble;  // what to tell people about an unreadable file
};

// Loads a file. The buffer has the file's name also when there is no such file, and
// begins it then.
FileState load_or_begin(Buffer& buffer, const std::string& file, Buffer::Loading how);

}  // namespace tpu
