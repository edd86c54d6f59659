#include "os/file_version.h"

#include <cerrno>

namespace tpu {

FileVersion FileVersion::of(const struct stat& status) {
#ifdef __APPLE__
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
            static_cast<std::uint64_t>(status.st_size), time.tv_sec, time.tv_nsec};
}

std::optional<FileVersion> FileVersion::of(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? std::optional(FileVersion()) : std::nullopt;
    }
    return S_ISREG(status.st_mode) ? std::optional(of(status)) : std::nullopt;
}

std::uint64_t FileVersion::milliseconds() const {
    return static_cast<std::uint64_t>(seconds) * 1000 +
           static_cast<std::uint64_t>(nanoseconds) / 1'000'000;
}

}  // namespace tpu
