// Moving the cursor within the line and by screens.
#include <algorithm>

#include "actions/actions.h"

namespace tpu::actions {

namespace {

// Lines that a screenful moves by.
int page(const TPUEditor& editor) {
    return std::max(editor.rows - 3, 1);
}

}  // namespace

void go_to_line_begin(TPUEditor& editor) {
    editor.current_buffer->cursor_column = 0;
}

void go_to_line_end(TPUEditor& editor) {
    editor.current_buffer->cursor_column = editor.current_buffer->line_length();
}

void next_screen(TPUEditor& editor) {
    editor.current_buffer->move_vertical(page(editor));
}

void previous_screen(TPUEditor& editor) {
    editor.current_buffer->move_vertical(-page(editor));
}

}  // namespace tpu::actions
