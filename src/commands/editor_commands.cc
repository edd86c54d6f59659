// The commands and what they do.
#include "commands/command_words.h"
#include "core/ascii.h"
#include "editor/editor.h"

namespace tpu {

namespace {

using Line = const CommandLine&;

void leave(TPUEditor& editor, Line) {
    editor.running = false;
}

// Word `i` names the file; without it the buffer's own file is meant.
void write(TPUEditor& editor, Line line, std::size_t i) {
    if (line.words.size() > i) {
        editor.save_as(line.words[i]);
    } else {
        editor.save_current();
    }
}

bool search(TPUEditor& editor, Line line) {
    std::string_view text = ascii::trim(line.from_word(1));
    bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    if (quoted) text = text.substr(1, text.size() - 2);
    return editor.current_buffer->search_forward(text);
}

void find(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.prompt_find();
    editor.set_message(search(editor, line) ? "Found" : "Not found");
}

void find_quietly(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.prompt_find();
    search(editor, line);
}

void remove(TPUEditor& editor, Line) {
    Buffer& buffer = *editor.current_buffer;
    std::optional<Range> selection = buffer.select_range();
    if (!selection) return buffer.erase_character_at_cursor();
    editor.push_kill_ring(buffer.lines_of_range(*selection));
    buffer.erase_range(*selection);
    buffer.select_anchor.reset();
    editor.set_message("Deleted selection");
}

void select(TPUEditor& editor, Line) {
    editor.current_buffer->select();
    editor.set_message("SELECT");
}

void switch_buffer(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.set_message("BUFFER requires name");
    const std::string& name = line.words[1];
    Buffer* buffer = editor.find_buffer(name);
    editor.position(buffer ? buffer : editor.create_buffer(name, ""));
    editor.set_message("Current buffer: " + name);
}

void set_insert(TPUEditor& editor, bool insert) {
    editor.current_buffer->insert_mode = insert;
    editor.set_message(insert ? "INSERT mode" : "OVERSTRIKE mode");
}

// clang-format off
constexpr Command kCommands[] = {
    {"SAVE", "FILE", [](TPUEditor& e, Line l) { write(e, l, 2); },
     "SAVE FILE [name]", "Write the buffer to its file, or to the file named."},
    {"WRITE", "FILE", [](TPUEditor& e, Line l) { write(e, l, 2); },
     "WRITE FILE [name]", "Write the buffer to its file, or to the file named."},
    {"NEXT", "BUFFER", [](TPUEditor& e, Line) { e.next_buffer(); },
     "NEXT BUFFER", "Go to the next buffer."},
    {"PREVIOUS", "BUFFER", [](TPUEditor& e, Line) { e.previous_buffer(); },
     "PREVIOUS BUFFER", "Go to the previous buffer."},
    {"PASTE", "PREVIOUS", [](TPUEditor& e, Line) { e.paste_previous(); },
     "PASTE PREVIOUS", "Paste the text that was cut or copied before."},
    {"PASTE", "", [](TPUEditor& e, Line) { e.paste(); },
     "PASTE", "Paste what was cut or copied last in this buffer."},
    {"DELETE", "", remove,
     "DELETE", "Delete the selection, or else the character at the cursor."},
    {"EXIT", "", leave,
     "EXIT", "Leave the editor; nothing is saved."},
    {"QUIT", "", leave,
     "QUIT", "Leave the editor; nothing is saved."},
    {"WRITE", "", [](TPUEditor& e, Line l) { write(e, l, 1); },
     "WRITE [name]", "Write the buffer to its file, or to the file named."},
    {"SAVE", "", [](TPUEditor& e, Line l) { write(e, l, 1); },
     "SAVE [name]", "Write the buffer to its file, or to the file named."},
    {"FIND", "", find,
     "FIND [text]", "Search forward for the text, or as you type it."},
    {"SEARCH", "", find,
     "SEARCH [text]", "Search forward for the text, or as you type it."},
    {"SEARCH_QUIETLY", "", find_quietly,
     "SEARCH_QUIETLY <pat>", "Search without status message."},
    {"TOP", "", [](TPUEditor& e, Line) { e.current_buffer->beginning_of_buffer(); },
     "TOP", "Go to the beginning of the buffer."},
    {"BOTTOM", "", [](TPUEditor& e, Line) { e.current_buffer->end_of_buffer(); },
     "BOTTOM", "Go to the end of the buffer."},
    {"END", "", [](TPUEditor& e, Line) { e.current_buffer->end_of_buffer(); },
     "END", "Go to the end of the buffer."},
    {"ERASE_LINE", "", [](TPUEditor& e, Line) { e.current_buffer->erase_line(); },
     "ERASE_LINE", "Erase the current line."},
    {"SELECT", "", select,
     "SELECT", "Start a selection at the cursor."},
    {"INSERT", "", [](TPUEditor& e, Line) { set_insert(e, true); },
     "INSERT", "Type in insert mode."},
    {"OVERSTRIKE", "", [](TPUEditor& e, Line) { set_insert(e, false); },
     "OVERSTRIKE", "Type in overstrike mode."},
    {"BUFFER", "", switch_buffer,
     "BUFFER name", "Go to the buffer of that name; it is made if there is none."},
    {"SHOW", "", [](TPUEditor& e, Line l) { e.show_command(l.words); },
     "SHOW item [name]", "Show the state of the editor; SHOW alone lists the items."},
    {"HELP", "", [](TPUEditor& e, Line l) { e.show_help(l.words.size() > 1 ? l.words[1] : ""); },
     "HELP [topic]", "Show the documentation of a topic, a command or a built-in."},
};
// clang-format on

}  // namespace

std::span<const Command> commands() {
    return kCommands;
}

}  // namespace tpu
