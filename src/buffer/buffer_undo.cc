// Snapshots, undo and redo.
#include "buffer/buffer.h"

namespace tpu {

bool Buffer::Snapshot::same_place_and_text(const Snapshot& other) const {
    return cursor_row == other.cursor_row && cursor_column == other.cursor_column &&
           lines == other.lines;
}

Buffer::Snapshot Buffer::snap() const {
    return {text_, cursor_row, cursor_column, view_line, log_.version()};
}

void Buffer::restore_snap(const Snapshot& snapshot) {
    log_.go_back_to(snapshot.version);
    text_ = snapshot.lines;
    cursor_row = snapshot.cursor_row;
    cursor_column = snapshot.cursor_column;
    view_line = snapshot.view_line;
    modified = true;  // Deliberate: even when this is the text on disk.
}

Buffer::State Buffer::state() const {
    return {snap(),    select_anchor,     box_select,       modified,
            file_time, undo_stack.size(), redo_stack.size()};
}

// The stacks have room for the steps that were taken from them, and a log that has ended
// takes nothing.
void Buffer::put_back(const State& state) noexcept {
    if (log_.version() != state.text.version) log_.end();
    if (undo_stack.size() + redo_stack.size() == state.undo_steps + state.redo_steps) {
        while (redo_stack.size() > state.redo_steps) redo();
        while (undo_stack.size() > state.undo_steps) undo();
    }
    restore_snap(state.text);
    select_anchor = state.select_anchor;
    box_select = state.box_select;
    bool saved = file_time != state.file_time;
    modified = saved ? !text_.is_same_version(saved_lines) : state.modified;
}

namespace {

void make_room(std::vector<Buffer::Snapshot>& stack) {
    std::size_t size = stack.size();
    if (size == stack.capacity()) stack.reserve(size * 2 + 8);
}

}  // namespace

void Buffer::make_room_for_undo() {
    make_room(undo_stack);
}

void Buffer::push_undo(bool clear_redo) {
    push_undo(snap(), clear_redo);
}

void Buffer::push_undo(Snapshot snapshot, bool clear_redo) {
    if (!undo_enabled) return;
    undo_stack.push_back(std::move(snapshot));
    if (undo_stack.size() > undo_limit) undo_stack.erase(undo_stack.begin());
    if (clear_redo) redo_stack.clear();
}

void Buffer::go_back_to(const Snapshot& snapshot) {
    redo_stack.clear();
    redo_stack.push_back(snap());
    last_restored = snapshot;
    restore_snap(last_restored);
    ++history_moves;
}

// Puts the present state on one stack and takes the newest of the other: both or, when memory
// is too short, neither.
bool Buffer::travel(std::vector<Snapshot>& from, std::vector<Snapshot>& to) {
    if (from.empty()) return false;
    make_room(to);
    Snapshot now = snap();
    restore_snap(from.back());
    undo_enabled = true;  // Deliberate: who goes back wants steps to be kept.
    to.push_back(std::move(now));
    last_restored = std::move(from.back());
    from.pop_back();
    ++history_moves;
    return true;
}

bool Buffer::undo() {
    return travel(undo_stack, redo_stack);
}

bool Buffer::redo() {
    return travel(redo_stack, undo_stack);
}

}  // namespace tpu
