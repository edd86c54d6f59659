// Attributes of windows and places.
#include <algorithm>

#include "attributes/attribute.h"
#include "editor/editor.h"

namespace tpu {

namespace {

using Type = Value::Type;

// Of a place. A marker may be older than the text: its row may be gone.

bool beyond_end_of_line(const Marker& place) {
    const LineStore& lines = place.buffer->text();
    return place.row >= lines.size() || place.column > lines.length(place.row);
}

Value offset(const Subject& s) {
    const LineStore& lines = s.place.buffer->text();
    if (s.place.row >= lines.size()) return number_value(lines.bytes());
    return number_value(lines.row_start(s.place.row) +
                        std::min(s.place.column, lines.length(s.place.row)));
}

// Of a window.

Value shown_row(const Subject& s) {
    const Buffer* buffer = s.window->buffer;
    if (!buffer || buffer != s.place.buffer) return tpu_unspecified();
    auto last = static_cast<std::uint64_t>(s.window->text_rows()) - 1;
    bool is_marker = s.object.is(Type::marker);
    if (is_marker && (s.place.row < buffer->view_line || s.place.row > buffer->view_line + last)) {
        return tpu_unspecified();
    }
    // Drawing scrolls as far as the cursor needs.
    std::uint64_t below = s.place.row - std::min(s.place.row, buffer->view_line);
    return number_value(s.window->top + static_cast<int>(std::min(below, last)));
}

Value status_line(const Subject& s) {
    return s.window->has_status ? Value::make_str(s.window->status_format) : tpu_unspecified();
}

void switch_free_cursor(SetCall& call) {
    call.buffer.free_cursor = call.on();
    call.buffer.clamp_cursor();
}

void put_status_line(SetCall& call) {
    TPUWindow* window = window_of(call.value(0));
    if (!window) return;
    std::string word = call.word(1);
    if (word == "ON" || word == "TEXT") {
        window->has_status = true;
        window->status_format = call.text(2);
    } else if (word == "OFF" || word == "NONE") {
        window->has_status = false;
    } else {
        call.editor.set_message("SET(STATUS_LINE) needs ON, TEXT, OFF or NONE");
    }
}

// clang-format off
constexpr Attribute kRows[] = {
    {.of = Of::window, .items = {"TOP", "ORIGINAL_TOP", "VISIBLE_TOP"}, .get = [](const Subject& s) { return number_value(s.window->top); },
     .gives = "Its first row on the screen, counting from 0."},
    {.of = Of::window, .items = {"BOTTOM", "ORIGINAL_BOTTOM"}, .get = [](const Subject& s) { return number_value(s.window->top + s.window->height - 1); },
     .gives = "Its last row on the screen, the status line's if it has one."},
    {.of = Of::window, .items = {"VISIBLE_BOTTOM"}, .get = [](const Subject& s) { return number_value(s.window->top + s.window->text_rows() - 1); },
     .gives = "The last row on the screen in which it shows text."},
    {.of = Of::window, .items = {"HEIGHT"}, .get = [](const Subject& s) { return number_value(s.window->height); },
     .gives = "Its rows, the status line included."},
    {.of = Of::window, .items = {"VISIBLE_LENGTH"}, .get = [](const Subject& s) { return number_value(s.window->text_rows()); },
     .gives = "Its rows of text."},
    {.of = Of::window, .items = {"WIDTH"}, .get = [](const Subject& s) { return number_value(s.window->effective_width(s.editor.cols)); },
     .gives = "Its columns."},
    {.of = Of::window, .items = {"SCREEN_ROW"}, .get = shown_row,
     .gives = "The row on the screen of the cursor, or of a marker that it shows, counting from 0."},
    {.of = Of::window, .items = {"STATUS_LINE"}, .get = status_line,
     .gives = "The text of its status line as it was set, empty for the usual line; unspecified when it has none.",
     .keywords = {{{"STATUS_LINE", "Whether a window has a status line, and its text, in which %n, %f, %l and the like stand for the buffer's name, file, line; an empty text is the usual line."}}},
     .values = "window, ON or TEXT or OFF or NONE [, text]", .set = put_status_line},
    {.of = Of::window, .items = {"VISIBLE"}, .get = [](const Subject& s) { return number_value(s.window->visible && s.window->buffer); },
     .gives = "1 when it is drawn, 0 when it is hidden or shows no buffer."},

    {.of = Of::place, .items = {"COLUMN", "CURRENT_COLUMN"}, .get = [](const Subject& s) { return number_value(s.place.column + 1); },
     .gives = "Its column, counting from 1."},
    {.of = Of::place, .items = {"OFFSET_COLUMN"}, .get = [](const Subject& s) { return number_value(s.place.column + 1); },
     .gives = "The same: a tab character takes one column too."},
    {.of = Of::place, .items = {"ROW", "CURRENT_ROW"}, .get = [](const Subject& s) { return number_value(s.place.row + 1); },
     .gives = "Its line, counting from 1."},
    {.of = Of::place, .items = {"OFFSET"}, .get = offset,
     .gives = "The characters between the beginning of the buffer and it."},
    {.of = Of::place, .items = {"BOUND"}, .get = [](const Subject& s) { return number_value(!beyond_end_of_line(s.place)); },
     .gives = "1 on text or at the end of a line, else 0."},
    {.of = Of::place, .items = {"BEYOND_EOL"}, .get = [](const Subject& s) { return number_value(beyond_end_of_line(s.place)); },
     .gives = "1 past the end of the line, else 0."},
    {.of = Of::place, .items = {"BEFORE_BOL", "MIDDLE_OF_TAB"}, .get = [](const Subject&) { return number_value(0); },
     .gives = "0, since a place is never there."},
    {.of = Of::place, .items = {"FREE_CURSOR"}, .get = [](const Subject& s) { return number_value(s.place.free_cursor); },
     .gives = "1 when the cursor may stand past the end of its line, or the marker was made with FREE_CURSOR, else 0.",
     .keywords = {{{"FREE_CURSOR", "Whether the cursor can stand past the end of its line."}}},
     .values = "ON or OFF", .set = switch_free_cursor},
};
// clang-format on

}  // namespace

std::span<const Attribute> window_attributes() {
    return kRows;
}

}  // namespace tpu
