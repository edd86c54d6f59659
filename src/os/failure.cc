#include "os/failure.h"

#include <cerrno>
#include <cstring>

namespace tpu {

bool Failure::note_errno() {
    return note(errno);
}

std::string Failure::text() const {
    if (error == 0) return {};
    return words ? words : std::strerror(error);
}

}  // namespace tpu
