// The one way out for buffers and windows: nothing points at what is gone.
//
// What is deleted stays in memory until the outermost statement has ended, since
// values that are just being computed may still speak of it.
//
// The list of live arrays is the process's, so a session may come to know objects of
// another one through it: every session forgets what goes.
#include <algorithm>

#include "editor/editor.h"
#include "editor/input_mode.h"
#include "editor/process.h"
#include "editor/undo_step.h"
#include "value/array.h"

namespace tpu {

namespace {

bool speaks_of(const Value& value, const Buffer* buffer) {
    using Type = Value::Type;
    switch (value.type()) {
        case Type::buffer: return value.buffer() == buffer;
        case Type::marker: return value.marker() && value.marker()->buffer == buffer;
        case Type::range:
            return value.range() &&
                   (value.range()->start.buffer == buffer || value.range()->end.buffer == buffer);
        default: return false;
    }
}

// The sessions of the process.
std::vector<TPUEditor*>& sessions() {
    static auto* const list = new std::vector<TPUEditor*>;  // for ever: they may outlive main()
    return *list;
}

template <class Owned, class T>
bool move_over(std::vector<Owned>& from, std::vector<Owned>& to, const T* object) {
    auto place = std::find_if(from.begin(), from.end(),
                              [&](const Owned& owned) { return owned.get() == object; });
    if (place == from.end()) return false;
    to.push_back(std::move(*place));
    from.erase(place);
    return true;
}

// The buffer to go to when another goes: one that people use, if there is one.
Buffer* next_best(const TPUEditor& editor, const Buffer* gone) {
    Buffer* other = nullptr;
    for (const auto& buffer : editor.buffers) {
        if (buffer.get() == gone) continue;
        if (!buffer->system) return buffer.get();
        if (!other) other = buffer.get();
    }
    return other;
}

// Takes a session away from a buffer that goes, whoever it belongs to.
void leave_buffer(TPUEditor& editor, const Buffer* buffer) {
    if (editor.undo_step) editor.undo_step->forget(buffer);
    for (InputMode* mode = editor.input_mode; mode; mode = mode->beneath) mode->forget(*buffer);
    if (editor.current_buffer == buffer) editor.current_buffer = next_best(editor, buffer);
    for (const auto& window : editor.windows) {
        if (window->buffer != buffer) continue;
        window->buffer = editor.current_buffer;
        window->saved_valid = false;
    }
    for (const auto& process : editor.processes.running) {
        if (process->output == buffer) process->output = nullptr;
    }
}

void forget_buffer(TPUEditor& owner, const Buffer* buffer) {
    for (TPUEditor* editor : sessions()) leave_buffer(*editor, buffer);
    owner.forget_values([buffer](const Value& value) {
        std::shared_ptr<TPUProcess> process = process_of(value);
        if (process && process->output == buffer) process->output = nullptr;
        return speaks_of(value, buffer);
    });
}

void forget_window(TPUEditor& owner, const TPUWindow* window) {
    for (TPUEditor* editor : sessions()) {
        if (editor->current_window != window) continue;
        editor->current_window = editor->windows.empty() ? nullptr : editor->windows.front().get();
    }
    owner.forget_values([window](const Value& value) {
        return value.is(Value::Type::window) && value.window() == window;
    });
}

}  // namespace

void TPUEditor::forget_values(const std::function<bool(const Value&)>& gone) {
    auto sweep = [&](Value& value) {
        if (gone(value)) value = tpu_unspecified();
    };
    for (TPUEditor* editor : sessions()) editor->parser.symbols.for_each_value(sweep);
    tpu_array_visit_all([&](TPUArray& array) {
        array.for_each([&](const ArrayKey&, Value& value) { sweep(value); });
    });
}

void TPUEditor::join_sessions() {
    sessions().push_back(this);
}

void TPUEditor::leave_sessions() {
    std::erase(sessions(), this);
    // What this session knows goes with it; only others need to forget.
    if (sessions().empty()) return;
    for (const auto& buffer : buffers) forget_buffer(*this, buffer.get());
    for (const auto& window : windows) forget_window(*this, window.get());
}

bool TPUEditor::delete_buffer(Buffer* buffer) {
    auto is_other = [&](const auto& owned) { return owned.get() != buffer && !owned->system; };
    if (std::none_of(buffers.begin(), buffers.end(), is_other)) return false;
    // First what needs memory: a buffer that is half gone would do harm.
    if (current_buffer == buffer) position(next_best(*this, buffer));
    if (!move_over(buffers, deleted_buffers_, buffer)) return false;
    forget_buffer(*this, buffer);
    return true;
}

void TPUEditor::delete_window(TPUWindow* window) {
    if (!move_over(windows, deleted_windows_, window)) return;
    forget_window(*this, window);
}

void TPUEditor::free_deleted() {
    if (deleted_buffers_.empty() && deleted_windows_.empty()) return;
    forget_values([&](const Value& value) {
        for (const auto& buffer : deleted_buffers_) {
            if (speaks_of(value, buffer.get())) return true;
        }
        for (const auto& window : deleted_windows_) {
            if (value.is(Value::Type::window) && value.window() == window.get()) return true;
        }
        return false;
    });
    deleted_buffers_.clear();
    deleted_windows_.clear();
}

}  // namespace tpu
