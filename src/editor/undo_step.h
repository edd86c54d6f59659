// One press of a key, or one outermost statement, is one step of undo.
#pragma once

#include "core/buffer.h"

namespace tpu {

class TPUEditor;

// While the outermost step lives, no snapshots are taken. When it ends, each
// buffer it watched gets one: the state in which the step found it, if text or
// cursor have changed since. A step that did nothing but undo or redo gets none,
// and a step without effect leaves the redo stack alone.
class UndoStep {
  public:
    // Watches the current buffer, if there is one. Inner steps watch for the outer one.
    explicit UndoStep(TPUEditor& editor);
    ~UndoStep();
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

    void forget(const Buffer* buffer);  // it is being deleted
    // Makes a step of what has changed so far, and watches no buffer until told to.
    void finish();
    // Watches the buffer that is current now as well.
    void watch_current_buffer();

  private:
    struct Watched {
        Buffer* buffer;
        Buffer::Snapshot before;
        std::uint64_t history_moves;
    };
    void finish(const Watched& watched) const;

    TPUEditor& editor_;
    UndoStep* outer_;
    std::vector<Watched> watched_;
};

}  // namespace tpu
