// What a journal makes of its buffer.
//
// A person's keys are no statements, and much else changes a text too: commands, pastes,
// the output of a process. So each buffer that keeps a journal has a mirror, the buffer
// as a replay of the records so far would leave it. When the buffer has come to
// differ, statements that lead there are recorded and applied to the mirror. Each of them
// has been tried on the mirror first, so that a replay comes out the same to the byte.
#pragma once

#include <optional>
#include <string>

#include "buffer/buffer.h"
#include "editor/ports.h"

namespace tpu {

class TPUEditor;

class JournalMirror {
  public:
    static constexpr std::chrono::milliseconds kLongestWait{1000};  // of what was typed

    explicit JournalMirror(Buffer& buffer);

    // Takes the buffer as it is: what was recorded last has led there.
    void capture();
    // Records how the buffer differs. Typed characters are gathered until there are
    // enough of them, and where the cursor goes is left until it matters.
    void follow(Charset charset, Clock::time_point now);
    // Records what was gathered.
    void flush();
    // Records a statement that is about to run.
    void record(std::string_view statement);

    // When the oldest of what flush() would record was typed; nothing: there is none.
    std::optional<Clock::time_point> waiting_since() const { return waiting_since_; }
    // Some of the records do not stand for statements: a replay has other steps of undo.
    bool has_own_steps() const { return has_own_steps_; }
    void expect_own_steps() { has_own_steps_ = true; }

  private:
    // As much of a buffer as records can change.
    struct State {
        Buffer::Snapshot text;
        std::optional<Marker> anchor;
    };

    // Puts the mirror back at its end unless it is told to keep it.
    class Attempt;

    State state() const;
    void restore(const State& state);
    void take_anchor();
    bool has_same_text();
    bool is_there();  // text and cursor are those of the buffer
    void follow_modes();
    void follow_text(Charset charset, Clock::time_point now);
    void follow_anchor();
    bool follow_typing(Charset charset, Clock::time_point now);
    bool follow_erasing();
    void rewrite(Charset charset);
    void replace(std::uint64_t from, std::uint64_t count, const LineStore& fresh, Charset charset);
    void insert(const LineStore& text, Charset charset);
    void move_to(Position place);
    // Records a statement of the mirror's own.
    void write(const std::string& statement);
    // Applies `change` and records the statement that does it: both or, when memory is too
    // short, neither.
    template <class Change>
    void apply(const std::string& statement, Change change);
    // The same if that leads to the buffer's state; else false, and nothing is done.
    template <class Change>
    bool tries(const std::string& statement, Change change);

    Buffer& buffer_;
    Buffer replayed_{"", ""};
    std::string typed_;  // the mirror has it, the journal does not
    std::size_t typed_keys_ = 0;
    State before_typed_;
    std::optional<Position> moved_to_;  // since the text was changed last
    std::optional<Clock::time_point> waiting_since_;
    bool has_own_steps_ = false;
};

// Gives a buffer the modes of another that records can set.
void copy_recorded_modes(const Buffer& from, Buffer& to);

// The mirror of a buffer that keeps a journal; made when there is none.
JournalMirror& mirror_of(Buffer& buffer);

// Records what was typed in any buffer more than a second ago, or all of it. True while
// something waits.
bool flush_journals(TPUEditor& editor, bool all);

// Lives while a key is acted on: what it does to the buffer that was current is
// recorded. Costs nothing where no journal is kept.
class JournaledKey {
  public:
    explicit JournaledKey(TPUEditor& editor);
    ~JournaledKey() {
        if (buffer_) end();
    }
    JournaledKey(const JournaledKey&) = delete;
    JournaledKey& operator=(const JournaledKey&) = delete;

  private:
    void end();

    TPUEditor& editor_;
    Buffer* buffer_ = nullptr;
    int exceptions_ = 0;  // under way at the begin
};

}  // namespace tpu
