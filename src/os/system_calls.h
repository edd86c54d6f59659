// The system calls that files are read, written and renamed with.
//
// They are those of the system under the same names. All go through here so that a test
// can let any one of them fail, as it would on a full disk or a broken one.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace tpu::sys {

enum class Call {
    open,
    read,
    write,
    close,
    sync,
    rename,
    link,
    unlink,
    truncate,
    chmod,
    chown,
    attribute,
    mkdir
};

// Asked before each call: the error to fail with, or 0 to go on. A close that fails has
// closed all the same. Null, as it is but in tests: nothing is asked. Process-wide.
using Fault = int (*)(Call call);
constexpr int kHalf = -1;  // in place of an error: a write takes half of what it is given
void set_fault(Fault fault);

int open(const char* path, int flags, mode_t mode);
ssize_t read(int fd, void* place, std::size_t size);
ssize_t write(int fd, const void* text, std::size_t size);
int close(int fd);
int sync(int fd);  // to the disk itself where the system can tell it to
int rename(const char* from, const char* to);
int rename_new(const char* from, const char* to);  // fails with EEXIST where there is one
int link(const char* from, const char* to);
int unlink(const char* path);
int truncate(int fd, off_t size);
int chmod(int fd, mode_t mode);
int chown(int fd, uid_t owner, gid_t group);
// Of a file's extended attributes; where there are none, ENOTSUP.
int set_attribute(int fd, const char* name, const void* value, std::size_t size);
int remove_attribute(int fd, const char* name);
int mkdir(const char* path, mode_t mode);

}  // namespace tpu::sys
