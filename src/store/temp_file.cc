#include "store/temp_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "os/system_calls.h"
#include "store/names_beside.h"
#include "text/stable_hash.h"

namespace tpu {

namespace {

// The number makes it unlikely that anybody else would choose the name.
std::string name_for(const std::string& path, int attempt) {
    char behind[32];
    const std::string file = std::filesystem::path(path).filename().string();
    const std::uint64_t number = stable_hash(std::to_string(attempt) + "/" + file);
    std::snprintf(behind, sizeof behind, ".tpu-%08x", static_cast<unsigned>(number & 0xffffffffU));
    return name_beside(path, ".", behind);
}

// The name means the open file.
bool has_name(int fd, const std::string& name) {
    struct stat opened, named;
    return fstat(fd, &opened) == 0 && lstat(name.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool lock(int fd) {
    return flock(fd, LOCK_EX | LOCK_NB) == 0;
}

void clear_left_behind(const std::string& path) {
    constexpr int kMostAtOnce = 8;  // sessions that save one file
    for (int attempt = 0; attempt < kMostAtOnce; ++attempt) {
        const std::string name = name_for(path, attempt);
        if (Descriptor left = open_left_behind(name)) sys::unlink(name.c_str());
    }
}

}  // namespace

TempFile::TempFile(const std::string& path, Failure& why, mode_t mode) {
    constexpr int kAttempts = 100;
    clear_left_behind(path);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        name_ = name_for(path, attempt);
        file_ = open_file(name_, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode, why);
        if (!file_ && why.error != EEXIST) return;
        // Another session may have taken it for one that was left behind.
        if (!file_ || (!lock(file_.get()) && errno == EWOULDBLOCK)) continue;
        exists_ = has_name(file_.get(), name_);
        if (exists_) return;
    }
    why.note(EEXIST);
}

TempFile::~TempFile() {
    if (exists_) sys::unlink(name_.c_str());
}

bool TempFile::rename_to(const std::string& path, Failure& why) {
    if (sys::rename(name_.c_str(), path.c_str()) != 0) return why.note_errno();
    keep();
    return true;
}

bool TempFile::rename_to_new(const std::string& path, Failure& why) {
    if (!move_to_new(path, why)) return false;
    keep();
    return true;
}

bool TempFile::move_to_new(const std::string& path, Failure& why) {
    if (sys::rename_new(name_.c_str(), path.c_str()) != 0) return why.note_errno();
    name_ = path;
    return true;
}

Descriptor open_left_behind(const std::string& name) {
    struct stat status;
    if (lstat(name.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    if (status.st_uid != geteuid()) return {};
    // Some file systems lock only what can be written.
    Descriptor file = open_file(name, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    if (!file) file = open_file(name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    bool is_left = file && lock(file.get()) && has_name(file.get(), name);
    return is_left ? std::move(file) : Descriptor();
}

}  // namespace tpu
