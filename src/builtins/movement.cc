// Moving the cursor and what is shown.
#include <cmath>
#include <locale>
#include <sstream>

#include "actions/actions.h"
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

void move_vertical(Call& call) {
    call.buffer().move_vertical(bounded(call.args.number(0)));
}

void move_horizontal(Call& call) {
    call.buffer().move_horizontal(bounded(call.args.number(0)));
}

// The place at an end of a buffer: the current one, or that of the argument.
Value place_at_end(Call& call, bool end) {
    Buffer* buffer = call.args.count() == 0 ? &call.buffer() : buffer_of(call.args.value(0));
    Marker marker{buffer, 0, 0};
    const Value& of = call.args.value(0);
    if (of.is(Value::Type::range) && buffer) {
        marker = end ? of.range()->end : of.range()->start;
    } else if (!buffer) {
        return wrong_type(call, "a buffer or a range");
    } else if (end) {
        marker.row = buffer->text().size() - 1;
        marker.column = buffer->text().length(marker.row);
    }
    return Value::make_marker(marker);
}

Value beginning_of(Call& call) {
    return place_at_end(call, false);
}

Value end_of(Call& call) {
    return place_at_end(call, true);
}

// A part of the screenful, written like .5
long long fraction_of_window(const TPUEditor& editor, const std::string& text) {
    int height = editor.current_window ? editor.current_window->height - 1 : editor.rows - 2;
    double part = 0;
    std::istringstream number(text);
    number.imbue(std::locale::classic());
    number >> part;
    double lines = part * height;
    return std::abs(lines) < 1e9 ? static_cast<long long>(lines) : 0;
}

void scroll(Call& call) {
    Args& args = call.args;
    Buffer* target = &call.buffer();
    if (args.count() >= 2) {
        const Value& where = args.value(0);
        bool names_one = where.is(Value::Type::window) || where.is(Value::Type::buffer);
        if (names_one && buffer_of(where)) target = buffer_of(where);
    }
    if (args.count() == 0) return;
    std::size_t last = args.count() - 1;
    long long lines = args.number(last);
    if (lines == 0) {
        std::string text =
            args.raw(last).starts_with('.') ? std::string(args.raw(last)) : args.text(last);
        if (text.starts_with('.')) lines = fraction_of_window(editor_of(call), text);
    }
    std::uint64_t& top = target->view_line;
    std::uint64_t up = lines < 0 ? 0 - static_cast<std::uint64_t>(lines) : 0;
    top = lines < 0 ? top - std::min(top, up) : top + static_cast<std::uint64_t>(lines);
    top = std::min(top, target->text().size() - 1);
}

void go_to(Call& call, const Marker& marker) {
    if (!marker.buffer) return;
    editor_of(call).position(marker.buffer);
    marker.buffer->position(marker);
}

void position(Call& call) {
    struct Place {
        std::string_view word;
        void (*go)(TPUEditor&);
    };
    constexpr auto go_to_beginning = actions::perform<&Buffer::beginning_of_buffer>;
    constexpr auto go_to_end = actions::perform<&Buffer::end_of_buffer>;
    constexpr Place kPlaces[] = {
        {"LINE_BEGIN", actions::go_to_line_begin},
        {"LINE_END", actions::go_to_line_end},
        {"BEGINNING_OF(CURRENT_BUFFER)", go_to_beginning},
        {"BEGINNING_OF (CURRENT_BUFFER)", go_to_beginning},
        {"END_OF(CURRENT_BUFFER)", go_to_end},
        {"END_OF (CURRENT_BUFFER)", go_to_end},
        {"BUFFER_BEGIN", go_to_beginning},
        {"BUFFER_END", go_to_end},
    };
    for (const Place& place : kPlaces) {
        if (ascii::upper(call.args.whole()) == place.word) return place.go(editor_of(call));
    }
    const Value& target = call.args.value(0);
    using Type = Value::Type;
    if (target.is(Type::marker) && target.marker()) {
        go_to(call, *target.marker());
    } else if (target.is(Type::range) && buffer_of(target)) {
        go_to(call, target.range()->start);
    } else if (target.is(Type::buffer)) {
        editor_of(call).position(target.buffer());
    } else if (window_of(target)) {
        editor_of(call).enter_window(window_of(target));
    } else if (target.is(Type::keyword)) {
        for (const Place& place : kPlaces) {
            if (target.text() == place.word) return place.go(editor_of(call));
        }
    }
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "MOVE_VERTICAL", .statement = move_vertical,
     .form = "MOVE_VERTICAL(lines)", .help = "Move the cursor down, or up by a negative number."},
    {.name = "MOVE_HORIZONTAL", .statement = move_horizontal,
     .form = "MOVE_HORIZONTAL(columns)", .help = "Move the cursor right, or left by a negative number."},
    {.name = "CURSOR_VERTICAL", .statement = move_vertical,
     .form = "CURSOR_VERTICAL(lines)", .help = "Move the cursor down, or up by a negative number."},
    {.name = "CURSOR_HORIZONTAL", .statement = move_horizontal,
     .form = "CURSOR_HORIZONTAL(columns)", .help = "Move the cursor right, or left by a negative number."},
    {.name = "SCROLL", .statement = scroll,
     .form = "SCROLL([window,] lines)",
     .help = "Move the first line shown; a fraction like .5 is a part of the window."},
    {.name = "POSITION", .statement = position,
     .form = "POSITION(place)",
     .help = "Go to a marker, the start of a range, a buffer, a window, or LINE_BEGIN and the like."},
    {.name = "BEGINNING_OF", .statement = does<&Buffer::beginning_of_buffer>, .function = beginning_of,
     .form = "BEGINNING_OF[(buffer or range)]",
     .help = "Go to the beginning of the buffer; as a function, the marker of a beginning."},
    {.name = "TOP", .statement = does<&Buffer::beginning_of_buffer>,
     .form = "TOP", .help = "Go to the beginning of the buffer."},
    {.name = "END_OF", .statement = does<&Buffer::end_of_buffer>, .function = end_of,
     .form = "END_OF[(buffer or range)]",
     .help = "Go to the end of the buffer; as a function, the marker of an end."},
    {.name = "BOTTOM", .statement = does<&Buffer::end_of_buffer>,
     .form = "BOTTOM", .help = "Go to the end of the buffer."},
};
// clang-format on

}  // namespace

std::span<const Builtin> movement() {
    return kRows;
}

}  // namespace tpu::builtins
