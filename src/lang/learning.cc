#include "lang/learning.h"

#include <algorithm>

namespace tpu {

void Learning::begin() {
    sequence_ = std::make_shared<LearnSequence>();
    is_on_ = true;
}

void Learning::abort() {
    is_on_ = false;
    sequence_.reset();
}

bool Learning::record_begin(const std::string& text) {
    if (!is_on_ || unrecorded_ > 0) return false;
    sequence_->statements.push_back(text);
    return true;
}

void Learning::record_end() {
    if (!is_on_ && sequence_) sequence_->statements.pop_back();
}

bool Learning::enter(const LearnSequence& sequence) {
    constexpr std::size_t kDeepest = 100;
    const bool runs = std::find(running_.begin(), running_.end(), &sequence) != running_.end();
    if (runs || running_.size() == kDeepest || (is_on_ && sequence_.get() == &sequence))
        return false;
    running_.push_back(&sequence);
    return true;
}

}  // namespace tpu
