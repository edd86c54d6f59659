// What a journal of keys says of its buffer.
//
// A person's keys are no statements, and much else changes a text too: commands, pastes,
// the output of a process. So each buffer that keeps a journal has a follower, who knows to
// what the records so far lead. When the buffer has come to differ, he records statements
// that lead there: what its log of changes says, and then modes, selection and cursor.
#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "buffer/buffer.h"
#include "editor/ports.h"

namespace tpu {

class TPUEditor;

class JournalFollower {
  public:
    static constexpr std::chrono::milliseconds kLongestWait{1000};  // of what was typed

    explicit JournalFollower(Buffer& buffer) : buffer_(buffer) { capture(); }

    // Takes the buffer as it is: what was recorded last has led there. Needs no memory.
    void capture();
    // Records how the buffer differs. What was typed is gathered until there is enough of it,
    // and where the cursor goes is left until it matters.
    void follow(Clock::time_point now);
    // Records what was gathered.
    void flush();
    // Records a statement that is about to run.
    void record(const std::string& statement) { write({statement}); }

    // When the oldest of what flush() would record was typed; nothing: there is none.
    std::optional<Clock::time_point> waiting_since() const { return waiting_since_; }
    // Some of the records do not stand for statements: a replay has other steps of undo.
    bool has_own_steps() const { return has_own_steps_; }
    void expect_own_steps() { has_own_steps_ = true; }

  private:
    // As much of a buffer as records can change.
    struct State {
        LineStore text;
        std::uint64_t version = 0;
        Position cursor;
        std::optional<Position> anchor;
        std::array<bool, 4> modes{};
        std::array<std::uint64_t, 2> margins{};
    };
    class Way;

    static State state_of(const Buffer& buffer);
    // Records all of the statements or none, so that what is recorded is always known.
    void write(std::vector<std::string> statements);
    void go(const Way& way);

    Buffer& buffer_;
    State recorded_;
    std::uint64_t seen_ = 0;  // the version at the last key
    std::size_t keys_ = 0;    // that have typed what waits
    std::optional<Clock::time_point> waiting_since_;
    bool has_own_steps_ = false;
};

// The follower of a buffer that keeps a journal; made when there is none.
JournalFollower& follower_of(Buffer& buffer);

// Gives a buffer the modes that records start from, and takes its selection.
void reset_recorded_modes(Buffer& buffer);

// Records what was typed in any buffer more than a second ago, or all of it. True while
// something waits.
bool flush_journals(TPUEditor& editor, bool all);

// What a key does to the buffer that is current at its begin. Costs nothing where no journal
// is kept.
class JournaledKey {
  public:
    explicit JournaledKey(TPUEditor& editor);
    JournaledKey(const JournaledKey&) = delete;
    JournaledKey& operator=(const JournaledKey&) = delete;

    // The key has done what it does. What memory is too short for now is recorded with the
    // next one.
    void record();

  private:
    TPUEditor& editor_;
    Buffer* buffer_ = nullptr;
};

}  // namespace tpu
