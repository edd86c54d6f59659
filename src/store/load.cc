// Loading a buffer from a file.
#include <fcntl.h>
#include <sys/stat.h>

#include "core/buffer.h"
#include "store/file_io.h"
#include "store/read_file.h"

namespace tpu {

namespace {

std::uint64_t mtime_ms(const struct stat& status) {
#ifdef __APPLE__
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return static_cast<std::uint64_t>(time.tv_sec) * 1000 +
           static_cast<std::uint64_t>(time.tv_nsec) / 1000000;
}

}  // namespace

bool Buffer::load_file(const std::string& path) {
    file_name = path;
    Descriptor file = open_file(path, O_RDONLY);
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    // The size of a pipe or device says nothing about what can be read from it.
    std::uint64_t expected =
        S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
    std::optional<LineStore> text = read_lines(file.get(), expected);
    if (!text) return false;
    lines = std::move(*text);
    cursor_row = cursor_column = view_line = 0;
    modified = false;
    // As it was before reading: a change made meanwhile must not go unnoticed.
    file_time = mtime_ms(status);
    return true;
}

std::uint64_t Buffer::file_mtime_ms(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? mtime_ms(status) : 0;
}

}  // namespace tpu
