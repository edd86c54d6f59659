// Work on a text that may take long or make much.
#pragma once

#include <cstdint>
#include <functional>

namespace tpu {

// Tells, while something waits or takes long, that the user does not want it any more.
using Interrupted = std::function<bool()>;

// Whoever does such work asks it for every line, word or block whether to go on. When that
// is not so the text stays as it was before.
class Work {
  public:
    using Ask = bool (*)(void* whom);
    enum class End { done, stopped, too_large };

    // What one piece of work may add to a text, in bytes.
    static constexpr std::uint64_t kMostAdded = std::uint64_t{1} << 30;
    // What to say of it, behind its name.
    static constexpr const char* kTooLarge = " would make the text larger by more than 1 GB";

    Work() = default;  // nobody stops it
    Work(Ask ask, void* whom, std::uint64_t most_added = kMostAdded)
        : ask_(ask), whom_(whom), room_(most_added) {}

    // Asks only once in a while, and never again when the answer was yes.
    bool goes_on() {
        constexpr unsigned kStepsBetweenQuestions = 256;
        if (ask_ && ++steps_ % kStepsBetweenQuestions == 0 && end == End::done && ask_(whom_)) {
            end = End::stopped;
        }
        return end == End::done;
    }
    // The same before so many bytes are added.
    bool may_add(std::uint64_t bytes) {
        if (end == End::done && bytes > room_) end = End::too_large;
        if (end == End::done) room_ -= bytes;
        return goes_on();
    }

    End end = End::done;

  private:
    Ask ask_ = nullptr;
    void* whom_ = nullptr;
    unsigned steps_ = 0;
    std::uint64_t room_ = kMostAdded;
};

}  // namespace tpu
