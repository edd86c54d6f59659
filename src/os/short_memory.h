// Memory that runs short.
//
// An allocation that fails is an exception. What is under way ends, and destructors put back
// what it had begun to change; here alone the exception is caught.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>

namespace tpu {

// Does the work. False: memory ran out, or something was to be longer than anything can
// be, and the work has ended there.
template <class Work>
bool enough_memory(Work&& work) {
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
}

// Memory that is put by for the time when there is no more.
class MemoryReserve {
  public:
    // Puts it by, unless that is done already or would use up what there is.
    void take() {
        if (memory_) return;
        std::unique_ptr<char[]> more(new (std::nothrow) char[kSize]);
        std::unique_ptr<char[]> left(more ? new (std::nothrow) char[kSize] : nullptr);
        if (!left) return;
        std::memset(more.get(), 1, kSize);  // or the system would only promise it
        memory_ = std::move(more);
    }
    void release() { memory_.reset(); }

    // Does the work, once more with this memory where there is too little else. False: even
    // then there was.
    template <class Work>
    bool help(Work&& work) {
        if (enough_memory(work)) return true;
        release();
        return enough_memory(work);
    }

  private:
    static constexpr std::size_t kSize = std::size_t{1} << 20;

    std::unique_ptr<char[]> memory_;
};

}  // namespace tpu
