// The former text of a file that is written in place.
//
// While that goes on, the file's own name stands for half a text. So the former one lies on
// the disk, readable by its owner alone, under a name that follows from the file's:
// .NAME.tpu-old beside it, or in a folder for such texts where no file can be made there.
// What a session that was killed has left is never overwritten or removed.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "store/temp_file.h"

namespace tpu {

// The folder for texts of files whose own folders take none; empty, as at the start: there
// is none. Process-wide.
void keep_old_texts_in(const std::string& folder);

// Copies the text of the file `path`, which is open as `fd`; the copy goes away with what is
// returned. Null when the text could not be kept.
std::unique_ptr<TempFile> keep_old_text(int fd, const std::string& path, Failure& why);

// The former text of a file that a session was killed at writing, if it is another one than
// the file has now.
std::optional<std::string> interrupted_save(const std::string& path);

}  // namespace tpu
