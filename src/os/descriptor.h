// A file descriptor with an owner.
#pragma once

#include <utility>
#include <vector>

#include "os/failure.h"

namespace tpu {

// An open file; closed at the end of its life at the latest.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}  // below 0: none, as open(2) reports failure
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor() { close(); }

    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }
    // False when the file system reports only now that it could not keep the data.
    [[nodiscard]] bool close(Failure& why);
    void close();

  private:
    int fd_ = -1;
};

// Descriptors that something may be done with soon.
struct Awaited {
    std::vector<int> readable;
    std::vector<int> writable;
};

}  // namespace tpu
