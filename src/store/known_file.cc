// What a buffer knows of its file, so that no save destroys what it never held.
#include <cerrno>

#include "buffer/buffer.h"
#include "os/file_names.h"
#include "os/file_traits.h"
#include "os/input_file.h"

namespace tpu {

std::uint64_t Buffer::file_mtime_ms(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? FileVersion::of(status).milliseconds() : 0;
}

// The status is from before reading: a change made meanwhile must not go unnoticed.
void Buffer::note_read(const struct stat& status) {
    file_trouble = 0;
    file_time = FileVersion::of(status).milliseconds();
    known_version.reset();
    if (S_ISREG(status.st_mode)) known_version = FileVersion::of(status);
}

void Buffer::note_unread(int error) {
    known_version = FileVersion::of(file_name);
    const bool is_missing = error == ENOENT && known_version == FileVersion();
    file_trouble = is_missing ? 0 : error;
    if (!is_missing) known_version.reset();
}

void Buffer::note_written() {
    file_trouble = 0;
    file_time = file_mtime_ms(file_name);
    known_version = FileVersion::of(file_name);
    refused_save.reset();
}

std::string Buffer::write_refusal(const std::string& path) const {
    if (file_trouble == 0) return {};
    const std::string& target = path.empty() ? file_name : path;
    // It may have gone meanwhile.
    if (FileVersion::of(target) == FileVersion() || !is_same_file(target, file_name)) return {};
    return "it could not be read: " + reason_of(file_trouble);
}

std::string Buffer::doubt_about_saving(const std::string& path) {
    const std::string& target = path.empty() ? file_name : path;
    const std::optional<FileVersion> now = FileVersion::of(target);
    if (!now || !now->exists()) return {};
    std::string doubt;
    if (known_version && now != known_version && is_same_file(target, file_name)) {
        doubt = known_version->exists() ? "changed on disk; " : "new on disk; ";
    }
    if (is_read_only(target)) doubt += "read only; ";
    const bool is_told =
        refused_save && refused_save->version == *now && refused_save->lines.is_same_version(lines);
    if (doubt.empty() || is_told) return {};
    refused_save = {*now, lines};
    return doubt + "save again to overwrite";
}

}  // namespace tpu
