// Changing the text: at the cursor, the selection, and back again.
#include <optional>

#include "actions/actions.h"
#include "editor/undo_step.h"
#include "text/ascii.h"

namespace tpu::actions {

bool is_done(TPUEditor& editor, const char* name, const Work& work) {
    if (work.end == Work::End::stopped) editor.set_message("Stopped by Ctrl-C");
    if (work.end == Work::End::too_large) editor.set_message(name + std::string(Work::kTooLarge));
    return work.end == Work::End::done;
}

void erase_character(TPUEditor& editor) {
    editor.current_buffer->erase_character_at_cursor(editor.charset);
}

void erase_character_left(TPUEditor& editor) {
    editor.current_buffer->erase_character_left(editor.charset);
}

void split_line(TPUEditor& editor) {
    Buffer& buffer = *editor.current_buffer;
    if (!buffer.modifiable) return;
    buffer.leave_character(editor.charset);
    buffer.split_line();
}

bool fill(TPUEditor& editor, const char* otherwise, Work& work) {
    Buffer& buffer = *editor.current_buffer;
    std::optional<Range> selection = buffer.select_range();
    if (!selection) {
        editor.set_message(otherwise);
        return false;
    }
    buffer.fill_range(*selection, buffer.left_margin, buffer.right_margin, &work);
    return true;
}

namespace {

// The rows of which something is selected, or the one of the cursor.
std::pair<std::uint64_t, std::uint64_t> selected_rows(Buffer& buffer) {
    std::optional<Range> selection = buffer.select_range();
    if (!selection) return {buffer.cursor_row, buffer.cursor_row};
    std::uint64_t first = selection->start.row, last = selection->end.row;
    return {first, last > first && selection->end.column == 0 ? last - 1 : last};
}

}  // namespace

void shift(TPUEditor& editor, int columns) {
    Buffer& buffer = *editor.current_buffer;
    auto [first, last] = selected_rows(buffer);
    Work work = editor.parser.interruptible();
    buffer.shift_rows(first, last, columns, &work);
    buffer.clamp_cursor();
    if (!is_done(editor, "SHIFT", work)) return;
    editor.set_message(columns > 0 ? "Shifted right" : "Shifted left");
}

Buffer::Case case_named(std::string_view word) {
    const std::string upper = ascii::upper(word);
    if (upper == "UPPER") return Buffer::Case::upper;
    return upper == "LOWER" ? Buffer::Case::lower : Buffer::Case::invert;
}

void change_case(TPUEditor& editor, Buffer::Case mode) {
    Buffer& buffer = *editor.current_buffer;
    if (std::optional<Range> selection = buffer.select_range()) {
        Work work = editor.parser.interruptible();
        buffer.change_case_range(*selection, mode, &work);
        if (!is_done(editor, "CHANGE CASE", work)) return;
    } else {
        buffer.change_case_word(mode);
    }
    editor.set_message("Changed case");
}

void undo(TPUEditor& editor) {
    editor.set_message(tpu::undo(editor) ? "Undone" : "Nothing to undo");
}

void redo(TPUEditor& editor) {
    editor.set_message(tpu::redo(editor) ? "Redone" : "Nothing to redo");
}

}  // namespace tpu::actions
