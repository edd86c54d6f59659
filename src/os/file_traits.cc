#include "os/file_traits.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#if defined(__linux__) || defined(__APPLE__)
#include <sys/xattr.h>
#endif

#include "os/system_calls.h"

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

FileTraits::Attributes attributes_of(const char* path) {
    std::string names =
        whole([&](char* place, std::size_t size) { return list_attributes(path, place, size); });
    FileTraits::Attributes attributes;
    for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
        const char* name = &names[at];
        // One that may be listed but not read gets no value, and so equals no readable one.
        attributes[name] = whole(
            [&](char* place, std::size_t size) { return get_attribute(path, name, place, size); });
    }
    return attributes;
}

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr mode_t kModeBits = 07777;

void set_owner(int fd, const FileTraits& present, const FileTraits& wanted) {
    if (present.owner == wanted.owner && present.group == wanted.group) return;
    // Who must not give files away may still choose among the own groups. Neither may
    // be allowed.
    if (sys::chown(fd, wanted.owner, wanted.group) == 0) return;
    sys::chown(fd, static_cast<uid_t>(-1), wanted.group);
}

void set_attributes(int fd, const FileTraits::Attributes& present,
                    const FileTraits::Attributes& wanted) {
    for (const auto& [name, value] : present) {
        if (!wanted.contains(name)) sys::remove_attribute(fd, name.c_str());
    }
    for (const auto& [name, value] : wanted) {
        auto had = present.find(name);
        if (had != present.end() && had->second == value) continue;
        sys::set_attribute(fd, name.c_str(), value.data(), value.size());
    }
}

}  // namespace

std::string FileTraits::access_list() const {
    auto list = attributes.find(kAccessList);
    return list == attributes.end() ? std::string() : list->second;
}

std::optional<FileTraits> traits_of(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileTraits{status.st_uid, status.st_gid, static_cast<mode_t>(status.st_mode & kModeBits),
                      attributes_of(path.c_str())};
}

bool set_traits(int fd, const std::string& name, const FileTraits& traits) {
    if (std::optional<FileTraits> present = traits_of(name)) {
        set_owner(fd, *present, traits);
        set_attributes(fd, present->attributes, traits.attributes);
    }
    // The mode comes last: a new owner takes set-id bits away.
    sys::chmod(fd, traits.mode);
    return traits_of(name) == traits;
}

void set_traits_of_copy(int fd, const std::string& name, const FileTraits& original) {
    FileTraits traits = original;
    traits.mode &= 0777;
    set_traits(fd, name, traits);
    const std::optional<FileTraits> given = traits_of(name);
    if (given && given->group == traits.group && given->access_list() == traits.access_list()) {
        return;
    }
    sys::remove_attribute(fd, kAccessList);
    sys::chmod(fd, (traits.mode & ~mode_t{070}) | ((traits.mode & 07) << 3));
}

bool is_read_only(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    const uid_t user = geteuid();
    if (user == 0) return (status.st_mode & 0222) == 0;
    return status.st_uid == user && (status.st_mode & 0200) == 0;
}

}  // namespace tpu
