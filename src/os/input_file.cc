#include "os/input_file.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "os/file_io.h"

namespace tpu {

std::optional<InputFile> InputFile::open(const std::string& path, Failure& why, Waiting waiting) {
    // Opening a pipe would wait for a writer, and some devices for a carrier.
    Descriptor file = open_file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY, 0, why);
    return file ? of(std::move(file), why, std::move(waiting)) : std::nullopt;
}

std::optional<InputFile> InputFile::of(Descriptor file, Failure& why, Waiting waiting) {
    struct stat status;
    if (fstat(file.get(), &status) != 0) {
        why.note_errno();
        return std::nullopt;
    }
    bool is_folder = S_ISDIR(status.st_mode);
    if (is_folder || isatty(file.get()) != 0) {
        why.note(is_folder ? EISDIR : ENOTSUP);
        return std::nullopt;
    }
    return InputFile(std::move(file), status, std::move(waiting));
}

std::uint64_t InputFile::size() const {
    return is_regular() ? static_cast<std::uint64_t>(status_.st_size) : 0;
}

ssize_t InputFile::read(char* place, std::size_t size, Failure& why) {
    return is_regular() ? read_some(fd(), place, size, why) : read_stream(place, size, why);
}

// A pipe without a writer reads as one that is at its end, but is not ready; a silent writer
// shows in that there is nothing to read yet.
ssize_t InputFile::read_stream(char* place, std::size_t size, Failure& why) {
    constexpr std::chrono::milliseconds kBetweenLooks(50);
    std::chrono::milliseconds without_writer(0);
    while (!waiting_.interrupted || !waiting_.interrupted()) {
        pollfd wanted = {fd(), POLLIN, 0};
        bool ready = poll(&wanted, 1, static_cast<int>(kBetweenLooks.count())) > 0;
        ssize_t got = read_some(fd(), place, size, why);
        bool is_silent = got < 0 && why.error == EAGAIN;
        if (!is_silent && (got != 0 || ready)) return got;
        without_writer = is_silent ? std::chrono::milliseconds(0) : without_writer + kBetweenLooks;
        if (without_writer > waiting_.for_writer) {
            why.note(EPIPE, "Nobody writes to the pipe");
            return -1;
        }
    }
    why.note(ECANCELED, "Interrupted");
    return -1;
}

}  // namespace tpu
