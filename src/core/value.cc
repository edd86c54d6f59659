#include "core/value.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "core/array.h"
#include "core/ascii.h"
#include "core/buffer.h"
#include "core/marker.h"
#include "editor/window.h"
#include "lang/stmt.h"
#include "pattern/pattern.h"
#include "proc/process.h"

namespace tpu {

namespace {

// True when `text` in upper case is `name`, which is in upper case.
bool spells(std::string_view text, std::string_view name) {
    return std::equal(text.begin(), text.end(), name.begin(), name.end(),
                      [](char a, char b) { return ascii::to_upper(a) == b; });
}

long long leading_integer(std::string_view text) {
    text = ascii::trim(text);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return 0;
    }
    long long integer = 0;  // from_chars leaves it alone when there is no number in range
    std::from_chars(text.data(), text.data() + text.size(), integer);
    return integer;
}

std::string rendering(const TPUWindow* window) {
    if (!window) return {};
    return window->buffer ? "<window:" + window->buffer->name + ">" : "<window>";
}

std::string rendering(const Range* range) {
    const Buffer* buffer = range ? range->buffer() : nullptr;
    return buffer ? buffer->text_of_range(*range) : std::string();
}

std::string rendering(const Marker* marker) {
    if (!marker || !marker->buffer) return {};
    return "<marker " + marker->buffer->name + ":" + std::to_string(marker->row + 1) + "," +
           std::to_string(marker->column + 1) + ">";
}

}  // namespace

const std::string Value::kNoText;

Value Value::make_pattern(TPUPattern pattern) {
    return {Type::pattern, std::make_shared<TPUPattern>(std::move(pattern))};
}

Value Value::make_range(Range range) {
    return {Type::range, std::make_shared<Range>(range)};
}

Value Value::make_marker(Marker marker) {
    return {Type::marker, std::make_shared<Marker>(marker)};
}

Value Value::make_array(std::shared_ptr<TPUArray> array) {
    return {Type::array, std::move(array)};
}

Value Value::make_program(std::shared_ptr<Program> program) {
    return {Type::program, std::move(program)};
}

Value Value::make_learn(std::shared_ptr<Learn> keys) {
    return {Type::learn, std::move(keys)};
}

Value Value::make_process(std::shared_ptr<TPUProcess> process) {
    return {Type::process, std::move(process)};
}

long long Value::as_int() const {
    return type_ == Type::string ? leading_integer(text_) : integer();
}

std::string Value::as_string() const {
    switch (type_) {
        case Type::integer: return std::to_string(integer());
        case Type::string:
        case Type::keyword: return text_;
        case Type::none: return {};
        case Type::range: return rendering(range().get());
        case Type::marker: return rendering(marker().get());
        case Type::buffer: return buffer() ? buffer()->name : std::string();
        case Type::window: return rendering(window());
        case Type::pattern:
        case Type::array:
        case Type::program:
        case Type::learn:
        case Type::process: return std::string("<").append(type_name(type_)).append(">");
    }
    return {};
}

bool Value::truthy() const {
    switch (type_) {
        case Type::integer: return integer() != 0;
        case Type::string: return !text_.empty();
        case Type::keyword: return spells(text_, "ON") || spells(text_, "TRUE");
        case Type::none: return false;
        case Type::pattern: return pattern() && !pattern()->tokens.empty();
        case Type::range: return range() && range()->valid;
        case Type::marker: return marker() && marker()->buffer;
        case Type::buffer: return buffer();
        case Type::window: return window();
        case Type::program: return program() && !program()->empty();
        case Type::learn: return learn() && !learn()->empty();
        case Type::array:
        case Type::process: return shared_ != nullptr;
    }
    return false;
}

Value tpu_unspecified() {
    return Value::make_kw("UNSPECIFIED");
}

bool tpu_value_is_unspecified(const Value& value) {
    if (value.is(Value::Type::none)) return true;
    return value.is(Value::Type::keyword) &&
           (spells(value.text(), "UNSPECIFIED") || spells(value.text(), "TPU$K_UNSPECIFIED"));
}

std::string_view type_name(Value::Type type) {
    static constexpr std::array<std::string_view, 13> kNames = {
        "integer", "string", "keyword", "none",    "pattern", "range",   "marker",
        "buffer",  "window", "array",   "program", "learn",   "process",
    };
    return kNames[static_cast<std::size_t>(type)];
}

}  // namespace tpu
