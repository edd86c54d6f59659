#include "core/system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace tpu::sys {

namespace {

Fault fault = nullptr;

// True when the call is to fail; errno is set then.
bool fails(Call call) {
    int error = fault ? fault(call) : 0;
    if (error != 0) errno = error;
    return error != 0;
}

int sync_now(int fd) {
#ifdef F_FULLFSYNC
    // There fsync only hands the data to the drive, which may keep them in memory.
    if (::fcntl(fd, F_FULLFSYNC) == 0) return 0;
#endif
    return ::fsync(fd);
}

}  // namespace

void set_fault(Fault wanted) {
    fault = wanted;
}

int open(const char* path, int flags, mode_t mode) {
    return fails(Call::open) ? -1 : ::open(path, flags, mode);
}

int make_temporary(char* name) {
    return fails(Call::open) ? -1 : ::mkostemp(name, O_CLOEXEC);
}

ssize_t read(int fd, void* place, std::size_t size) {
    return fails(Call::read) ? -1 : ::read(fd, place, size);
}

ssize_t write(int fd, const void* text, std::size_t size) {
    return fails(Call::write) ? -1 : ::write(fd, text, size);
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

int mkdir(const char* path, mode_t mode) {
    return fails(Call::mkdir) ? -1 : ::mkdir(path, mode);
}

}  // namespace tpu::sys
