// System calls on files that finish what they begin.
//
// Interrupted and partial calls are taken up again, and no failure is lost: text
// that the system could not keep must never count as saved. What fails notes why.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "os/descriptor.h"
#include "os/failure.h"

namespace tpu {

// open(2), never handed on to child processes.
Descriptor open_file(const std::string& path, int flags, mode_t mode, Failure& why);
Descriptor open_file(const std::string& path, int flags, mode_t mode = 0);

// At most `size` bytes into `place`; 0 at the end of the file, below 0 on failure.
ssize_t read_some(int fd, char* place, std::size_t size, Failure& why);

// All of `text`; false when some of it could not be written.
[[nodiscard]] bool write_all(int fd, std::string_view text, Failure& why);

// Goes to the begin of an open file.
[[nodiscard]] bool rewind_file(int fd, Failure& why);

// All that is left of one file to another; false when either fails.
[[nodiscard]] bool copy_all(int from, int to, Failure& why);

// The files hold the same, from their begins; false when one cannot be read.
bool have_same_text(int a, int b);

// Waits until the data of a file are on the disk itself.
[[nodiscard]] bool sync_file(int fd, Failure& why);

// Waits until the names in the folder of `path` are on the disk, where folders can be synced.
[[nodiscard]] bool sync_folder_of(const std::string& path, Failure& why);

// New files may be made in the folder of `path`.
bool takes_files(const std::string& path, Failure& why);

// A regular file, neither folder nor pipe nor device.
[[nodiscard]] bool is_regular(const struct stat& status, Failure& why);

// The folder that `path` names a file in, "." for a bare name.
std::string folder_of(const std::string& path);

}  // namespace tpu
