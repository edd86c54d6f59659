// Giving a file a new text without ever risking the old one.
//
// The rules, whichever way a file is written:
// - The old text is given up only when the new one is on the disk; a failure leaves
//   it under its own name or as .bak, and no other file behind.
// - A file that nothing but a name leads to is replaced: the new text goes into a temporary
//   file in the same folder, which gets the same owner, permissions, attributes and access
//   list, and then takes the name. At no moment is there no file, or half a file, of that
//   name. Where the name is a symbolic link, that holds for the file it leads to.
// - A file with several names is written in place, and so is one whose owner or attributes
//   cannot be given to another, or whose folder takes no files. Meanwhile its old text lies
//   where opening the file finds it (store/old_text.h); a failure puts it back.
// - Devices and pipes take the text as it comes.
#pragma once

#include <functional>
#include <string>

#include "os/failure.h"

namespace tpu {

// Writes the text to an open file, from where it stands; false when that fails.
using WriteText = std::function<bool(int fd, Failure& why)>;

// Writes a text to the file `path`, which need not exist. With `keep_backup` the
// text that was there stays as `path`.bak, in place of an older one; a name too long for
// that is shortened. False when the text could not be saved. `note` tells why, or what had to
// be done without; it may stay empty.
[[nodiscard]] bool write_safely(const std::string& path, bool keep_backup, const WriteText& write,
                                std::string& note);

// Writes a text to the regular file `path`, which need not exist, so that it is never
// seen unfinished: the name changes hands when the text is on the disk. False when the
// text could not be written; then there is what was there before.
[[nodiscard]] bool write_at_once(const std::string& path, const WriteText& write, Failure& why);

}  // namespace tpu
