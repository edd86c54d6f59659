#include "editor/undo_step.h"

#include <algorithm>

#include "editor/editor.h"
#include "os/short_memory.h"

namespace tpu {

UndoStep::UndoStep(TPUEditor& editor)
    : editor_(editor),
      outer_(editor.undo_step),
      current_(editor.current_buffer),
      window_(editor.current_window) {
    watch_current_buffer();
    if (!outer_) editor_.undo_step = this;  // when nothing can fail any more
}

UndoStep::~UndoStep() {
    if (outer_) return;
    editor_.undo_step = nullptr;
    if (!finished_) take_back();
}

// Where memory is too short the change stays, and undoing goes back to before it.
void UndoStep::finish() {
    finished_ = true;
    if (outer_) return;
    enough_memory([&] {
        for (const Watched& watched : watched_) finish(watched);
    });
}

UndoStep::Watched& UndoStep::note(Buffer& buffer) {
    if (Watched* watched = find(&buffer)) return *watched;
    return watched_.emplace_back(Watched{&buffer, buffer.state(), buffer.history_moves});
}

void UndoStep::watch_current_buffer() {
    if (editor_.current_buffer) watch(*editor_.current_buffer);
}

void UndoStep::watch(Buffer& buffer) {
    if (outer_) return outer_->watch(buffer);
    buffer.make_room_for_undo();
    note(buffer).gets_undo = true;
}

void UndoStep::protect(Buffer& buffer) {
    outer_ ? outer_->protect(buffer) : void(note(buffer));
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
    if (only_travelled || now.same_place_and_text(watched.before.text)) return;
    if (watched.gets_undo) buffer.push_undo(watched.before.text, true);
}

void UndoStep::take_back() noexcept {
    for (const Watched& watched : watched_) {
        if (editor_.owns(watched.buffer)) watched.buffer->put_back(watched.before);
    }
    if (editor_.owns(current_)) editor_.current_buffer = current_;
    for (const auto& window : editor_.windows) {
        if (window.get() == window_) editor_.current_window = window_;
    }
}

// Buffers that are gone by now are left out; new ones are for those who change them.
void UndoStep::begin_again() {
    finished_ = false;
    std::erase_if(watched_, [&](const Watched& watched) { return !editor_.owns(watched.buffer); });
    for (Watched& watched : watched_) {
        Buffer& buffer = *watched.buffer;
        watched = {&buffer, buffer.state(), buffer.history_moves, watched.gets_undo};
    }
    current_ = editor_.current_buffer;
    window_ = editor_.current_window;
}

BetweenSteps::BetweenSteps(TPUEditor& editor) : editor_(editor), step_(editor.undo_step) {
    if (step_) step_->finish();
    editor.undo_step = nullptr;  // when nothing can fail any more
}

BetweenSteps::~BetweenSteps() {
    editor_.undo_step = step_;
    if (step_) step_->begin_again();
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
