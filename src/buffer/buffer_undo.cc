// Snapshots, undo and redo.
#include "buffer/buffer.h"

namespace tpu {

bool Buffer::Snapshot::same_place_and_text(const Snapshot& other) const {
    return cursor_row == other.cursor_row && cursor_column == other.cursor_column &&
           lines == other.lines;
}

Buffer::Snapshot Buffer::snap() const {
    return {lines, cursor_row, cursor_column, view_line};
}

void Buffer::restore_snap(const Snapshot& snapshot) {
    lines = snapshot.lines;
    cursor_row = snapshot.cursor_row;
    cursor_column = snapshot.cursor_column;
    view_line = snapshot.view_line;
    modified = true;  // Deliberate: even when this is the text on disk.
}

Buffer::State Buffer::state() const {
    return {snap(),    select_anchor,     box_select,       modified,
            file_time, undo_stack.size(), redo_stack.size()};
}

// The stacks have room for the steps that were taken from them.
void Buffer::put_back(const State& state) noexcept {
    if (undo_stack.size() + redo_stack.size() == state.undo_steps + state.redo_steps) {
        while (redo_stack.size() > state.redo_steps) redo();
        while (undo_stack.size() > state.undo_steps) undo();
    }
    restore_snap(state.text);
    select_anchor = state.select_anchor;
    box_select = state.box_select;
    bool saved = file_time != state.file_time;
    modified = saved ? !lines.is_same_version(saved_lines) : state.modified;
}

void Buffer::make_room_for_undo() {
    std::size_t size = undo_stack.size();
    if (size == undo_stack.capacity()) undo_stack.reserve(size * 2 + 8);
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

namespace {

// Puts the present state on one stack and takes the newest of the other.
bool travel(Buffer& buffer, std::vector<Buffer::Snapshot>& from,
            std::vector<Buffer::Snapshot>& to) {
    if (from.empty()) return false;
    to.push_back(buffer.snap());
    buffer.last_restored = std::move(from.back());
    from.pop_back();
    buffer.undo_enabled = false;
    buffer.restore_snap(buffer.last_restored);
    buffer.undo_enabled = true;
    ++buffer.history_moves;
    return true;
}

}  // namespace

bool Buffer::undo() {
    return travel(*this, undo_stack, redo_stack);
}

bool Buffer::redo() {
    return travel(*this, redo_stack, undo_stack);
}

}  // namespace tpu
