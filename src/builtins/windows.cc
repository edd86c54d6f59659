// Windows: making, mapping, splitting, adjusting and deleting them.
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"

namespace tpu::builtins {

namespace {

using Type = Value::Type;

// The window that an argument is, else null with an error recorded.
TPUWindow* window_argument(Call& call, std::size_t i) {
    const Value& value = call.args.value(i);
    if (TPUWindow* window = window_of(value)) return window;
    wrong_type(call, "a window");
    return nullptr;
}

// Rows of the screen, or past its end; few enough to be added up.
int rows_argument(Call& call, std::size_t i) {
    constexpr long long kMost = layout::kFarthestRow;
    return static_cast<int>(std::clamp(call.args.number(i), -kMost, kMost));
}

// CREATE_WINDOW(top, height [, ON or OFF])
Value create_window(Call& call) {
    if (call.args.count() < 2) return wrong_type(call, "a top row and a height");
    int top = rows_argument(call, 0), height = rows_argument(call, 1);
    return window_value(editor_of(call).create_window(top, height, call.args.on(2, true)));
}

void map(Call& call) {
    TPUWindow* window = window_argument(call, 0);
    if (!window) return;
    Buffer* buffer = call.args.value(1).buffer();
    if (!buffer) {
        wrong_type(call, "a buffer");
        return;
    }
    editor_of(call).map_window(window, buffer);
}

void unmap(Call& call) {
    if (TPUWindow* window = window_argument(call, 0)) editor_of(call).unmap_window(window);
}

void adjust_window(Call& call) {
    TPUWindow* window = window_argument(call, 0);
    if (!window) return;
    editor_of(call).adjust_window(window, rows_argument(call, 1), rows_argument(call, 2));
}

void delete_window(Call& call) {
    TPUWindow* window =
        call.args.count() == 0 ? editor_of(call).current_window : window_argument(call, 0);
    if (window) editor_of(call).delete_window(window);
}

void locate_mouse(Call& call) {
    editor_of(call).set_message("Mouse: row=" + std::to_string(editor_of(call).mouse_row) +
                                " col=" + std::to_string(editor_of(call).mouse_column));
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "CREATE_WINDOW", .function = create_window,
     .form = "CREATE_WINDOW(top, height [, status ON or OFF])",
     .help = "A new window from a row on, the screen's first being 0; its height counts the status line."},
    {.name = "MAP", .statement = map, .form = "MAP(window, buffer)",
     .help = "Let a window show a buffer; the current one shows the current buffer again when the screen is drawn."},
    {.name = "UNMAP", .statement = unmap, .form = "UNMAP(window)",
     .help = "Let a window show nothing; the current one shows the current buffer when the screen is drawn."},
    {.name = "ADJUST_WINDOW", .statement = adjust_window,
     .form = "ADJUST_WINDOW(window, top, bottom)", .help = "Move the top and the bottom of a window by so many rows."},
    {.name = "SPLIT_WINDOW", .statement = does<&TPUEditor::split_window_horizontal>,
     .form = "SPLIT_WINDOW", .help = "Split the current window into two, one above the other."},
    {.name = "SPLIT_WINDOW_VERTICAL", .statement = does<&TPUEditor::split_window_vertical>,
     .form = "SPLIT_WINDOW_VERTICAL", .help = "Split the current window into two, side by side."},
    {.name = "NEXT_WINDOW", .statement = does<&TPUEditor::next_window>,
     .form = "NEXT_WINDOW", .help = "Go to the next window."},
    {.name = "DELETE_WINDOW", .statement = delete_window, .form = "DELETE_WINDOW[(window)]",
     .help = "Delete a window, or the current one; when none is left, a new one fills the screen."},
    {.name = "LOCATE_MOUSE", .statement = locate_mouse, .form = "LOCATE_MOUSE",
     .help = "Show where the mouse was clicked last."},
};
// clang-format on

}  // namespace

std::span<const Builtin> windows() {
    return kRows;
}

}  // namespace tpu::builtins
