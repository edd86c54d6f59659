#include "store/file_traits.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#if defined(__linux__) || defined(__APPLE__)
#include <sys/xattr.h>
#endif

namespace tpu {

namespace {

ssize_t list_attributes(const char* path, char* names, std::size_t size) {
#if defined(__linux__)
    return listxattr(path, names, size);
#elif defined(__APPLE__)
    return listxattr(path, names, size, 0);
#else
    (void)path, (void)names, (void)size;
    return 0;
#endif
}

ssize_t get_attribute(const char* path, const char* name, char* value, std::size_t size) {
#if defined(__linux__)
    return getxattr(path, name, value, size);
#elif defined(__APPLE__)
    return getxattr(path, name, value, size, 0, 0);
#else
    (void)path, (void)name, (void)value, (void)size;
    return 0;
#endif
}

// What `get(place, size)` gives, which tells the size when asked with none. Empty on failure.
template <class Get>
std::string whole(Get get) {
    ssize_t size = get(nullptr, 0);
    if (size <= 0) return {};
    std::string result(static_cast<std::size_t>(size), '\0');
    size = get(result.data(), result.size());
    result.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return result;
}

std::map<std::string, std::string> attributes_of(const char* path) {
    std::string names =
        whole([&](char* place, std::size_t size) { return list_attributes(path, place, size); });
    std::map<std::string, std::string> attributes;
    for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
        const char* name = &names[at];
        // One that may be listed but not read gets no value, and so equals no readable one.
        attributes[name] = whole(
            [&](char* place, std::size_t size) { return get_attribute(path, name, place, size); });
    }
    return attributes;
}

constexpr mode_t kModeBits = 07777;

}  // namespace

std::optional<FileTraits> traits_of(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileTraits{status.st_uid, status.st_gid, static_cast<mode_t>(status.st_mode & kModeBits),
                      attributes_of(path.c_str())};
}

void set_traits(int fd, const FileTraits& traits) {
    // Who must not give files away may still choose among the own groups. Neither may
    // be allowed; who needs to know compares the traits.
    [[maybe_unused]] bool given = fchown(fd, traits.owner, traits.group) == 0 ||
                                  fchown(fd, static_cast<uid_t>(-1), traits.group) == 0;
    // The mode comes last: a new owner takes set-id bits away.
    fchmod(fd, traits.mode);
}

void set_traits_of_copy(int fd, const FileTraits& original) {
    FileTraits traits = original;
    traits.mode &= 0777;
    set_traits(fd, traits);
    struct stat status;
    bool same_group = fstat(fd, &status) == 0 && status.st_gid == original.group;
    if (same_group && !original.has_access_list()) return;
    fchmod(fd, (traits.mode & ~mode_t{070}) | ((traits.mode & 07) << 3));
}

}  // namespace tpu
