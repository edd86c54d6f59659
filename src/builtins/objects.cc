// Making ranges and arrays.
#include <cstdlib>

#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "text/ascii.h"
#include "value/array.h"

namespace tpu::builtins {

namespace {

using Type = Value::Type;

std::optional<Marker> marker_of(const Value& value) {
    if (value.is(Type::marker) && value.marker()) return *value.marker();
    if (value.is(Type::range) && value.range() && value.range()->valid) return value.range()->start;
    return {};
}

Value create_range(Call& call) {
    std::optional<Marker> start = marker_of(call.args.value(0)),
                          end = marker_of(call.args.value(1));
    if (call.args.value(1).is(Type::range) && end) end = call.args.value(1).range()->end;
    if (!start || !end) return wrong_type(call, "two markers");
    Range range(*start, *end);
    if (!range.buffer()) return wrong_type(call, "two markers of one buffer");
    return Value::make_range(range);
}

// Changes the range itself: all values that share it see the new ends.
Value modify_range(Call& call) {
    const Value& value = call.args.value(0);
    if (!value.is(Type::range) || !value.range()) return wrong_type(call, "a range");
    std::optional<Marker> start = marker_of(call.args.value(1)),
                          end = marker_of(call.args.value(2));
    Range range = *value.range();
    bool all_markers = start && (end || call.args.count() < 3);
    if (!all_markers) return wrong_type(call, "markers");
    Range changed(start.value_or(range.start), end.value_or(range.end));
    if (!changed.buffer()) return wrong_type(call, "markers of one buffer");
    *value.range() = changed;
    return value;
}

Value create_array(Call& call) {
    if (call.args.count() == 0) return Value::make_array();
    long long low = call.args.count() > 1 ? call.args.number(1) : 1;
    return Value::make_array(call.args.number(0), low);
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "CREATE_RANGE", .function = create_range, .form = "CREATE_RANGE(marker, marker)",
     .help = "The range between two markers."},
    {.name = "MODIFY_RANGE", .function = modify_range, .form = "MODIFY_RANGE(range, marker [, marker])",
     .help = "Give a range another start, and another end."},
    {.name = "CREATE_ARRAY", .statement = [](Call&) {}, .function = create_array, .bare = true,
     .form = "CREATE_ARRAY[(count [, lowest])]",
     .help = "A new array, with that many elements from the lowest subscript on."},
};
// clang-format on

}  // namespace

std::span<const Builtin> objects() {
    return kRows;
}

}  // namespace tpu::builtins
