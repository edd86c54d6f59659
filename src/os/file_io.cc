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
auto finish(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

}  // namespace

Descriptor open_file(const std::string& path, int flags, mode_t mode) {
    return Descriptor(finish([&] { return sys::open(path.c_str(), flags | O_CLOEXEC, mode); }));
}

ssize_t read_some(int fd, char* place, std::size_t size) {
    return finish([&] { return sys::read(fd, place, size); });
}

bool write_all(int fd, std::string_view text) {
    while (!text.empty()) {
        ssize_t written = finish([&] { return sys::write(fd, text.data(), text.size()); });
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool copy_all(int from, int to) {
    std::array<char, 16 << 10> part;  // putting an old text back must not lack memory
    ssize_t got = 0;
    while ((got = read_some(from, part.data(), part.size())) > 0) {
        if (!write_all(to, {part.data(), static_cast<std::size_t>(got)})) return false;
    }
    return got == 0;
}

bool have_same_text(int a, int b) {
    constexpr std::size_t kPart = std::size_t{64} << 10;
    std::vector<char> first(kPart), second(kPart);
    // A regular file gives all that is asked for while there is as much.
    auto part = [](int fd, std::vector<char>& place) {
        const ssize_t got = read_some(fd, place.data(), kPart);
        place.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        return got >= 0;
    };
    if (lseek(a, 0, SEEK_SET) != 0 || lseek(b, 0, SEEK_SET) != 0) return false;
    do {
        first.resize(kPart), second.resize(kPart);
        if (!part(a, first) || !part(b, second) || first != second) return false;
    } while (!first.empty());
    return true;
}

bool sync_file(int fd) {
    return finish([&] { return sys::sync(fd); }) == 0;
}

bool sync_folder_of(const std::string& path) {
    Descriptor folder;
    enough_memory([&] { folder = open_file(folder_of(path), O_RDONLY | O_DIRECTORY); });
    // A folder may let us write but not read, and some file systems sync files alone.
    return !folder || sync_file(folder.get()) || errno == EINVAL || errno == ENOTSUP;
}

bool takes_files(const std::string& path) {
    return faccessat(AT_FDCWD, folder_of(path).c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

std::string folder_of(const std::string& path) {
    std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

}  // namespace tpu
