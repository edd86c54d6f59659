// Saving.
#include "actions/actions.h"
#include "os/file_traits.h"
#include "store/buffer_file.h"

namespace tpu::actions {

namespace {

void save_to(TPUEditor& editor, const std::string& file) {
    Buffer& buffer = *editor.current_buffer;
    std::string objection = buffer.no_write ? "" : write_refusal(buffer, file);
    if (objection.empty() && !buffer.no_write) objection = doubt_about_saving(buffer, file);
    const std::string failed = "Write failed: " + file;
    if (!objection.empty()) {
        return editor.fail("TPU$_WRITEERR", failed + " (" + objection + ")", objection);
    }
    // What was protected stays, as a backup.
    const bool keeps_backup = buffer.backup_on_write;
    buffer.backup_on_write = keeps_backup || is_read_only(file);
    const bool written = write_file(buffer, file);
    buffer.backup_on_write = keeps_backup;
    // What was written stays so, even if there is no memory to say it.
    enough_memory([&] {
        if (!written) return editor.fail("TPU$_WRITEERR", failed, buffer.save_note);
        const std::string& done_without = buffer.save_note;
        editor.set_message("Written " + file +
                           (done_without.empty() ? "" : " (" + done_without + ")"));
    });
}

}  // namespace

void save(TPUEditor& editor) {
    const std::string file = editor.current_buffer->file_name;
    if (!file.empty()) return save_to(editor, file);
    const std::string name = editor.read_command_line("Write file: ");
    if (editor.current_buffer) save_as(editor, name);
}

void save_as(TPUEditor& editor, const std::string& name) {
    name.empty() ? editor.set_message("No file specified") : save_to(editor, name);
}

}  // namespace tpu::actions
