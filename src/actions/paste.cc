// Cutting, copying and pasting: the buffers' paste texts, the ring of what was cut or
// copied, and pastes with names.
//
// Deliberate: a paste text belongs to the buffer in which it was set. The ring and
// the names carry texts from one buffer to another.
#include "actions/actions.h"
#include "text/ascii.h"

namespace tpu::actions {

namespace {

constexpr std::size_t kRingSize = 32;

// The current buffer's selection; without one says so.
std::optional<Range> selection(TPUEditor& editor) {
    std::optional<Range> range = editor.current_buffer->select_range();
    if (!range) editor.set_message("No SELECT_RANGE");
    return range;
}

std::string quoted(const std::string& name) {
    return '"' + name + '"';
}

}  // namespace

void push_kill_ring(TPUEditor& editor, const LineStore& text) {
    if (text.bytes() == 0) return;
    std::vector<LineStore>& ring = editor.kill_ring;
    ring.push_back(text);
    if (ring.size() > kRingSize) ring.erase(ring.begin());
    editor.kill_ring_index = ring.size() - 1;
    editor.current_buffer->paste_text = text;
}

bool cut(TPUEditor& editor) {
    std::optional<Range> range = selection(editor);
    if (!range) return false;
    // What is put back when memory runs out comes first, and what is not comes last.
    editor.set_message("MOVE_TEXT SELECT_RANGE");
    Buffer& buffer = *editor.current_buffer;
    const LineStore text = buffer.lines_of_range(*range);
    buffer.erase_range(*range);
    buffer.select_anchor.reset();
    push_kill_ring(editor, text);
    return true;
}

bool copy(TPUEditor& editor) {
    std::optional<Range> range = selection(editor);
    if (!range) return false;
    editor.set_message("Copied SELECT_RANGE");
    push_kill_ring(editor, editor.current_buffer->lines_of_range(*range));
    return true;
}

void remove(TPUEditor& editor) {
    if (!editor.current_buffer->select_range()) return editor.set_message(kSelectFirst);
    cut(editor);
    editor.set_message("Removed selection to paste");
}

void erase(TPUEditor& editor) {
    Buffer& buffer = *editor.current_buffer;
    std::optional<Range> range = buffer.select_range();
    if (!range) return buffer.erase_character_at_cursor(editor.charset);
    push_kill_ring(editor, buffer.lines_of_range(*range));
    buffer.erase_range(*range);
    buffer.select_anchor.reset();
    editor.set_message("Deleted selection");
}

void paste(TPUEditor& editor) {
    Buffer& buffer = *editor.current_buffer;
    if (buffer.paste_text.bytes() == 0) return editor.set_message("Paste buffer empty");
    buffer.copy_lines(buffer.paste_text, editor.charset);
    editor.set_message("Pasted");
}

void paste_previous(TPUEditor& editor) {
    const std::vector<LineStore>& ring = editor.kill_ring;
    if (ring.empty()) return editor.set_message("Kill ring empty");
    std::size_t index = (editor.kill_ring_index == 0 ? ring.size() : editor.kill_ring_index) - 1;
    editor.set_message("Pasted previous");
    editor.current_buffer->copy_lines(ring[index], editor.charset);
    editor.kill_ring_index = index;
    editor.current_buffer->paste_text = ring[index];
}

void store_paste(TPUEditor& editor, const std::string& name) {
    std::string key = ascii::upper(name);
    if (key.empty()) return editor.set_message("STORE_PASTE needs a name");
    const LineStore& text = editor.named_pastes[key] = editor.current_buffer->paste_text;
    editor.set_message("Stored paste " + quoted(key) + " (" + std::to_string(text.bytes()) +
                       " chars)");
}

namespace {

// Makes the text kept under a name the buffer's paste text, and pastes it or not.
void recall(TPUEditor& editor, const std::string& name, bool insert) {
    std::string key = ascii::upper(name);
    auto found = editor.named_pastes.find(key);
    if (found == editor.named_pastes.end()) {
        return editor.set_message("No named paste " + quoted(key));
    }
    editor.set_message((insert ? "Pasted " : "Recalled paste ") + quoted(key));
    if (insert) editor.current_buffer->copy_lines(found->second, editor.charset);
    editor.current_buffer->paste_text = found->second;
}

}  // namespace

void recall_paste(TPUEditor& editor, const std::string& name) {
    recall(editor, name, false);
}

void insert_paste(TPUEditor& editor, const std::string& name) {
    recall(editor, name, true);
}

}  // namespace tpu::actions
