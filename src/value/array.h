// Arrays of the language: elements under integer and string subscripts, and the
// walks by which the language visits the elements of one array and all arrays.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "value/array_elements.h"
#include "value/array_key.h"
#include "value/value.h"

namespace tpu {

struct TPUArray {
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
    bool is_static_key(const ArrayKey& key) const {
        return key.kind == ArrayKey::Kind::integer && is_static(key.integer);
    }

    // Elements, a deleted array's included.
    std::size_t size() const { return elements_.size(); }

    // The element under a subscript; null when the array is deleted or has no such
    // element. The pointer holds until the next store.
    const Value* find(const Value& index) const {
        if (deleted) return nullptr;
        return index.is(Value::Type::integer) ? elements_.find(index.integer()) : find_text(index);
    }

    // Stores an element. The unspecified value removes it, or resets it when the
    // subscript is a static one. A deleted array is left alone. What was there goes,
    // so the caller must hold the array by other means than an element of its own.
    void set(const Value& index, Value value) {
        bool is_plain = !value.is(Value::Type::none) && !value.is(Value::Type::keyword);
        if (is_plain && index.is(Value::Type::integer) && !deleted) {
            elements_.set(index.integer(), std::move(value));
        } else {
            set_any(index, std::move(value));
        }
    }

    // Calls visit(const ArrayKey&, value) for each element in the order of
    // subscripts. The visitor may put a value of any type but none in the place of a
    // mutable one, but not store into the array.
    template <class Visit>
    void for_each(Visit&& visit) const {
        elements_.for_each(visit);
    }
    template <class Visit>
    void for_each(Visit&& visit) {
        elements_.for_each(visit);
    }

    // The elements, taken out: they go when nobody walks over arrays any more.
    ArrayElements take_elements() { return std::exchange(elements_, ArrayElements()); }

    // See tpu_array_walk.
    Value walk(std::string_view which);

  private:
    bool is_static(long long key) const { return static_low <= key && key <= static_high; }
    const Value* find_text(const Value& index) const;
    void set_any(const Value& index, Value value);
    Value walk_to(std::optional<ArrayKey> key);

    ArrayElements elements_;
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
// Calls `visit` for each of them; it must make no arrays.
void tpu_array_visit_all(const std::function<void(TPUArray&)>& visit);

// Empties the arrays that nothing holds but themselves or each other, which are there for
// ever otherwise. Does without when there is no memory for it.
void tpu_array_free_cycles() noexcept;

// Does that at its end.
struct ArrayCycles {
    ArrayCycles() = default;
    ArrayCycles(const ArrayCycles&) = delete;
    ArrayCycles& operator=(const ArrayCycles&) = delete;
    ~ArrayCycles() { tpu_array_free_cycles(); }
};

// One step of the walk over the live arrays: FIRST (or BRST), LAST, CURRENT, NEXT,
// PREVIOUS. Gives the array, or the integer 0 when there is none there.
Value tpu_array_list_walk(std::string_view which);

}  // namespace tpu
