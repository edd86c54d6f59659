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
}

void UndoStep::watch_current_buffer() {
    if (editor_.current_buffer) watch(*editor_.current_buffer);
}

void UndoStep::watch(Buffer& buffer) {
    if (outer_) return outer_->watch(buffer);
    if (!find(&buffer)) watched_.push_back({&buffer, buffer.snap(), buffer.history_moves});
}

UndoStep::Watched* UndoStep::find(const Buffer* buffer) {
    auto found = std::find_if(watched_.begin(), watched_.end(),
                              [&](const Watched& watched) { return watched.buffer == buffer; });
    return found == watched_.end() ? nullptr : &*found;
}

void UndoStep::forget(const Buffer* buffer) {
    std::erase_if(watched_, [&](const Watched& watched) { return watched.buffer == buffer; });
}

void UndoStep::begin_part() {
    if (outer_) return;
    for (Watched& watched : watched_) watched.since = watched.buffer->snap();
}

void UndoStep::finish(const Watched& watched) const {
    Buffer& buffer = *watched.buffer;
    Buffer::Snapshot now = buffer.snap();
    bool only_travelled = watched.has_travelled() && !watched.has_branched &&
                          now.same_place_and_text(buffer.last_restored);
    if (only_travelled || now.same_place_and_text(watched.before)) return;
    buffer.push_undo(watched.before, true);
}

bool undo(TPUEditor& editor) {
    Buffer& buffer = *editor.current_buffer;
    UndoStep::Watched* watched = editor.undo_step ? editor.undo_step->find(&buffer) : nullptr;
    if (watched && watched->has_changed()) {
        watched->has_branched = watched->has_travelled();
        buffer.go_back_to(watched->start());
        return true;
    }
    bool undone = buffer.undo();
    if (undone && watched) watched->since = buffer.snap();
    return undone;
}

bool redo(TPUEditor& editor) {
    Buffer& buffer = *editor.current_buffer;
    UndoStep::Watched* watched = editor.undo_step ? editor.undo_step->find(&buffer) : nullptr;
    if (watched && watched->has_changed()) return false;
    bool redone = buffer.redo();
    if (redone && watched) watched->since = buffer.snap();
    return redone;
}

}  // namespace tpu
