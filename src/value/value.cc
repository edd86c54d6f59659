#include "value/value.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "buffer/buffer.h"
#include "buffer/marker.h"
#include "text/ascii.h"
#include "value/array.h"

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

std::string rendering(const Range* range) {
    const Buffer* buffer = range ? range->buffer() : nullptr;
    return buffer ? buffer->text_of_range(*range) : std::string();
}

std::string rendering(const Marker* marker) {
    if (!marker || !marker->buffer) return {};
    return "<marker " + marker->buffer->name + ":" + std::to_string(marker->row + 1) + "," +
           std::to_string(marker->column + 1) + ">";
}

std::string rendering(Value::Type type, const Object* object) {
    std::string text = object ? object->text() : std::string();
    return text.empty() ? "<" + std::string(type_name(type)) + ">" : text;
}

}  // namespace

void Value::hold_text(Type type, std::size_t size, std::size_t capacity) {
    word_ = {static_cast<std::uint64_t>(type), 0};
    if (capacity <= kShortest) {
        word_.head |= size << 16;
        return;
    }
    auto* text = static_cast<LongText*>(::operator new(sizeof(LongText) + capacity));
    *text = {1, size, capacity};
    word_.head |= std::uint64_t{kText} << 8;
    word_.tail = reinterpret_cast<std::uintptr_t>(text);
}

Value::Value(Type type, std::string_view text) {
    hold_text(type, text.size(), text.size());
    std::copy(text.begin(), text.end(), text_bytes());
}

Value::Value(Type type, std::shared_ptr<void> object)
    : Value(type, new Held{1, std::move(object)}) {
    word_.head |= std::uint64_t{kHeld} << 8;
}

void Value::free_payload() {
    if (counted() == kText) {
        ::operator delete(long_text());
    } else {
        delete held();
    }
}

Value Value::make_joined(std::string_view first, std::string_view second) {
    Value joined(Word{});
    joined.hold_text(Type::string, first.size() + second.size(), first.size() + second.size());
    char* end = std::copy(first.begin(), first.end(), joined.text_bytes());
    std::copy(second.begin(), second.end(), end);
    return joined;
}

void Value::append(std::string_view text) {
    std::size_t size = this->text().size(), longer = size + text.size();
    bool ours = counted() == kText ? long_text()->count == 1 && longer <= long_text()->capacity
                                   : longer <= kShortest;
    if (!ours) {
        Value grown(Word{});
        // Room to grow, so that a text built piece by piece is not copied each time.
        grown.hold_text(type(), longer, longer + longer / 2);
        std::copy_n(this->text().data(), size, grown.text_bytes());
        std::copy(text.begin(), text.end(), grown.text_bytes() + size);
        *this = std::move(grown);
        return;
    }
    std::copy(text.begin(), text.end(), text_bytes() + size);
    if (counted() == kText) {
        long_text()->size = longer;
    } else {
        word_.head = (word_.head & ~std::uint64_t{0xff0000}) | longer << 16;
    }
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

Value Value::make_object(Type type, std::shared_ptr<Object> object) {
    return {type, std::shared_ptr<void>(std::move(object))};
}

long long Value::number_in_text() const {
    return leading_integer(text());
}

std::string Value::as_string() const {
    switch (type()) {
        case Type::integer: return std::to_string(integer());
        case Type::string:
        case Type::keyword: return std::string(text());
        case Type::none: return {};
        case Type::range: return rendering(range().get());
        case Type::marker: return rendering(marker().get());
        case Type::buffer: return buffer() ? buffer()->name : std::string();
        case Type::window: return window() ? rendering(type(), window()) : std::string();
        case Type::array: return rendering(type(), nullptr);
        case Type::pattern:
        case Type::program:
        case Type::learn:
        case Type::process: return rendering(type(), shared<Object>(type()).get());
    }
    return {};
}

bool Value::is_there() const {
    switch (type()) {
        case Type::integer: return integer() != 0;
        case Type::string: return !text().empty();
        case Type::keyword: return spells(text(), "ON") || spells(text(), "TRUE");
        case Type::none: return false;
        case Type::range: return range() && range()->valid;
        case Type::marker: return marker() && marker()->buffer;
        case Type::buffer: return buffer();
        case Type::window: return window();
        case Type::array: return held()->object != nullptr;
        case Type::pattern:
        case Type::program:
        case Type::learn:
        case Type::process: {
            const auto object = shared<Object>(type());
            return object && object->truth();
        }
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
