#include "os/trust.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "os/file_io.h"

namespace tpu {

namespace {

// A group that has its user's number is the user's own.
bool others_can_write(const struct stat& status) {
    const mode_t group = status.st_gid == status.st_uid ? 0 : S_IWGRP;
    return status.st_mode & (group | S_IWOTH);
}

}  // namespace

std::string distrust_of_file(int fd) {
    struct stat status;
    if (fstat(fd, &status) != 0) return Failure{errno}.text();
    if (!S_ISREG(status.st_mode)) return "it is no regular file";
    if (status.st_uid != geteuid() && status.st_uid != 0) return "it belongs to another user";
    if (others_can_write(status)) return "other users can write it";
    return {};
}

std::string distrust_of_file(const std::string& path) {
    Descriptor file = open_file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status;
    bool is_file = file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return is_file ? distrust_of_file(file.get()) : std::string();
}

std::string distrust_of_folder(const std::string& path) {
    std::filesystem::path folder = path;
    struct stat status;
    while (stat(folder.c_str(), &status) != 0) {
        if (errno != ENOENT || folder == folder.parent_path()) return Failure{errno}.text();
        folder = folder.parent_path();
    }
    if (!S_ISDIR(status.st_mode)) return Failure{ENOTDIR}.text();
    if (status.st_uid != geteuid()) return folder.string() + " belongs to another user";
    // In a folder that is still to be made nobody else will be able to write.
    if (folder == path && others_can_write(status)) return "other users can write " + path;
    return {};
}

}  // namespace tpu
