// Arrays of the language: elements under integer and string subscripts, and the
// walks by which the language visits the elements of one array and all arrays.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/value.h"

namespace tpu {

// A subscript. Integers come before strings; strings are in byte order.
struct ArrayKey {
    enum class Kind : std::int32_t { integer, string };

    Kind kind = Kind::integer;
    long long integer = 0;
    std::string text;

    // Integers make integer keys. Anything else makes a string key of its text or
    // rendering, case kept, so that a string and a keyword with the same letters
    // are one key; the empty text is the key "?".
    static ArrayKey from_value(const Value& value);
    // An integer or a string.
    Value to_value() const;

    // The part that the kind does not use is always at its default.
    friend std::strong_ordering operator<=>(const ArrayKey&, const ArrayKey&) = default;
};

struct TPUArray {
    using Entries = std::map<ArrayKey, Value>;

    Entries entries;
    // Integer subscripts that were made with the array: their elements can be reset
    // but not removed. high < low: there are none.
    long long static_low = 1;
    long long static_high = 0;
    // The walk over the elements. Its key may be one that is gone meanwhile.
    bool walk_valid = false;
    ArrayKey walk_key;
    bool deleted = false;  // reads as empty and ignores stores

    TPUArray() = default;
    TPUArray(const TPUArray&) = delete;
    TPUArray& operator=(const TPUArray&) = delete;
    ~TPUArray();

    bool has_static() const { return static_high >= static_low; }
    bool is_static_key(const ArrayKey& key) const;
};

// The element under a subscript; unspecified when the array is null or deleted or
// has no such element.
Value tpu_array_get(const std::shared_ptr<TPUArray>& array, const Value& index);

// Stores an element. The unspecified value removes it, or resets it when the
// subscript is a static one. A null or deleted array is left alone.
void tpu_array_set(const std::shared_ptr<TPUArray>& array, const Value& index, Value value);

// One step of the walk over the elements' subscripts, or a bound of the array.
// `which`, in upper case: FIRST (or BRST), LAST, CURRENT, NEXT, PREVIOUS give a
// subscript; HIGH_INDEX, LOW_INDEX, SIZE, LENGTH, RECORD_COUNT give an integer.
// Unspecified when there is nothing to give or the word is another one.
Value tpu_array_walk(const std::shared_ptr<TPUArray>& array, std::string_view which);

// The live arrays of the process, oldest first: makes an array known, and drops
// those that are gone.
void tpu_array_register(const std::shared_ptr<TPUArray>& array);
void tpu_array_prune();
std::vector<std::shared_ptr<TPUArray>> tpu_array_list();

// One step of the walk over the live arrays: FIRST (or BRST), LAST, CURRENT, NEXT,
// PREVIOUS. Gives the array, or the integer 0 when there is none there.
Value tpu_array_list_walk(std::string_view which);

}  // namespace tpu
