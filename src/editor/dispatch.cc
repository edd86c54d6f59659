// What a key does.
#include "editor/editor.h"
#include "editor/journal_mirror.h"
#include "editor/process.h"
#include "editor/undo_step.h"
#include "lang/nesting.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr int kFirstCharacter = 32, kLastCharacter = 255;

bool is_character(int key) {
    return key >= kFirstCharacter && key <= kLastCharacter;
}

// Keys for the attached process. True when there is one.
bool feed_process(TPUEditor& editor, int key) {
    if (!editor.attached_process) return false;
    TPUProcess& process = *editor.attached_process;
    switch (key) {
        case control('Z'):
            editor.attached_process.reset();
            editor.set_message("Detached");
            break;
        case control('D'):
            process.send_eof();
            editor.attached_process.reset();
            editor.set_message("EOF sent; detached");
            break;
        case '\n':
        case '\r':
        case kKeyEnter: editor.send_text(process, "\n"); break;
        case kKeyBackspace:
        case 127:
        case '\b': editor.send_text(process, "\b"); break;
        default:
            if (is_character(key))
                editor.send_text(process, std::string(1, static_cast<char>(key)));
    }
    return true;
}

// A click moves the cursor, by the current window, wherever on the screen it fell.
bool follow_mouse(TPUEditor& editor, int key) {
    if (key != kKeyMouse) return false;
    std::optional<MouseEvent> event = editor.ports.terminal.mouse();
    if (!event) return true;
    editor.mouse_row = event->row;
    editor.mouse_column = event->col;
    const TPUWindow* window = editor.current_window;
    Buffer* buffer = editor.current_buffer;
    if (!event->clicked || !window || !buffer || window->buffer != buffer) return true;
    int row = event->row - window->top;
    int column = event->col - window->left - editor.gutter(*window);
    if (row < 0 || column < 0) return true;
    buffer->cursor_row = buffer->view_line + static_cast<std::uint64_t>(row);
    buffer->cursor_column = static_cast<std::uint64_t>(column);
    buffer->clamp_cursor();
    return true;
}

// Procedures are run from a copy, since they may change their own setting.
void run_procedure(TPUEditor& editor, std::string text) {
    Unrecorded automatic(editor.parser.learning);
    if (!text.empty()) editor.parser.execute_text(text);
}

bool take_prefix(TPUEditor& editor, int key) {
    bool shift = editor.shift_key != 0 && key == editor.shift_key;
    if (!shift && key != editor.gold_key) return false;
    editor.set_message(shift ? "SHIFT" : "GOLD");
    editor.gold_pending = true;
    return true;
}

const KeyMapList* key_map_list(const TPUEditor& editor) {
    if (editor.current_buffer && !editor.current_buffer->key_map_list.empty()) {
        auto named = editor.key_map_lists.find(editor.current_buffer->key_map_list);
        if (named != editor.key_map_lists.end()) return named->second.get();
    }
    return editor.current_key_map_list;
}

// The text of a key is a statement, or else a command line.
bool run_binding(TPUEditor& editor, int code) {
    const KeyMapList* list = key_map_list(editor);
    const KeyBinding* found = list ? list->lookup(code) : nullptr;
    if (!found) return false;
    KeyBinding binding = *found;  // what it runs may redefine the key
    if (binding.action) {
        binding.action();
    } else if (!binding.text.empty()) {
        editor.run_key_text(binding.text);
    } else {
        return false;
    }
    return true;
}

void insert_character(TPUEditor& editor, int key) {
    std::string bytes = editor.read_character(key);
    Buffer* buffer = editor.current_buffer;
    if (!buffer) return;
    bool whole = decode_utf8(bytes).size == bytes.size();
    if (whole) {
        buffer->type_character(bytes, editor.charset);
    } else {
        for (char byte : bytes) buffer->type_character({&byte, 1}, editor.charset);
    }
}

void act_on_key(TPUEditor& editor, int key) {
    int code = key;
    if (editor.gold_pending) {
        code += kGoldOffset;
        editor.gold_pending = false;
    }
    if (run_binding(editor, code)) return;
    if (is_character(key)) {
        insert_character(editor, key);
    } else {
        run_procedure(editor, editor.undefined_key_procedure);
    }
}

}  // namespace

void TPUEditor::handle_key(int key) {
    last_key = key;
    if (feed_process(*this, key) || follow_mouse(*this, key)) return;
    UndoStep step(*this);
    JournaledKey journaled(*this);
    if (!pre_key_procedure.empty()) {
        run_procedure(*this, pre_key_procedure);
        step.begin_part();
    }
    if (!take_prefix(*this, key)) {
        step.watch_current_buffer();
        act_on_key(*this, key);
    }
    run_procedure(*this, post_key_procedure);
}

std::string TPUEditor::read_character(int first) {
    constexpr int kWait = 25;  // milliseconds; the bytes of a character come together
    std::string bytes(1, static_cast<char>(first));
    if (charset != Charset::utf8) return bytes;
    std::size_t size = utf8_length(static_cast<unsigned char>(first));
    while (bytes.size() < size) {
        int key = read_key(kWait);
        if (key == kNoKey) break;
        if ((key & ~0x3f) != 0x80) {
            unread_key(key);
            break;
        }
        bytes += static_cast<char>(key);
    }
    return bytes;
}

void TPUEditor::run_key_text(const std::string& text) {
    bool recorded = parser.learning.record_begin(text);
    {
        Unrecorded parts(parser.learning);
        if (!parser.knows(text) && vocabulary.is_command(text)) {
            execute_command(text);
        } else {
            parser.execute_text(text);
        }
    }
    if (recorded) parser.learning.record_end();
}

void TPUEditor::insert_paste(const std::string& text) {
    if (attached_process) {
        send_text(*attached_process, text);
    } else if (current_buffer) {
        UndoStep step(*this);
        JournaledKey journaled(*this);
        current_buffer->copy_text(text, charset);
    }
}

}  // namespace tpu
