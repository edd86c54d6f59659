// What a file has besides its text.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>

namespace tpu {

struct FileTraits {
    using Attributes = std::map<std::string, std::string>;

    uid_t owner = 0;
    gid_t group = 0;
    mode_t mode = 0;        // permission bits, set-id and sticky too
    Attributes attributes;  // extended ones; access lists are among them

    bool operator==(const FileTraits&) const = default;
    std::string access_list() const;  // empty: there is none
};

// Nothing when the file cannot be examined. Links are followed.
std::optional<FileTraits> traits_of(const std::string& path);

// Gives an open file, which has this name, the same; false when it could not get all.
bool set_traits(int fd, const std::string& name, const FileTraits& traits);

// Gives them to a copy of a file. Where the file's own rules cannot be given, its
// group's members may no more than everybody: nobody gains access by the copy.
void set_traits_of_copy(int fd, const std::string& name, const FileTraits& original);

// A regular file that its owner has protected. To root, who may write all the same, it is one
// that nobody else may write.
bool is_read_only(const std::string& path);

}  // namespace tpu
