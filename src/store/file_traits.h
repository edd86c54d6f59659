// What a file has besides its text.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>

namespace tpu {

struct FileTraits {
    uid_t owner = 0;
    gid_t group = 0;
    mode_t mode = 0;                                // permission bits, set-id and sticky too
    std::map<std::string, std::string> attributes;  // extended ones; access lists are among them

    bool operator==(const FileTraits&) const = default;
    bool has_access_list() const { return attributes.contains("system.posix_acl_access"); }
};

// Nothing when the file cannot be examined. Links are followed.
std::optional<FileTraits> traits_of(const std::string& path);

// Gives an open file owner, group and mode as far as we may.
void set_traits(int fd, const FileTraits& traits);

// Gives them to a copy of a file. Where the file's own rules cannot be given, its
// group's members may no more than everybody: nobody gains access by the copy.
void set_traits_of_copy(int fd, const FileTraits& original);

}  // namespace tpu
