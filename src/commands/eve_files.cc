// Commands on buffers and their files, and the shell.
#include <algorithm>

#include "commands/command_words.h"
#include "commands/show.h"
#include "editor/editor.h"
#include "os/file_names.h"
#include "store/buffer_file.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

Buffer* buffer_of_file(TPUEditor& editor, const std::string& file) {
    for (const auto& buffer : editor.buffers) {
        if (!buffer->file_name.empty() && is_same_file(buffer->file_name, file)) {
            return buffer.get();
        }
    }
    return nullptr;
}

// Nothing is left of a new buffer whose file cannot be read.
void get_file(TPUEditor& editor, Line line) {
    std::string file = line.file(editor, 1), message = "Got file " + file;
    Buffer* buffer = buffer_of_file(editor, file);
    std::string trouble;
    auto load = [&](Buffer& into) {
        trouble = edit_file(into, into.file_name, editor.loading(), editor.interrupted());
    };
    if (!buffer) {
        auto loaded = std::make_unique<Buffer>(editor.unused_buffer_name(file), file);
        load(*loaded);
        if (!trouble.empty()) {
            return editor.fail("TPU$_OPENIN", trouble, loaded->file_trouble.text());
        }
        if (loaded->file_time == 0) message = "New file " + file;
        buffer = loaded.get();
        editor.buffers.push_back(std::move(loaded));
    } else if (buffer->file_trouble && !buffer->modified) {
        load(*buffer);
    }
    editor.position(buffer);
    buffer->refused_save.reset();
    editor.set_message(message);
    if (!buffer->modified) editor.tell_of_file(*buffer, trouble);
}

void include_file(TPUEditor& editor, Line line) {
    std::string file = line.file(editor, 1);
    Buffer included("", "");
    Failure why;
    if (!load_file(included, file, Loading::at_once, editor.interrupted(), why)) {
        return editor.fail("TPU$_OPENIN", "Cannot include " + file, why.text());
    }
    editor.current_buffer->copy_lines(included.text(), editor.charset);
    editor.set_message("Included " + file);
}

void reload(TPUEditor& editor, Line) {
    Buffer& buffer = *editor.current_buffer;
    const std::string file = buffer.file_name;
    if (buffer.modified) {
        return editor.set_message("Buffer modified — save first or use UNDO");
    }
    if (file.empty()) return editor.set_message("No file to reload");
    Buffer::Snapshot before = buffer.snap();
    Failure why;
    if (!load_file(buffer, file, editor.loading(), editor.interrupted(), why)) {
        return editor.fail("TPU$_OPENIN", "Reload failed", why.text());
    }
    buffer.cursor_row = before.cursor_row;
    buffer.cursor_column = before.cursor_column;
    buffer.view_line = std::min(before.view_line, buffer.text().size() - 1);
    buffer.clamp_cursor();
    editor.set_message("Reloaded " + file);
}

void check_disk(TPUEditor& editor, Line) {
    const Buffer& buffer = *editor.current_buffer;
    const std::string& file = buffer.file_name;
    if (file.empty()) return editor.set_message("No file");
    Failure why;
    std::uint64_t on_disk = file_mtime_ms(file, why);
    if (on_disk == 0) return editor.fail("TPU$_OPENIN", "Cannot stat " + file, why.text());
    editor.set_message(on_disk == buffer.file_time
                           ? "File unchanged on disk"
                           : "File CHANGED on disk -- type RELOAD to discard local changes");
}

void list_buffers(TPUEditor& editor, Line) {
    show_command(editor, {"SHOW", "BUFFERS"});
}

void spawn(TPUEditor& editor, Line line) {
    editor.def_endwin_then_run(std::string(line.rest(1)));
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "GET", .run = get_file, .form = "GET file",
     .help = "Go to the buffer of a file, which is loaded when no buffer holds it yet.",
     .least = 2, .without_buffer = true, .about = About::file},
    {.words = "INCLUDE", .run = include_file, .form = "INCLUDE file",
     .help = "Insert the text of a file at the cursor.",
     .least = 2, .edits = true, .about = About::file},
    {.words = "SAVE FILE", .run = save<2>, .form = "SAVE FILE [name]",
     .help = "Write the buffer to its file, or to the file named.", .about = About::file, .alias = "WRITE FILE"},
    {.words = "RELOAD", .run = reload, .form = "RELOAD",
     .help = "Read the file of the buffer again; the cursor keeps its place."},
    {.words = "CHECK_DISK", .run = check_disk, .form = "CHECK_DISK",
     .help = "Tell whether somebody else has changed the file of the buffer."},
    {.words = "CHECK DISK", .run = check_disk, .form = "CHECK DISK",
     .help = "Tell whether somebody else has changed the file of the buffer.", .in_full = true},
    {.words = "NEXT BUFFER", .run = does<&TPUEditor::next_buffer>, .form = "NEXT BUFFER",
     .help = "Go to the next buffer."},
    {.words = "PREVIOUS BUFFER", .run = does<&TPUEditor::previous_buffer>,
     .form = "PREVIOUS BUFFER", .help = "Go to the previous buffer."},
    {.words = "BUFFER LIST", .run = list_buffers, .form = "BUFFER LIST",
     .help = "List the buffers; a star marks the current one.", .without_buffer = true},
    {.words = "WHAT BUFFER", .run = list_buffers, .form = "WHAT BUFFER",
     .help = "List the buffers; a star marks the current one.", .without_buffer = true, .in_full = true},
    {.words = "SHOW BUFFERS", .run = list_buffers, .form = "SHOW BUFFERS",
     .help = "List the buffers; a star marks the current one.", .without_buffer = true},
    {.words = "SPAWN", .run = spawn, .form = "SPAWN command",
     .help = "Run a shell command on the terminal and come back.", .without_buffer = true, .in_full = true, .alias = "DCL"},
};
// clang-format on

}  // namespace

std::span<const Command> eve_files() {
    return kRows;
}

}  // namespace tpu::commands
