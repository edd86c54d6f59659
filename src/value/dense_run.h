// Values under integer subscripts that follow one another: the part of an array
// that is found by arithmetic.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "value/value.h"

namespace tpu {

// One slot for each subscript from the lowest element to the highest. Elements
// between the two may be missing: a value of no type, which no element ever is,
// marks such a hole. Growing costs the same at both ends, since there may be free
// slots below the lowest element.
class DenseRun {
  public:
    bool empty() const { return slots_.empty(); }
    // Elements, holes not counted.
    std::size_t size() const { return size_; }
    // The lowest and the highest subscript; there must be an element.
    long long first() const { return key_of(head_); }
    long long last() const { return key_of(slots_.size() - 1); }

    // The element, or null. A pointer holds until the next insert, take or clear.
    const Value* find(long long key) const {
        std::size_t place = place_of(key);
        if (place >= slots_.size() || is_hole(place)) return nullptr;
        return &slots_[place];
    }
    Value* find(long long key) { return const_cast<Value*>(std::as_const(*this).find(key)); }

    // True when the subscript lies in the run or next to it, or the run is empty:
    // then insert can put a new element there.
    bool touches(long long key) const;
    void insert(long long key, Value&& value);
    // The same for the place behind the last element.
    bool ends_before(long long key) const {
        return place_of(key) == slots_.size() && !empty() && key > last();
    }
    void append(Value&& value) {
        if (in_gap(slots_.size())) gap_end_ = gap_begin_;
        slots_.push_back(std::move(value));
        ++size_;
    }
    // Removes the element, which must be there, and gives it.
    Value take(long long key);
    void clear();

    // The nearest element from a subscript on, itself included, upwards or
    // downwards. The subscript must lie between the lowest and the highest. The
    // last long hole that was passed is remembered, so that passing it again is cheap.
    long long at_or_after(long long key);
    long long at_or_before(long long key);

    // True when so few elements are left that a map would serve them better.
    bool mostly_holes() const { return slots_.size() - head_ > kFewHoles + 4 * size_; }

    // Calls visit(subscript, value) for each element, in ascending order.
    template <class Visit>
    void for_each(Visit&& visit) const {
        for (std::size_t place = head_; place < slots_.size(); ++place) {
            if (!is_hole(place)) visit(key_of(place), slots_[place]);
        }
    }
    template <class Visit>
    void for_each(Visit&& visit) {
        std::as_const(*this).for_each(
            [&](long long key, const Value& value) { visit(key, const_cast<Value&>(value)); });
    }

  private:
    static constexpr std::size_t kFewHoles = 16;

    // Unsigned, so that a subscript below the first slot gives a place that is too high.
    std::size_t place_of(long long key) const {
        return static_cast<std::size_t>(static_cast<unsigned long long>(key) - base_);
    }
    long long key_of(std::size_t place) const { return static_cast<long long>(base_ + place); }
    bool is_hole(std::size_t place) const { return slots_[place].is(Value::Type::none); }
    bool in_gap(std::size_t place) const { return gap_begin_ <= place && place < gap_end_; }

    void remember_gap(std::size_t begin, std::size_t end);
    void make_room_below();
    void trim();

    std::vector<Value> slots_;
    unsigned long long base_ = 0;  // the subscript of the first slot
    std::size_t head_ = 0;         // the place of the lowest element
    std::size_t size_ = 0;
    // Places that are known to hold no element.
    std::size_t gap_begin_ = 0;
    std::size_t gap_end_ = 0;
};

}  // namespace tpu
