#include "value/array_elements.h"

#include <algorithm>
#include <iterator>

namespace tpu {

namespace {

// The first subscript and the length of the longest sequence of neighbours in a map.
struct Stretch {
    long long first = 0;
    std::size_t length = 0;
};

Stretch longest_stretch(const std::map<long long, Value>& sparse) {
    Stretch longest, stretch;
    long long previous = 0;
    for (const auto& [key, value] : sparse) {
        bool goes_on = stretch.length > 0 && key - 1 == previous;
        if (!goes_on) stretch = {key, 0};
        ++stretch.length;
        if (stretch.length > longest.length) longest = stretch;
        previous = key;
    }
    return longest;
}

}  // namespace

const Value* ArrayElements::find_sparse(long long key) const {
    auto element = sparse_.find(key);
    return element == sparse_.end() ? nullptr : &element->second;
}

const Value* ArrayElements::find(std::string_view key) const {
    auto element = strings_.find(key);
    return element == strings_.end() ? nullptr : &element->second;
}

void ArrayElements::set(std::string_view key, Value&& value) {
    auto element = strings_.lower_bound(key);
    if (element != strings_.end() && element->first == key) {
        element->second = std::move(value);
    } else {
        strings_.emplace_hint(element, key, std::move(value));
    }
}

// An element that the run does not hold yet.
void ArrayElements::insert(long long key, Value&& value) {
    if (!run_.touches(key)) return insert_sparse(key, std::move(value));
    if (run_.empty()) sparse_.erase(key);
    run_.insert(key, std::move(value));
    if (key == run_.last()) join_above();
    if (key == run_.first()) join_below();
}

void ArrayElements::insert_sparse(long long key, Value&& value) {
    bool is_new = sparse_.insert_or_assign(key, std::move(value)).second;
    if (!is_new) return;
    if (sparse_.size() == 1) look_at_ = kFewSparse;
    if (sparse_.size() >= look_at_) prefer_longest_run();
}

// Moves what follows the run in the map into the run.
void ArrayElements::join_above() {
    if (sparse_.empty() || sparse_.rbegin()->first < run_.last()) return;
    auto next = sparse_.upper_bound(run_.last());
    while (next != sparse_.end() && next->first - 1 == run_.last()) {
        run_.insert(next->first, std::move(next->second));
        next = sparse_.erase(next);
    }
}

void ArrayElements::join_below() {
    if (sparse_.empty() || sparse_.begin()->first > run_.first()) return;
    auto next = sparse_.lower_bound(run_.first());
    while (next != sparse_.begin() && std::prev(next)->first + 1 == run_.first()) {
        --next;
        run_.insert(next->first, std::move(next->second));
        next = sparse_.erase(next);
    }
}

// Moves the run into the map. What is set next begins another one.
void ArrayElements::scatter_run() {
    if (run_.empty()) return;
    auto above = sparse_.upper_bound(run_.last());
    run_.for_each(
        [&](long long key, Value& value) { sparse_.emplace_hint(above, key, std::move(value)); });
    run_.clear();
}

// Looking through the map costs little per element, since the map must double first.
void ArrayElements::prefer_longest_run() {
    Stretch longest = longest_stretch(sparse_);
    if (longest.length > run_.size()) {
        scatter_run();
        auto element = sparse_.find(longest.first);
        run_.insert(element->first, std::move(element->second));
        sparse_.erase(element);
        join_above();
    }
    look_at_ = std::max(kFewSparse, 2 * sparse_.size());
}

void ArrayElements::erase(long long key) {
    if (!run_.find(key)) {
        sparse_.erase(key);
        return;
    }
    Value erased = run_.take(key);  // goes when all is in order again
    if (run_.mostly_holes()) scatter_run();
}

void ArrayElements::erase(std::string_view key) {
    auto element = strings_.find(key);
    if (element != strings_.end()) strings_.erase(element);
}

std::optional<ArrayKey> ArrayElements::first() const {
    bool in_map = !sparse_.empty() && (run_.empty() || sparse_.begin()->first < run_.first());
    if (in_map) return ArrayKey::of_integer(sparse_.begin()->first);
    if (!run_.empty()) return ArrayKey::of_integer(run_.first());
    if (!strings_.empty()) return ArrayKey::of_string(strings_.begin()->first);
    return std::nullopt;
}

std::optional<ArrayKey> ArrayElements::last() const {
    return strings_.empty() ? last_integer() : ArrayKey::of_string(strings_.rbegin()->first);
}

std::optional<ArrayKey> ArrayElements::last_integer() const {
    bool in_map = !sparse_.empty() && (run_.empty() || sparse_.rbegin()->first > run_.last());
    if (in_map) return ArrayKey::of_integer(sparse_.rbegin()->first);
    if (!run_.empty()) return ArrayKey::of_integer(run_.last());
    return std::nullopt;
}

std::optional<ArrayKey> ArrayElements::after(const ArrayKey& key) {
    bool is_integer = key.kind == ArrayKey::Kind::integer;
    if (is_integer) {
        if (auto next = integer_after(key.integer)) return next;
    }
    auto next = is_integer ? strings_.begin() : strings_.upper_bound(key.text);
    return next == strings_.end() ? std::nullopt : std::optional(ArrayKey::of_string(next->first));
}

std::optional<ArrayKey> ArrayElements::before(const ArrayKey& key) {
    if (key.kind == ArrayKey::Kind::integer) return integer_before(key.integer);
    auto next = strings_.lower_bound(key.text);
    return next == strings_.begin() ? last_integer() : ArrayKey::of_string(std::prev(next)->first);
}

std::optional<ArrayKey> ArrayElements::integer_after(long long key) {
    std::optional<ArrayKey> next;
    auto element = sparse_.upper_bound(key);
    if (element != sparse_.end()) next = ArrayKey::of_integer(element->first);
    if (run_.empty() || key >= run_.last() || (next && next->integer < run_.first())) return next;
    return ArrayKey::of_integer(run_.at_or_after(std::max(key + 1, run_.first())));
}

std::optional<ArrayKey> ArrayElements::integer_before(long long key) {
    std::optional<ArrayKey> previous;
    auto element = sparse_.lower_bound(key);
    if (element != sparse_.begin()) previous = ArrayKey::of_integer(std::prev(element)->first);
    if (run_.empty() || key <= run_.first() || (previous && previous->integer > run_.last())) {
        return previous;
    }
    return ArrayKey::of_integer(run_.at_or_before(std::min(key - 1, run_.last())));
}

}  // namespace tpu
