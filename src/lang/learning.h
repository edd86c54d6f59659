// Learn sequences: statements recorded as they run, to be run again.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "value/value.h"

namespace tpu {

struct LearnSequence : Object {
    bool truth() const override { return !statements.empty(); }

    std::vector<std::string> statements;  // or command lines; oldest first
};

inline Value learn_value(std::shared_ptr<LearnSequence> sequence) {
    return Value::make_object(Value::Type::learn, std::move(sequence));
}
// Null for a value of another type.
inline std::shared_ptr<LearnSequence> learned_of(const Value& value) {
    return value.object<LearnSequence>(Value::Type::learn);
}

// The sequence that is being recorded, or was recorded last, and those that run.
class Learning {
  public:
    // Records from now on, into a new sequence.
    void begin();
    void end() { is_on_ = false; }
    // Neither what runs now nor what it begins is recorded.
    void pause() { is_on_ = false, unrecorded_ = 0; }
    // Ends, and forgets what was recorded.
    void abort();

    bool is_on() const { return is_on_; }
    // Null: there is none.
    const std::shared_ptr<LearnSequence>& sequence() const { return sequence_; }

    // Keeps a statement that is about to run; false when none is to be kept. What ended the
    // recording is taken out of it again, by the other one, afterwards.
    bool record_begin(const std::string& text);
    void record_end();

    bool is_replaying() const { return !running_.empty(); }
    // False: the sequence runs already, is not complete yet, or would be one too many.
    [[nodiscard]] bool enter(const LearnSequence& sequence);
    void leave() { running_.pop_back(); }
    void leave_all() { running_.clear(); }

  private:
    friend class Unrecorded;

    bool is_on_ = false;
    int unrecorded_ = 0;  // see Unrecorded
    std::shared_ptr<LearnSequence> sequence_;
    std::vector<const LearnSequence*> running_;  // innermost last
};

// What runs meanwhile was not asked for by a statement of its own, and is no part of
// the learn sequence that is being recorded.
class Unrecorded {
  public:
    explicit Unrecorded(Learning& learning) : learning_(learning) { ++learning_.unrecorded_; }
    ~Unrecorded() { --learning_.unrecorded_; }
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;

  private:
    Learning& learning_;
};

}  // namespace tpu
