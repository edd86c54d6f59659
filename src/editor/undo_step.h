// One press of a key, or one outermost statement, is one step of undo.
#pragma once

#include <optional>

#include "buffer/buffer.h"

namespace tpu {

class TPUEditor;
struct TPUWindow;

// While the outermost step lives, no snapshots are taken. When it is finished, each
// buffer it watched gets one: the state in which the step found it, if text or
// cursor have changed since. A step that did nothing but undo or redo gets none,
// and a step without effect leaves the redo stack alone. One that is not finished, since an
// exception has ended it, has not been: the buffers are put back into those states.
class UndoStep {
  public:
    // Watches the current buffer, if there is one. Inner steps watch for the outer one.
    explicit UndoStep(TPUEditor& editor);
    ~UndoStep();
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

    // Makes steps of what has changed so far.
    void finish();
    // Goes on with the same buffers as they are now.
    void begin_again();
    void forget(const Buffer* buffer);  // it is being deleted
    // Watches the buffer that is current now, or another one, as well.
    void watch_current_buffer();
    void watch(Buffer& buffer);
    bool watches(const Buffer& buffer) { return find(&buffer); }
    // Has the buffer put back in that case, though it is not watched.
    void protect(Buffer& buffer);
    // What has changed so far is no concern of an UNDO that follows.
    void begin_part();
    // A statement of this step gets a record of its own; false: it is not the first one.
    bool takes_record() { return records_++ == 0; }

  private:
    friend bool undo(TPUEditor& editor);
    friend bool redo(TPUEditor& editor);

    struct Watched {
        Buffer* buffer;
        Buffer::State before;
        std::uint64_t history_moves;
        bool gets_undo = false;
        std::optional<Buffer::Snapshot> since = {};  // UNDO goes back to here first, if set
        bool has_branched = false;  // what it undid before a change cannot be redone

        const Buffer::Snapshot& start() const { return since ? *since : before.text; }
        bool has_changed() const { return !buffer->snap().same_place_and_text(start()); }
        bool has_travelled() const { return buffer->history_moves != history_moves; }
    };
    Watched* find(const Buffer* buffer);
    void finish(const Watched& watched) const;
    Watched& note(Buffer& buffer);
    void take_back() noexcept;

    TPUEditor& editor_;
    UndoStep* outer_;
    Buffer* current_;  // buffer and window at the begin
    TPUWindow* window_;
    bool finished_ = false;
    std::vector<Watched> watched_;
    std::uint64_t records_ = 0;
};

// What is done while this lives is no part of the step under way, which ends before and begins
// anew afterwards.
class BetweenSteps {
  public:
    explicit BetweenSteps(TPUEditor& editor);
    ~BetweenSteps();
    BetweenSteps(const BetweenSteps&) = delete;
    BetweenSteps& operator=(const BetweenSteps&) = delete;

  private:
    TPUEditor& editor_;
    UndoStep* step_;
};

// Of the current buffer: takes back what the step under way has changed so far, or if that
// is nothing the step before. False: there is none.
bool undo(TPUEditor& editor);
// Brings back what was undone last, unless something was changed since.
bool redo(TPUEditor& editor);

}  // namespace tpu
