// Cutting, copying and pasting: the buffers' paste texts, the ring of what was
// cut or copied, and pastes with names.
//
// Deliberate: a paste text belongs to the buffer in which it was set. The ring and
// the names carry texts from one buffer to another.
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr std::size_t kRingSize = 32;

// The current buffer's selection; without one says so.
std::optional<Range> selection(TPUEditor& editor) {
    std::optional<Range> range;
    if (editor.current_buffer) range = editor.current_buffer->select_range();
    if (!range) editor.set_message("No SELECT_RANGE");
    return range;
}

std::string quoted(const std::string& name) {
    return '"' + name + '"';
}

}  // namespace

void TPUEditor::push_kill_ring(const LineStore& text) {
    if (text.bytes() == 0) return;
    kill_ring.push_back(text);
    if (kill_ring.size() > kRingSize) kill_ring.erase(kill_ring.begin());
    kill_ring_index = kill_ring.size() - 1;
    if (current_buffer) current_buffer->paste_text = text;
}

void TPUEditor::cut_selection() {
    std::optional<Range> range = selection(*this);
    if (!range) return;
    // What is put back when memory runs out comes first, and what is not comes last.
    set_message("MOVE_TEXT SELECT_RANGE");
    const LineStore text = current_buffer->lines_of_range(*range);
    current_buffer->erase_range(*range);
    current_buffer->select_anchor.reset();
    push_kill_ring(text);
}

void TPUEditor::copy_selection() {
    std::optional<Range> range = selection(*this);
    if (!range) return;
    set_message("Copied SELECT_RANGE");
    push_kill_ring(current_buffer->lines_of_range(*range));
}

void TPUEditor::paste() {
    if (!current_buffer) return;
    if (current_buffer->paste_text.bytes() == 0) {
        set_message("Paste buffer empty");
        return;
    }
    current_buffer->copy_lines(current_buffer->paste_text, charset);
    set_message("Pasted");
}

void TPUEditor::paste_previous() {
    if (!current_buffer) return;
    if (kill_ring.empty()) {
        set_message("Kill ring empty");
        return;
    }
    std::size_t index = (kill_ring_index == 0 ? kill_ring.size() : kill_ring_index) - 1;
    set_message("Pasted previous");
    current_buffer->copy_lines(kill_ring[index], charset);
    kill_ring_index = index;
    current_buffer->paste_text = kill_ring[index];
}

void TPUEditor::store_named_paste(const std::string& name) {
    std::string key = ascii::upper(name);
    if (key.empty()) {
        set_message("STORE_PASTE needs a name");
        return;
    }
    if (!current_buffer) return;
    const LineStore& text = named_pastes[key] = current_buffer->paste_text;
    set_message("Stored paste " + quoted(key) + " (" + std::to_string(text.bytes()) + " chars)");
}

void TPUEditor::recall_named_paste(const std::string& name, bool insert) {
    std::string key = ascii::upper(name);
    auto found = named_pastes.find(key);
    if (found == named_pastes.end()) {
        set_message("No named paste " + quoted(key));
        return;
    }
    if (!current_buffer) return;
    set_message((insert ? "Pasted " : "Recalled paste ") + quoted(key));
    if (insert) current_buffer->copy_lines(found->second, charset);
    current_buffer->paste_text = found->second;
}

}  // namespace tpu
