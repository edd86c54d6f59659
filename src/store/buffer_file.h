// A buffer and its file: loading, saving, and what is known of the file, so that no save
// destroys what the buffer never held.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "buffer/buffer.h"
#include "os/work.h"

namespace tpu {

enum class Loading { at_once, in_steps };

// load.cc
// False: unreadable, text unchanged; what is there is not written over then. Waiting for
// what a pipe has to say can be interrupted. A large file loaded in steps is there at once
// but shows the file itself until TextBlock::detach_some has copied all of it;
// then finish_loading() has to follow.
bool load_file(Buffer& buffer, const std::string& path, Loading how, const Interrupted& interrupted,
               Failure& why);
inline bool load_file(Buffer& buffer, const std::string& path, Loading how = Loading::at_once) {
    Failure untold;
    return load_file(buffer, path, how, {}, untold);
}
// The same for a file that need not be there yet: what to tell about one that is but
// cannot be read, else empty. In any case the buffer has its name.
std::string edit_file(Buffer& buffer, const std::string& path, Loading how = Loading::at_once,
                      const Interrupted& interrupted = {});
// What there is to tell, or empty.
std::string finish_loading(Buffer& buffer);

// save.cc
// Saves to `path`, which becomes the buffer's file; empty: to its file. False: it is not
// saved, and `save_note` of the buffer says why.
bool write_file(Buffer& buffer, const std::string& path);

// known_file.cc
// Why write_file never writes there; empty: it may.
std::string write_refusal(const Buffer& buffer, const std::string& path);
// Why a person should think twice before it does: somebody else has written the file since
// it was read, or it is protected. Not asked about again when the very next save would do the
// same. Empty: go on.
std::string doubt_about_saving(Buffer& buffer, const std::string& path);
// The file was read, with a status from before; could not be, for that reason; was
// written.
void note_read(Buffer& buffer, const struct stat& status);
void note_unread(Buffer& buffer, const Failure& why);
void note_written(Buffer& buffer);
// When the file was written last, in milliseconds since the epoch; 0: unknown.
std::uint64_t file_mtime_ms(const std::string& path, Failure& why);
std::uint64_t file_mtime_ms(const std::string& path);

}  // namespace tpu
