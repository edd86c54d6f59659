// Saving from the session, with its messages.
#include "editor/editor.h"

namespace tpu {

namespace {

void report_write(TPUEditor& editor, bool written, const std::string& file) {
    editor.set_message((written ? "Written " : "Write failed: ") + file);
}

}  // namespace

void TPUEditor::save_current() {
    if (!current_buffer) return;
    if (current_buffer->file_name.empty()) {
        save_as(read_command_line("Write file: "));
    } else {
        bool written = current_buffer->write_file("");
        report_write(*this, written, current_buffer->file_name);
    }
}

void TPUEditor::save_as(const std::string& name) {
    if (!current_buffer) return;
    if (name.empty()) {
        set_message("No file specified");
    } else {
        report_write(*this, current_buffer->write_file(name), name);
    }
}

}  // namespace tpu
