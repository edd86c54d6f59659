// Windows: making, mapping, splitting, adjusting and deleting them.
#include "editor/editor.h"
#include "lang/builtins/common.h"
#include "lang/builtins/families.h"

namespace tpu::builtins {

namespace {

using Type = Value::Type;

// The window that an argument is, else null with an error recorded.
TPUWindow* window_argument(Call& call, std::size_t i) {
    const Value& value = call.args.value(i);
    if (value.is(Type::window) && value.window()) return value.window();
    wrong_type(call, "a window");
    return nullptr;
}

// CREATE_WINDOW(top, height [, ON or OFF])
Value create_window(Call& call) {
    if (call.args.count() < 2) return wrong_type(call, "a top row and a height");
    TPUEditor& editor = call.editor;
    int rows = std::max(editor.rows - 2, 1);
    int top = std::clamp(bounded(call.args.number(0)), 0, rows - 1);
    int height = std::clamp(bounded(call.args.number(1)), 1, rows - top);
    TPUWindow* window = editor.create_window(top, height, call.args.on(2, true));
    return Value::make_window(window);
}

void map(Call& call) {
    TPUWindow* window = window_argument(call, 0);
    if (!window) return;
    Buffer* buffer = call.args.value(1).buffer();
    if (!buffer) {
        wrong_type(call, "a buffer");
        return;
    }
    call.editor.map_window(window, buffer);
    if (window == call.editor.current_window) call.editor.position(buffer);
}

void unmap(Call& call) {
    if (TPUWindow* window = window_argument(call, 0)) call.editor.unmap_window(window);
}

void adjust_window(Call& call) {
    TPUWindow* window = window_argument(call, 0);
    if (!window) return;
    call.editor.adjust_window(window, bounded(call.args.number(1)), bounded(call.args.number(2)));
}

void delete_window(Call& call) {
    TPUWindow* window =
        call.args.count() == 0 ? call.editor.current_window : window_argument(call, 0);
    if (!window) return;
    if (call.editor.windows.size() == 1) {
        return call.editor.set_message("The last window cannot be deleted");
    }
    call.editor.delete_window(window);
    TPUWindow* left = call.editor.current_window;
    if (left && left->buffer) call.editor.position(left->buffer);
}

void locate_mouse(Call& call) {
    call.editor.set_message("Mouse: row=" + std::to_string(call.editor.mouse_row) +
                            " col=" + std::to_string(call.editor.mouse_column));
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "CREATE_WINDOW", .function = create_window, .least = 2, .most = 3,
     .form = "CREATE_WINDOW(top, height [, status ON or OFF])",
     .help = "A new window from a row on, the screen's first being 0; its height counts the status line."},
    {.name = "MAP", .statement = map, .least = 2, .most = 2, .form = "MAP(window, buffer)",
     .help = "Let a window show a buffer."},
    {.name = "UNMAP", .statement = unmap, .least = 1, .most = 1, .form = "UNMAP(window)",
     .help = "Let a window show nothing."},
    {.name = "ADJUST_WINDOW", .statement = adjust_window, .least = 3, .most = 3,
     .form = "ADJUST_WINDOW(window, top, bottom)", .help = "Move the top and the bottom of a window by so many rows."},
    {.name = "SPLIT_WINDOW", .statement = [](Call& c) { c.editor.split_window_horizontal(); },
     .form = "SPLIT_WINDOW", .help = "Split the current window into two, one above the other."},
    {.name = "SPLIT_WINDOW_VERTICAL", .statement = [](Call& c) { c.editor.split_window_vertical(); },
     .form = "SPLIT_WINDOW_VERTICAL", .help = "Split the current window into two, side by side."},
    {.name = "NEXT_WINDOW", .statement = [](Call& c) { c.editor.next_window(); },
     .form = "NEXT_WINDOW", .help = "Go to the next window."},
    {.name = "DELETE_WINDOW", .statement = delete_window, .most = 1, .form = "DELETE_WINDOW[(window)]",
     .help = "Delete a window, or the current one."},
    {.name = "LOCATE_MOUSE", .statement = locate_mouse, .form = "LOCATE_MOUSE",
     .help = "Show where the mouse was clicked last."},
};
// clang-format on

}  // namespace

std::span<const Builtin> windows() {
    return kRows;
}

}  // namespace tpu::builtins
