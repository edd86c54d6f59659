#include <cerrno>

#include "os/file_names.h"
#include "os/file_traits.h"
#include "os/input_file.h"
#include "store/buffer_file.h"

namespace tpu {

std::uint64_t file_mtime_ms(const std::string& path, Failure& why) {
    struct stat status;
    if (stat(path.c_str(), &status) == 0) return FileVersion::of(status).milliseconds();
    why.note_errno();
    return 0;
}

std::uint64_t file_mtime_ms(const std::string& path) {
    Failure untold;
    return file_mtime_ms(path, untold);
}

// The status is from before reading: a change made meanwhile must not go unnoticed.
void note_read(Buffer& buffer, const struct stat& status) {
    buffer.file_trouble = {};
    buffer.file_time = FileVersion::of(status).milliseconds();
    buffer.known_version.reset();
    if (S_ISREG(status.st_mode)) buffer.known_version = FileVersion::of(status);
}

void note_unread(Buffer& buffer, const Failure& why) {
    buffer.known_version = FileVersion::of(buffer.file_name);
    const bool is_missing = why.error == ENOENT && buffer.known_version == FileVersion();
    buffer.file_trouble = is_missing ? Failure() : why;
    if (!is_missing) buffer.known_version.reset();
}

void note_written(Buffer& buffer) {
    buffer.file_trouble = {};
    buffer.file_time = file_mtime_ms(buffer.file_name);
    buffer.known_version = FileVersion::of(buffer.file_name);
    buffer.refused_save.reset();
}

std::string write_refusal(const Buffer& buffer, const std::string& path) {
    if (!buffer.file_trouble) return {};
    const std::string& target = path.empty() ? buffer.file_name : path;
    // It may have gone meanwhile.
    if (FileVersion::of(target) == FileVersion() || !is_same_file(target, buffer.file_name))
        return {};
    return "it could not be read: " + buffer.file_trouble.text();
}

std::string doubt_about_saving(Buffer& buffer, const std::string& path) {
    const std::string& target = path.empty() ? buffer.file_name : path;
    const std::optional<FileVersion> now = FileVersion::of(target);
    if (!now || !now->exists()) return {};
    std::string doubt;
    if (buffer.known_version && now != buffer.known_version &&
        is_same_file(target, buffer.file_name)) {
        doubt = buffer.known_version->exists() ? "changed on disk; " : "new on disk; ";
    }
    if (is_read_only(target)) doubt += "read only; ";
    const bool is_told = buffer.refused_save && buffer.refused_save->version == *now &&
                         buffer.refused_save->lines.is_same_version(buffer.text());
    if (doubt.empty() || is_told) return {};
    buffer.refused_save = {*now, buffer.text()};
    return doubt + "save again to overwrite";
}

}  // namespace tpu
