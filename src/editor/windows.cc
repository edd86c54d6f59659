// The windows of the session.
#include <algorithm>

#include "editor/editor.h"
#include "editor/undo_step.h"

namespace tpu {

std::string TPUWindow::text() const {
    return buffer ? "<window:" + buffer->name + ">" : "<window>";
}

namespace {

auto find_window(std::vector<std::unique_ptr<TPUWindow>>& windows, const TPUWindow* window) {
    return std::find_if(windows.begin(), windows.end(),
                        [&](const auto& owned) { return owned.get() == window; });
}

}  // namespace

TPUWindow* TPUEditor::create_window(int top, int height, bool has_status) {
    windows.push_back(std::make_unique<TPUWindow>());
    TPUWindow* window = windows.back().get();
    window->top = top;
    window->height = std::max(1, height);
    window->has_status = has_status;
    if (!current_window) current_window = window;
    return window;
}

void TPUEditor::map_window(TPUWindow* window, Buffer* buffer) {
    if (window) window->buffer = buffer;
}

void TPUEditor::unmap_window(TPUWindow* window) {
    map_window(window, nullptr);
}

void TPUEditor::adjust_window(TPUWindow* window, int top_delta, int bottom_delta) {
    if (window) layout::adjust(*window, top_delta, bottom_delta, rows);
}

void TPUEditor::split_window_horizontal() {
    TPUWindow upper;
    if (!current_window || !layout::split_horizontal(*current_window, upper)) return;
    windows.push_back(std::make_unique<TPUWindow>(upper));
    std::stable_sort(windows.begin(), windows.end(),
                     [](const auto& a, const auto& b) { return a->top < b->top; });
    // Deliberate: a window higher up on the same buffer wins over the lower half.
    for (const auto& window : windows) {
        if (window->buffer == current_buffer && window->top != upper.top) {
            current_window = window.get();
            break;
        }
    }
}

void TPUEditor::split_window_vertical() {
    TPUWindow right;
    if (!current_window || !layout::split_vertical(*current_window, cols, right)) return;
    windows.push_back(std::make_unique<TPUWindow>(right));
}

void TPUEditor::next_window() {
    auto current = find_window(windows, current_window);
    if (windows.size() < 2 || current == windows.end()) return;
    if (++current == windows.end()) current = windows.begin();
    enter_window(current->get());
}

void TPUEditor::enter_window(TPUWindow* window) {
    save_window_cursor(current_window);
    current_window = window;
    if (!window->buffer) return;
    current_buffer = window->buffer;
    if (undo_step) undo_step->watch_current_buffer();
    restore_window_cursor(window);
}

void TPUEditor::save_window_cursor(TPUWindow* window) {
    if (!window || !window->buffer) return;
    window->saved_line = window->buffer->cursor_row;
    window->saved_column = window->buffer->cursor_column;
    window->saved_top_line = window->buffer->view_line;
    window->saved_valid = true;
}

void TPUEditor::restore_window_cursor(TPUWindow* window) {
    if (!window || !window->buffer || !window->saved_valid) return;
    window->buffer->cursor_row = window->saved_line;
    window->buffer->cursor_column = window->saved_column;
    window->buffer->view_line = window->saved_top_line;
    window->buffer->clamp_cursor();
}

Buffer* buffer_of(const Value& value) {
    switch (value.type()) {
        case Value::Type::buffer: return value.buffer();
        case Value::Type::window: return value.window() ? window_of(value)->buffer : nullptr;
        case Value::Type::marker: return value.marker() ? value.marker()->buffer : nullptr;
        case Value::Type::range: return value.range() ? value.range()->buffer() : nullptr;
        default: return nullptr;
    }
}

}  // namespace tpu
