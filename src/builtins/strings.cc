#include "builtins/strings.h"

#include <algorithm>
#include <string>
#include <utility>

#include "builtins/text_of.h"
#include "text/ascii.h"
#include "text/find_bytes.h"

namespace tpu::strings {

namespace {

Value count(std::size_t n) {
    return Value::make_int(static_cast<long long>(n));
}

Value as_string_value(const Value& value) {
    return value.is(Value::Type::string) ? value : Value::make_str(value.as_string());
}

// `text` with `map` applied to each of its characters.
template <class Map>
Value mapped(std::string_view text, Map map) {
    std::string result(text);
    for (char& c : result) c = map(c);
    return Value::make_str(std::move(result));
}

char invert(char c) {
    const char upper = ascii::to_upper(c);
    return c == upper ? ascii::to_lower(c) : upper;
}

}  // namespace

Value str(std::span<const Value> arguments) {
    return as_string_value(argument_at(arguments, 0));
}

Value integer(std::span<const Value> arguments) {
    return Value::make_int(argument_at(arguments, 0).as_int());
}

Value ascii_code(std::span<const Value> arguments) {
    const TextOf text(argument_at(arguments, 0));
    if (text.view().empty()) return Value::make_int(0);
    return Value::make_int(static_cast<unsigned char>(text.view().front()));
}

Value length(std::span<const Value> arguments) {
    return count(TextOf(argument_at(arguments, 0)).view().size());
}

Value index(std::span<const Value> arguments) {
    const TextOf text(argument_at(arguments, 0)), part(argument_at(arguments, 1));
    if (part.view().empty()) return count(1);
    return count(find_bytes(text, part) + 1);  // npos + 1 is 0
}

Value substr(std::span<const Value> arguments) {
    const TextOf text(argument_at(arguments, 0));
    const long long start = std::max(argument_at(arguments, 1).as_int(), 1LL);
    const long long most = std::max(argument_at(arguments, 2).as_int(), 0LL);
    const auto skip = std::min(static_cast<std::size_t>(start - 1), text.view().size());
    const auto part = text.view().substr(skip, static_cast<std::size_t>(most));
    return Value::make_str(std::string(part));
}

Value edit(std::span<const Value> arguments) {
    const Value& value = argument_at(arguments, 0);
    const std::string mode = ascii::upper(TextOf(argument_at(arguments, 1)));
    if (mode == "UPPER") return mapped(TextOf(value), ascii::to_upper);
    if (mode == "LOWER") return mapped(TextOf(value), ascii::to_lower);
    if (mode == "INVERT") return mapped(TextOf(value), invert);
    return as_string_value(value);
}

}  // namespace tpu::strings
