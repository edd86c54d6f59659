#include "os/descriptor.h"

#include <cerrno>

#include "os/system_calls.h"

namespace tpu {

bool Descriptor::close(Failure& why) {
    if (fd_ < 0) return true;
    // An interrupted close has closed: a second one could hit another file.
    return sys::close(std::exchange(fd_, -1)) == 0 || errno == EINTR || why.note_errno();
}

void Descriptor::close() {
    Failure untold;
    static_cast<void>(close(untold));
}

}  // namespace tpu
