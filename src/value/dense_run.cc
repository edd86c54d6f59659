#include "value/dense_run.h"

#include <cassert>

namespace tpu {

bool DenseRun::touches(long long key) const {
    if (empty()) return true;
    if (key > last()) return key - 1 == last();
    if (key < first()) return key + 1 == first();
    return true;
}

void DenseRun::insert(long long key, Value&& value) {
    assert(touches(key) && !find(key) && !value.is(Value::Type::none));
    if (empty()) base_ = static_cast<unsigned long long>(key);
    if (empty() || key > last()) return append(std::move(value));
    if (key < first()) {
        if (head_ == 0) make_room_below();
        --head_;
    }
    std::size_t place = place_of(key);
    if (in_gap(place)) gap_end_ = gap_begin_;
    slots_[place] = std::move(value);
    ++size_;
}

Value DenseRun::take(long long key) {
    Value& slot = slots_[place_of(key)];
    Value taken = std::move(slot);
    slot = Value();
    --size_;
    trim();
    return taken;
}

void DenseRun::clear() {
    *this = DenseRun();
}

long long DenseRun::at_or_after(long long key) {
    std::size_t begin = place_of(key), place = begin;
    while (is_hole(place)) place = in_gap(place) ? gap_end_ : place + 1;
    remember_gap(begin, place);
    return key_of(place);
}

long long DenseRun::at_or_before(long long key) {
    std::size_t end = place_of(key) + 1, place = end - 1;
    while (is_hole(place)) place = (in_gap(place) ? gap_begin_ : place) - 1;
    remember_gap(place + 1, end);
    return key_of(place);
}

void DenseRun::remember_gap(std::size_t begin, std::size_t end) {
    if (end - begin <= kFewHoles) return;
    gap_begin_ = begin;
    gap_end_ = end;
}

// As many free slots as there are taken ones. It does no harm when some of them are
// for numbers below the lowest integer.
void DenseRun::make_room_below() {
    head_ = slots_.size();
    slots_.insert(slots_.begin(), head_, Value());
    base_ -= head_;
    gap_begin_ = gap_end_ = 0;
}

// Lets the run begin and end with an element again. Free slots below it must not
// pile up when elements are added above and removed below all the time.
void DenseRun::trim() {
    if (size_ == 0) return clear();
    while (is_hole(slots_.size() - 1)) slots_.pop_back();
    while (is_hole(head_)) ++head_;
    if (head_ <= kFewHoles + 2 * (slots_.size() - head_)) return;
    slots_.erase(slots_.begin(), slots_.begin() + static_cast<std::ptrdiff_t>(head_));
    base_ += head_;
    head_ = 0;
    gap_begin_ = gap_end_ = 0;
}

}  // namespace tpu
