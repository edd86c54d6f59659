// The one way out for buffers and windows: nothing points at what is gone.
//
// What is deleted stays in memory until the outermost statement has ended, since
// values that are just being computed may still speak of it.
#include <algorithm>

#include "core/array.h"
#include "editor/editor.h"
#include "editor/undo_step.h"
#include "proc/process.h"

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

// Makes unspecified what `gone` is true of: variables and elements of arrays.
template <class Gone>
void sweep_values(TPUEditor& editor, Gone gone) {
    auto sweep = [&](Value& value) {
        if (gone(value)) value = tpu_unspecified();
    };
    editor.parser.symbols.for_each_value(sweep);
    for (const std::shared_ptr<TPUArray>& array : tpu_array_list()) {
        array->for_each([&](const ArrayKey&, Value& value) { sweep(value); });
    }
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

// The buffer to go to when the current one goes: one that people use, if there is one.
Buffer* next_best(const TPUEditor& editor) {
    for (const auto& buffer : editor.buffers) {
        if (!buffer->system) return buffer.get();
    }
    return editor.buffers.empty() ? nullptr : editor.buffers.front().get();
}

}  // namespace

void TPUEditor::forget_values(const std::function<bool(const Value&)>& gone) {
    sweep_values(*this, gone);
}

bool TPUEditor::delete_buffer(Buffer* buffer) {
    auto is_other = [&](const auto& owned) { return owned.get() != buffer && !owned->system; };
    if (std::none_of(buffers.begin(), buffers.end(), is_other)) return false;
    if (!move_over(buffers, deleted_buffers_, buffer)) return false;
    if (undo_step) undo_step->forget(buffer);
    if (current_buffer == buffer) position(next_best(*this));
    for (const auto& window : windows) {
        if (window->buffer != buffer) continue;
        window->buffer = current_buffer;
        window->saved_valid = false;
    }
    for (const auto& process : processes) {
        if (process->output == buffer) process->output = nullptr;
    }
    forget_values([&](const Value& value) {
        std::shared_ptr<TPUProcess> process = value.process();
        if (process && process->output == buffer) process->output = nullptr;
        return speaks_of(value, buffer);
    });
    return true;
}

void TPUEditor::delete_window(TPUWindow* window) {
    if (!move_over(windows, deleted_windows_, window)) return;
    if (current_window == window) {
        current_window = windows.empty() ? nullptr : windows.front().get();
    }
    forget_values([&](const Value& value) {
        return value.is(Value::Type::window) && value.window() == window;
    });
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
