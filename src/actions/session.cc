// Modes of typing, and the end of the session.
#include "actions/actions.h"

namespace tpu::actions {

namespace {

void set_insert_mode(TPUEditor& editor, bool insert) {
    editor.current_buffer->insert_mode = insert;
    editor.set_message(insert ? "INSERT mode" : "OVERSTRIKE mode");
}

}  // namespace

void type_in_insert_mode(TPUEditor& editor) {
    set_insert_mode(editor, true);
}

void type_in_overstrike_mode(TPUEditor& editor) {
    set_insert_mode(editor, false);
}

void toggle_insert_mode(TPUEditor& editor) {
    set_insert_mode(editor, !editor.current_buffer->insert_mode);
}

void begin_gold(TPUEditor& editor) {
    editor.set_message("GOLD");
    editor.gold_pending = true;
}

void leave(TPUEditor& editor) {
    editor.running = false;
}

}  // namespace tpu::actions
