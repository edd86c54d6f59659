#include "os/held_signal.h"

namespace tpu {

HeldSignal::HeldSignal(int number) : number_(number) {
    sigemptyset(&set_);
    sigaddset(&set_, number_);
    was_pending_ = is_pending();
    pthread_sigmask(SIG_BLOCK, &set_, &old_mask_);
}

HeldSignal::~HeldSignal() {
    int taken;
    if (!was_pending_ && is_pending()) sigwait(&set_, &taken);
    pthread_sigmask(SIG_SETMASK, &old_mask_, nullptr);
}

bool HeldSignal::is_pending() const {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, number_) == 1;
}

}  // namespace tpu
