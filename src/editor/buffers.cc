// The buffers of the session.
#include <algorithm>

#include "editor/editor.h"
#include "editor/recovery.h"
#include "editor/undo_step.h"
#include "store/open_files.h"

namespace tpu {

Buffer* TPUEditor::create_buffer(const std::string& name, const std::string& file) {
    buffers.push_back(std::make_unique<Buffer>(name, file));
    Buffer* buffer = buffers.back().get();
    if (!current_buffer) current_buffer = buffer;
    return buffer;
}

Buffer* TPUEditor::find_buffer(const std::string& name) {
    for (const auto& buffer : buffers) {
        if (buffer->name == name) return buffer.get();
    }
    return nullptr;
}

std::string TPUEditor::unused_buffer_name(const std::string& name) {
    std::string unused = name;
    for (int n = 2; find_buffer(unused); ++n) {
        unused = name + "<" + std::to_string(n) + ">";
    }
    return unused;
}

bool TPUEditor::owns(const Buffer* buffer) const {
    return std::any_of(buffers.begin(), buffers.end(),
                       [&](const auto& owned) { return owned.get() == buffer; });
}

// What comes last stays on the message line.
void TPUEditor::tell_of_file(const Buffer& buffer, const std::string& trouble) {
    auto tell = [&](const std::string& news) {
        if (!news.empty()) set_message(news);
    };
    if (open_files) tell(open_files->news(buffer.file_name));
    if (recovery) tell(recovery->greeting(buffer));
    if (!trouble.empty()) fail("TPU$_OPENIN", trouble, buffer.file_trouble.text());
}

void TPUEditor::position(Buffer* buffer) {
    if (!buffer) return;
    current_buffer = buffer;
    if (undo_step) undo_step->watch_current_buffer();
}

namespace {

// Makes the buffer current that stands `step` places further on, round the end.
void cycle_buffers(TPUEditor& editor, std::size_t step) {
    auto& buffers = editor.buffers;
    if (buffers.empty()) return;
    auto current = std::find_if(buffers.begin(), buffers.end(), [&](const auto& buffer) {
        return buffer.get() == editor.current_buffer;
    });
    if (current == buffers.end()) {
        editor.current_buffer = buffers.front().get();
        return;
    }
    auto index = static_cast<std::size_t>(current - buffers.begin());
    editor.current_buffer = buffers[(index + step) % buffers.size()].get();
    editor.set_message("Buffer " + editor.current_buffer->name);
}

// The editor's own buffer of that name. One that a person made is left alone.
Buffer& own_buffer(TPUEditor& editor, const std::string& name) {
    for (const auto& buffer : editor.buffers) {
        if (buffer->system && buffer->name == name) return *buffer;
    }
    return *editor.create_buffer(name, "");
}

}  // namespace

void TPUEditor::next_buffer() {
    cycle_buffers(*this, 1);
}

void TPUEditor::previous_buffer() {
    cycle_buffers(*this, buffers.size() - 1);
}

void TPUEditor::open_show_buffer(const std::string& name, const std::string& text) {
    std::string_view lines = text;
    if (lines.ends_with('\n')) lines.remove_suffix(1);
    Buffer& buffer = own_buffer(*this, name);
    buffer.modifiable = true;
    buffer.set_text(LineStore::from_text(lines));
    buffer.cursor_row = buffer.cursor_column = buffer.view_line = 0;
    buffer.select_anchor.reset();
    buffer.video_regions.clear();
    buffer.modified = false;
    buffer.no_write = true;
    buffer.system = true;
    buffer.eob_text = "[End of " + name + "]";
    position(&buffer);
}

}  // namespace tpu
