// Selecting text, and rectangles of it.
#include "actions/actions.h"

namespace tpu::actions {

void begin_selection(TPUEditor& editor, const char* message) {
    editor.current_buffer->select();
    editor.set_message(message);
}

void select(TPUEditor& editor) {
    begin_selection(editor, "SELECT");
}

void mark(TPUEditor& editor) {
    begin_selection(editor, "MARK set");
}

void box_select(TPUEditor& editor) {
    begin_selection(editor, "BOX SELECT");
    editor.current_buffer->box_select = true;
}

void tell_of_selection(TPUEditor& editor) {
    bool active = editor.current_buffer->select_range().has_value();
    editor.set_message(active ? "SELECT_RANGE active" : "No SELECT active");
}

namespace {

void take_box(TPUEditor& editor,
              void (Buffer::*take)(std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                                   Work*),
              const char* done) {
    Buffer& buffer = *editor.current_buffer;
    if (!buffer.box_select || !buffer.select_anchor) {
        return editor.set_message("Start with BOX SELECT first");
    }
    const Marker from = *buffer.select_anchor;
    Work work = editor.parser.interruptible();
    (buffer.*take)(from.row, buffer.cursor_row, from.column, buffer.cursor_column, &work);
    if (!is_done(editor, "BOX", work)) return;
    buffer.select_anchor.reset();
    buffer.box_select = false;
    editor.set_message(done);
}

}  // namespace

void box_cut(TPUEditor& editor) {
    take_box(editor, &Buffer::box_cut, "Box cut");
}

void box_copy(TPUEditor& editor) {
    take_box(editor, &Buffer::box_copy, "Box copied");
}

void box_paste(TPUEditor& editor) {
    Buffer& buffer = *editor.current_buffer;
    if (buffer.box_register.empty()) return editor.set_message("Box paste buffer empty");
    Work work = editor.parser.interruptible();
    buffer.box_paste(buffer.cursor_row, buffer.cursor_column, &work);
    if (!is_done(editor, "BOX PASTE", work)) return;
    editor.set_message("Box pasted");
}

}  // namespace tpu::actions
