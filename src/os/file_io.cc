#include "os/file_io.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

#include "os/short_memory.h"
#include "os/system_calls.h"

namespace tpu {

namespace {

// The result of a call that was not interrupted.
template <class Call>
auto finish(Failure& why, Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    if (result < 0) why.note_errno();
    return result;
}

}  // namespace

Descriptor open_file(const std::string& path, int flags, mode_t mode, Failure& why) {
    return Descriptor(
        finish(why, [&] { return sys::open(path.c_str(), flags | O_CLOEXEC, mode); }));
}

Descriptor open_file(const std::string& path, int flags, mode_t mode) {
    Failure untold;
    return open_file(path, flags, mode, untold);
}

ssize_t read_some(int fd, char* place, std::size_t size, Failure& why) {
    return finish(why, [&] { return sys::read(fd, place, size); });
}

bool write_all(int fd, std::string_view text, Failure& why) {
    while (!text.empty()) {
        ssize_t written = finish(why, [&] { return sys::write(fd, text.data(), text.size()); });
        if (written == 0) why.note(EIO);
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool rewind_file(int fd, Failure& why) {
    return lseek(fd, 0, SEEK_SET) == 0 || why.note_errno();
}

bool copy_all(int from, int to, Failure& why) {
    std::array<char, 16 << 10> part;  // putting an old text back must not lack memory
    ssize_t got = 0;
    while ((got = read_some(from, part.data(), part.size(), why)) > 0) {
        if (!write_all(to, {part.data(), static_cast<std::size_t>(got)}, why)) return false;
    }
    return got == 0;
}

bool have_same_text(int a, int b) {
    constexpr std::size_t kPart = std::size_t{64} << 10;
    std::vector<char> first(kPart), second(kPart);
    Failure untold;
    // A regular file gives all that is asked for while there is as much.
    auto part = [&](int fd, std::vector<char>& place) {
        const ssize_t got = read_some(fd, place.data(), kPart, untold);
        place.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        return got >= 0;
    };
    if (!rewind_file(a, untold) || !rewind_file(b, untold)) return false;
    do {
        first.resize(kPart), second.resize(kPart);
        if (!part(a, first) || !part(b, second) || first != second) return false;
    } while (!first.empty());
    return true;
}

bool sync_file(int fd, Failure& why) {
    return finish(why, [&] { return sys::sync(fd); }) == 0;
}

bool sync_folder_of(const std::string& path, Failure& why) {
    Descriptor folder;
    enough_memory([&] { folder = open_file(folder_of(path), O_RDONLY | O_DIRECTORY); });
    // A folder may let us write but not read, and some file systems sync files alone.
    return !folder || sync_file(folder.get(), why) || why.error == EINVAL || why.error == ENOTSUP;
}

bool takes_files(const std::string& path, Failure& why) {
    return faccessat(AT_FDCWD, folder_of(path).c_str(), W_OK | X_OK, AT_EACCESS) == 0 ||
           why.note_errno();
}

bool is_regular(const struct stat& status, Failure& why) {
    return S_ISREG(status.st_mode) || why.note(S_ISDIR(status.st_mode) ? EISDIR : ENOTSUP);
}

std::string folder_of(const std::string& path) {
    std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

}  // namespace tpu
