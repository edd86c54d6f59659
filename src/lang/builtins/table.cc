#include "lang/builtins/table.h"

#include "editor/editor.h"

namespace tpu {

namespace {

Buffer& buffer(TPUEditor& editor) {
    return *editor.current_buffer;
}

void undo(TPUEditor& editor) {
    editor.set_message(buffer(editor).undo() ? "Undone" : "Nothing to undo");
}

void redo(TPUEditor& editor) {
    editor.set_message(buffer(editor).redo() ? "Redone" : "Nothing to redo");
}

// Statements without arguments. They need a current buffer, which a session has
// from its first moment.
// clang-format off
constexpr Builtin kBuiltins[] = {
    {"SPLIT_LINE", [](TPUEditor& e) { buffer(e).split_line(); },
     "Split the line at the cursor."},
    {"APPEND_LINE", [](TPUEditor& e) { buffer(e).append_line(); },
     "Append the cursor line to the line above."},
    {"ERASE_LINE", [](TPUEditor& e) { buffer(e).erase_line(); },
     "Remove the cursor line."},
    {"SELECT", [](TPUEditor& e) { buffer(e).select(); },
     "Begin a selection at the cursor."},
    {"MOVE_TEXT", [](TPUEditor& e) { e.cut_selection(); },
     "Move the selection to the paste register."},
    {"BEGINNING_OF", [](TPUEditor& e) { buffer(e).beginning_of_buffer(); },
     "Move the cursor to the beginning of the buffer."},
    {"TOP", [](TPUEditor& e) { buffer(e).beginning_of_buffer(); },
     "Move the cursor to the beginning of the buffer."},
    {"END_OF", [](TPUEditor& e) { buffer(e).end_of_buffer(); },
     "Move the cursor to the end of the buffer."},
    {"BOTTOM", [](TPUEditor& e) { buffer(e).end_of_buffer(); },
     "Move the cursor to the end of the buffer."},
    {"REFRESH", [](TPUEditor& e) { e.draw(); },
     "Draw the screen."},
    {"UPDATE", [](TPUEditor& e) { e.draw(); },
     "Draw the screen."},
    {"UNDO", undo,
     "Undo the last change."},
    {"REDO", redo,
     "Make the change again that was undone last."},
};
// clang-format on

}  // namespace

const Builtin* find_builtin(std::string_view name) {
    for (const Builtin& row : kBuiltins) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

}  // namespace tpu
