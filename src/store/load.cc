// Loading a buffer from a file.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

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

// Smaller files are read as quickly as they are mapped.
constexpr std::uint64_t kWorthMapping = std::uint64_t{1} << 20;
// A device may give bytes for ever; what a pipe gives is seldom as much.
constexpr std::uint64_t kMostOfStream = std::uint64_t{1} << 30;

// Reading a terminal would wait for keys, and never end.
bool is_terminal(int fd) {
    if (isatty(fd) == 0) return false;
    errno = ENOTSUP;
    return true;
}

}  // namespace

bool Buffer::load_file(const std::string& path, Loading how) {
    file_name = path;
    Descriptor file = open_file(path, O_RDONLY);
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    if (is_terminal(file.get())) return false;
    // The size of a pipe or device says nothing about what can be read from it.
    bool regular = S_ISREG(status.st_mode);
    std::uint64_t expected = regular ? static_cast<std::uint64_t>(status.st_size) : 0;
    std::optional<LineStore> text;
    if (how == Loading::in_steps && expected >= kWorthMapping) {
        text = map_lines(file.get(), expected);
    }
    loading_size = text ? expected : 0;
    if (!text) text = read_lines(file.get(), expected, regular ? UINT64_MAX : kMostOfStream);
    if (!text) return false;
    lines = std::move(*text);
    saved_lines = lines;
    cursor_row = cursor_column = view_line = 0;
    modified = false;
    // As it was before reading: a change made meanwhile must not go unnoticed.
    file_time = mtime_ms(status);
    return true;
}

std::string Buffer::edit_file(const std::string& path, Loading how) {
    if (load_file(path, how)) return {};
    int error = errno;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 && errno == ENOENT) return {};
    if (S_ISDIR(status.st_mode)) error = EISDIR;
    return "Cannot read " + path + ": " + std::strerror(error);
}

// What was written to the file while it was mapped is in the text, as it would be
// had it been read a little later; but the lines may have moved.
void Buffer::finish_loading() {
    std::uint64_t size = std::exchange(loading_size, 0);
    struct stat status;
    if (size == 0) return;
    bool unchanged = stat(file_name.c_str(), &status) == 0 && mtime_ms(status) == file_time &&
                     static_cast<std::uint64_t>(status.st_size) == size;
    if (unchanged) return;
    lines.recount();
    saved_lines.recount();
    for (Snapshot& snapshot : undo_stack) snapshot.lines.recount();
    for (Snapshot& snapshot : redo_stack) snapshot.lines.recount();
    clamp_cursor();
}

std::uint64_t Buffer::file_mtime_ms(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? mtime_ms(status) : 0;
}

}  // namespace tpu
