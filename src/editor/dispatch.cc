// What keys, the mouse and pastes do.
#include "editor/editor.h"
#include "editor/journal_follower.h"
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
    if (!editor.processes.attached) return false;
    TPUProcess& process = *editor.processes.attached;
    switch (key) {
        case control('Z'):
            editor.processes.attached.reset();
            editor.set_message("Detached");
            break;
        case control('D'):
            process.send_eof();
            editor.processes.attached.reset();
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
void follow_mouse(TPUEditor& editor, MouseEvent event) {
    editor.last_key = kKeyMouse;
    if (editor.processes.attached) return;
    editor.mouse_row = event.row;
    editor.mouse_column = event.col;
    const TPUWindow* window = editor.current_window;
    Buffer* buffer = editor.current_buffer;
    if (!event.clicked || !window || !buffer || window->buffer != buffer) return;
    int row = event.row - window->top;
    int column = event.col - window->left - editor.gutter(*window);
    if (row < 0 || column < 0) return;
    buffer->cursor_row = buffer->view_line + static_cast<std::uint64_t>(row);
    buffer->cursor_column = static_cast<std::uint64_t>(column);
    buffer->clamp_cursor();
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
    const Buffer* buffer = editor.current_buffer;
    const bool has_own = buffer && !buffer->key_map_list.empty();
    const KeyMapList* own =
        has_own ? find_named(editor.key_map_lists, buffer->key_map_list) : nullptr;
    return own ? own : editor.current_key_map_list;
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

// Bytes that make no character are typed one by one.
void insert_character(TPUEditor& editor, std::string_view bytes) {
    Buffer* buffer = editor.current_buffer;
    if (!buffer) return;
    if (decode_utf8(bytes).size == bytes.size())
        return buffer->type_character(bytes, editor.charset);
    for (char byte : bytes) buffer->type_character({&byte, 1}, editor.charset);
}

// True when all that the key types is typed.
bool act_on_key(TPUEditor& editor, int key, std::string_view text) {
    int code = key;
    if (editor.gold_pending) {
        code += kGoldOffset;
        editor.gold_pending = false;
    }
    if (run_binding(editor, code)) return false;
    if (is_character(key)) {
        insert_character(editor, text);
        return true;
    }
    run_procedure(editor, editor.undefined_key_procedure);
    return false;
}

// True when all that the key types is typed. Else there was something to do for its code,
// which is that of its first byte.
bool press(TPUEditor& editor, int key, std::string_view text) {
    editor.last_key = key;
    if (feed_process(editor, key)) return false;
    UndoStep step(editor);
    JournaledKey journaled(editor);
    bool typed = false;
    if (!editor.pre_key_procedure.empty()) {
        run_procedure(editor, editor.pre_key_procedure);
        step.begin_part();
    }
    if (!take_prefix(editor, key)) {
        step.watch_current_buffer();
        typed = act_on_key(editor, key, text);
    }
    run_procedure(editor, editor.post_key_procedure);
    journaled.record();
    step.finish();
    return typed;
}

// Deliberate: keys are bound to single bytes. Where one that begins a character is bound, the
// bytes behind it are keys of their own.
void press_key(TPUEditor& editor, const Event& event) {
    if (press(editor, event.key, event.text)) return;
    for (std::size_t i = 1; i < event.text.size() && editor.running; ++i) {
        press(editor, static_cast<unsigned char>(event.text[i]), event.text.substr(i, 1));
    }
}

}  // namespace

void TPUEditor::handle_event(const Event& event) {
    switch (event.kind) {
        case Event::Kind::key: press_key(*this, event); break;
        case Event::Kind::mouse: follow_mouse(*this, event.mouse); break;
        case Event::Kind::paste: insert_paste(event.text); break;
        default: break;
    }
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

void TPUEditor::send_text(TPUProcess& process, std::string_view text) {
    if (!process.send(text)) {
        set_message("SEND: too much waits for the process already; the text was dropped");
    }
}

void TPUEditor::insert_paste(const std::string& text) {
    if (processes.attached) {
        send_text(*processes.attached, text);
    } else if (current_buffer) {
        UndoStep step(*this);
        JournaledKey journaled(*this);
        current_buffer->copy_text(text, charset);
        journaled.record();
        step.finish();
    }
}

}  // namespace tpu
