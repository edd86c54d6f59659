#include "os/system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#if defined(__linux__) || defined(__APPLE__)
#include <sys/xattr.h>
#endif

namespace tpu::sys {

namespace {

Fault fault = nullptr;

// True when the call is to fail; errno is set then.
bool fails(Call call) {
    int error = fault ? fault(call) : 0;
    if (error > 0) errno = error;
    return error > 0;
}

int sync_now(int fd) {
#ifdef F_FULLFSYNC
    // There fsync only hands the data to the drive, which may keep them in memory.
    if (::fcntl(fd, F_FULLFSYNC) == 0) return 0;
#endif
    return ::fsync(fd);
}

// Not every file system can do it in one step.
int rename_new_now(const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return -1;
#elif defined(RENAME_EXCL)
    if (::renamex_np(from, to, RENAME_EXCL) == 0) return 0;
    if (errno != ENOTSUP) return -1;
#endif
    struct stat status;
    if (::lstat(to, &status) != 0) return errno == ENOENT ? ::rename(from, to) : -1;
    errno = EEXIST;
    return -1;
}

}  // namespace

void set_fault(Fault wanted) {
    fault = wanted;
}

int open(const char* path, int flags, mode_t mode) {
    return fails(Call::open) ? -1 : ::open(path, flags, mode);
}

ssize_t read(int fd, void* place, std::size_t size) {
    return fails(Call::read) ? -1 : ::read(fd, place, size);
}

ssize_t write(int fd, const void* text, std::size_t size) {
    const int answer = fault ? fault(Call::write) : 0;
    if (answer > 0) errno = answer;
    return answer > 0 ? -1 : ::write(fd, text, answer == kHalf ? (size + 1) / 2 : size);
}

int close(int fd) {
    int closed = ::close(fd);
    return fails(Call::close) ? -1 : closed;
}

int sync(int fd) {
    return fails(Call::sync) ? -1 : sync_now(fd);
}

int rename(const char* from, const char* to) {
    return fails(Call::rename) ? -1 : ::rename(from, to);
}

int rename_new(const char* from, const char* to) {
    return fails(Call::rename) ? -1 : rename_new_now(from, to);
}

int link(const char* from, const char* to) {
    return fails(Call::link) ? -1 : ::link(from, to);
}

int unlink(const char* path) {
    return fails(Call::unlink) ? -1 : ::unlink(path);
}

int truncate(int fd, off_t size) {
    return fails(Call::truncate) ? -1 : ::ftruncate(fd, size);
}

int chmod(int fd, mode_t mode) {
    return fails(Call::chmod) ? -1 : ::fchmod(fd, mode);
}

int chown(int fd, uid_t owner, gid_t group) {
    return fails(Call::chown) ? -1 : ::fchown(fd, owner, group);
}

int set_attribute(int fd, const char* name, const void* value, std::size_t size) {
    if (fails(Call::attribute)) return -1;
#if defined(__linux__)
    return ::fsetxattr(fd, name, value, size, 0);
#elif defined(__APPLE__)
    return ::fsetxattr(fd, name, value, size, 0, 0);
#else
    (void)fd, (void)name, (void)value, (void)size;
    errno = ENOTSUP;
    return -1;
#endif
}

int remove_attribute(int fd, const char* name) {
    if (fails(Call::attribute)) return -1;
#if defined(__linux__)
    return ::fremovexattr(fd, name);
#elif defined(__APPLE__)
    return ::fremovexattr(fd, name, 0);
#else
    (void)fd, (void)name;
    errno = ENOTSUP;
    return -1;
#endif
}

int mkdir(const char* path, mode_t mode) {
    return fails(Call::mkdir) ? -1 : ::mkdir(path, mode);
}

}  // namespace tpu::sys
