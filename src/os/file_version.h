// What the file system says about the text of a file.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

namespace tpu {

// Tells one text of a file from another without reading either. None of them: no file.
struct FileVersion {
    std::uint64_t device = 0, number = 0, size = 0;
    std::int64_t seconds = 0, nanoseconds = 0;  // when it was written last

    static FileVersion of(const struct stat& status);
    // Nothing when the system does not tell, and for what is no regular file.
    static std::optional<FileVersion> of(const std::string& path);

    bool exists() const { return *this != FileVersion(); }
    // Since the epoch.
    std::uint64_t milliseconds() const;

    bool operator==(const FileVersion&) const = default;
};

}  // namespace tpu
