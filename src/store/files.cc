// Saving from the session, with its messages.
#include "editor/editor.h"

namespace tpu {

namespace {

void save(TPUEditor& editor, const std::string& file) {
    Buffer& buffer = *editor.current_buffer;
    std::string objection = buffer.no_write ? "" : buffer.write_refusal(file);
    if (objection.empty() && !buffer.no_write) objection = buffer.doubt_about_saving(file);
    if (!objection.empty()) {
        return editor.set_message("Write failed: " + file + " (" + objection + ")");
    }
    const bool written = buffer.write_file(file);
    // What was written stays so, even if there is no memory to say it.
    enough_memory([&] { editor.set_message((written ? "Written " : "Write failed: ") + file); });
}

}  // namespace

void TPUEditor::save_current() {
    if (!current_buffer) return;
    const std::string file = current_buffer->file_name;
    file.empty() ? save_as(read_command_line("Write file: ")) : save(*this, file);
}

void TPUEditor::save_as(const std::string& name) {
    if (!current_buffer) return;
    name.empty() ? set_message("No file specified") : save(*this, name);
}

}  // namespace tpu
