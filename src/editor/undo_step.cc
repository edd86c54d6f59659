#include "editor/undo_step.h"

#include <algorithm>
#include <new>

#include "editor/editor.h"

namespace tpu {

UndoStep::UndoStep(TPUEditor& editor) : editor_(editor), outer_(editor.undo_step) {
    watch_current_buffer();
    if (!outer_) editor_.undo_step = this;  // when nothing can fail any more
}

UndoStep::~UndoStep() {
    if (outer_) return;
    editor_.undo_step = nullptr;
    try {
        finish();
    } catch (const std::bad_alloc&) {
        // The change stays, and undoing goes back to a state before it.
    }
}

void UndoStep::finish() {
    for (const Watched& watched : watched_) finish(watched);
    watched_.clear();
}

void UndoStep::watch_current_buffer() {
    if (outer_) return outer_->watch_current_buffer();
    Buffer* buffer = editor_.current_buffer;
    if (!buffer) return;
    bool known = std::any_of(watched_.begin(), watched_.end(),
                             [&](const Watched& watched) { return watched.buffer == buffer; });
    if (!known) watched_.push_back({buffer, buffer->snap(), buffer->history_moves});
}

void UndoStep::forget(const Buffer* buffer) {
    std::erase_if(watched_, [&](const Watched& watched) { return watched.buffer == buffer; });
}

void UndoStep::finish(const Watched& watched) const {
    Buffer& buffer = *watched.buffer;
    Buffer::Snapshot now = buffer.snap();
    bool only_travelled = buffer.history_moves != watched.history_moves &&
                          now.same_place_and_text(buffer.last_restored);
    if (only_travelled || now.same_place_and_text(watched.before)) return;
    buffer.push_undo(watched.before, true);
}

}  // namespace tpu
