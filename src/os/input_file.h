// A file that is read, and never keeps the editor waiting for good.
#pragma once

#include <sys/stat.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "os/descriptor.h"
#include "os/failure.h"
#include "os/work.h"

namespace tpu {

// How long to wait for a pipe.
struct Waiting {
    Interrupted interrupted;                     // whether to give up
    std::chrono::milliseconds for_writer{3000};  // while there is none
};

class InputFile {
  public:
    // Nothing for what cannot be opened or has no text: folders, and terminals, whose keys are
    // not for us to take.
    static std::optional<InputFile> open(const std::string& path, Failure& why,
                                         Waiting waiting = {});
    // The same for what is open already.
    static std::optional<InputFile> of(Descriptor file, Failure& why, Waiting waiting = {});

    const struct stat& status() const { return status_; }
    bool is_regular() const { return S_ISREG(status_.st_mode); }
    // Bytes; 0 where the system does not tell, as for pipes and devices.
    std::uint64_t size() const;
    int fd() const { return file_.get(); }

    // At most `size` bytes into `place`; 0 at the end, below 0 on failure, which can be the
    // user's wish, or a pipe that nobody writes to.
    ssize_t read(char* place, std::size_t size, Failure& why);

  private:
    InputFile(Descriptor file, const struct stat& status, Waiting waiting)
        : file_(std::move(file)), status_(status), waiting_(std::move(waiting)) {}
    ssize_t read_stream(char* place, std::size_t size, Failure& why);

    Descriptor file_;
    struct stat status_;
    Waiting waiting_;
};

}  // namespace tpu
