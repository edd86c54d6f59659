// The subscripts of arrays.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "value/value.h"

namespace tpu {

// A subscript. Integers come before strings; strings are in byte order.
struct ArrayKey {
    enum class Kind : std::int32_t { integer, string };

    Kind kind = Kind::integer;
    long long integer = 0;
    std::string text;

    static ArrayKey of_integer(long long integer) { return {Kind::integer, integer, {}}; }
    static ArrayKey of_string(std::string_view text) {
        return {Kind::string, 0, std::string(text)};
    }
    // Integers make integer keys. Anything else makes a string key of its text or
    // rendering, case kept, so that a string and a keyword with the same letters
    // are one key; the empty text is the key "?".
    static ArrayKey from_value(const Value& value);
    // The text of the string key that a value makes. It lies in the value, or in
    // `rendering` when the value has no text of its own.
    static std::string_view text_from(const Value& value, std::string& rendering);
    // An integer or a string.
    Value to_value() const;

    // The part that the kind does not use is always at its default.
    friend std::strong_ordering operator<=>(const ArrayKey&, const ArrayKey&) = default;
};

}  // namespace tpu
