#include "core/array.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tpu {

namespace {

constexpr long long kMostElements = 65535;  // of the static part

using Entries = TPUArray::Entries;

// The live arrays, with the place of the walk over them.
struct ArrayList {
    std::vector<std::weak_ptr<TPUArray>> arrays;
    std::size_t prune_at = 64;  // size at which gone arrays are next looked for
    std::uint64_t position = 0;
    bool primed = false;

    // The array there, or 0. Pruning may have left the place behind the end.
    Value at(std::uint64_t place) {
        position = place;
        auto array = place < arrays.size() ? arrays[place].lock() : nullptr;
        return array ? Value::make_array(std::move(array)) : Value::make_int(0);
    }
};

ArrayList& array_list() {
    static ArrayList list;
    return list;
}

bool is_first(std::string_view which) {
    return which == "FIRST" || which == "BRST";
}

Value walk_to(TPUArray& array, Entries::const_iterator entry) {
    array.walk_key = entry->first;
    array.walk_valid = true;
    return array.walk_key.to_value();
}

Value end_walk(TPUArray& array) {
    array.walk_valid = false;
    return tpu_unspecified();
}

Value walk_next(TPUArray& array) {
    if (!array.walk_valid) return tpu_unspecified();
    auto entry = array.entries.find(array.walk_key);
    // Deliberate: a key that is gone does not end the walk, as it does backwards.
    if (entry == array.entries.end()) return tpu_unspecified();
    ++entry;
    return entry == array.entries.end() ? end_walk(array) : walk_to(array, entry);
}

Value walk_previous(TPUArray& array) {
    if (!array.walk_valid) return tpu_unspecified();
    auto entry = array.entries.find(array.walk_key);
    if (entry == array.entries.end() || entry == array.entries.begin()) return end_walk(array);
    return walk_to(array, std::prev(entry));
}

}  // namespace

ArrayKey ArrayKey::from_value(const Value& value) {
    if (value.is(Value::Type::integer)) return {Kind::integer, value.integer(), {}};
    ArrayKey key{Kind::string, 0, value.as_string()};
    if (key.text.empty()) key.text += '?';
    return key;
}

Value ArrayKey::to_value() const {
    return kind == Kind::integer ? Value::make_int(integer) : Value::make_str(text);
}

// A chain of arrays that hold each other may be longer than the stack is deep, so
// the elements of arrays that go with this one wait in a queue for their turn.
TPUArray::~TPUArray() {
    static std::vector<Entries>* waiting = nullptr;
    if (entries.empty()) return;
    if (waiting) {
        waiting->push_back(std::move(entries));
        return;
    }
    std::vector<Entries> queue;
    waiting = &queue;
    for (entries.clear(); !queue.empty();) {
        Entries next = std::move(queue.back());
        queue.pop_back();
        next.clear();
    }
    waiting = nullptr;
}

bool TPUArray::is_static_key(const ArrayKey& key) const {
    return key.kind == ArrayKey::Kind::integer && static_low <= key.integer &&
           key.integer <= static_high;
}

Value Value::make_array() {
    auto array = std::make_shared<TPUArray>();
    tpu_array_register(array);
    return make_array(std::move(array));
}

Value Value::make_array(long long count, long long low) {
    Value value = make_array();
    TPUArray& array = *value.array();
    // No subscript lies past the largest integer.
    long long past_low = std::numeric_limits<long long>::max() - std::max(low, 0LL);
    long long last = std::min(std::clamp(count, 1LL, kMostElements) - 1, past_low);
    array.static_low = low;
    array.static_high = low + last;
    for (long long i = 0; i <= last; ++i) {
        ArrayKey key{ArrayKey::Kind::integer, low + i, {}};
        array.entries.emplace_hint(array.entries.end(), std::move(key), tpu_unspecified());
    }
    return value;
}

Value tpu_array_get(const std::shared_ptr<TPUArray>& array, const Value& index) {
    if (!array || array->deleted) return tpu_unspecified();
    auto entry = array->entries.find(ArrayKey::from_value(index));
    return entry == array->entries.end() ? tpu_unspecified() : entry->second;
}

void tpu_array_set(const std::shared_ptr<TPUArray>& array, const Value& index, Value value) {
    if (!array || array->deleted) return;
    ArrayKey key = ArrayKey::from_value(index);
    if (!tpu_value_is_unspecified(value)) {
        array->entries.insert_or_assign(std::move(key), std::move(value));
    } else if (array->is_static_key(key)) {
        array->entries.insert_or_assign(std::move(key), tpu_unspecified());
    } else {
        array->entries.erase(key);
    }
}

Value tpu_array_walk(const std::shared_ptr<TPUArray>& array, std::string_view which) {
    if (!array || array->deleted) return tpu_unspecified();
    if (which == "HIGH_INDEX") return Value::make_int(array->static_high);
    if (which == "LOW_INDEX") return Value::make_int(array->static_low);
    if (which == "SIZE" || which == "LENGTH" || which == "RECORD_COUNT") {
        return Value::make_int(static_cast<long long>(array->entries.size()));
    }
    if (array->entries.empty()) return end_walk(*array);
    if (is_first(which)) return walk_to(*array, array->entries.begin());
    if (which == "LAST") return walk_to(*array, std::prev(array->entries.end()));
    if (which == "CURRENT" && array->walk_valid) return array->walk_key.to_value();
    if (which == "NEXT") return walk_next(*array);
    if (which == "PREVIOUS") return walk_previous(*array);
    return tpu_unspecified();
}

void tpu_array_register(const std::shared_ptr<TPUArray>& array) {
    if (!array) return;
    ArrayList& list = array_list();
    // Every walk prunes first, so that nobody sees when else it happens.
    if (list.arrays.size() >= list.prune_at) {
        tpu_array_prune();
        list.prune_at = std::max<std::size_t>(64, 2 * list.arrays.size());
    }
    list.arrays.push_back(array);
}

void tpu_array_prune() {
    std::erase_if(array_list().arrays, [](const auto& array) { return array.expired(); });
}

std::vector<std::shared_ptr<TPUArray>> tpu_array_list() {
    std::vector<std::shared_ptr<TPUArray>> live;
    for (const auto& array : array_list().arrays) {
        if (auto held = array.lock()) live.push_back(std::move(held));
    }
    return live;
}

// Deliberate: pruning may shift the array of the current place, which is not corrected.
Value tpu_array_list_walk(std::string_view which) {
    tpu_array_prune();
    ArrayList& list = array_list();
    std::uint64_t size = list.arrays.size();
    if (size == 0) {
        list.primed = false;
    } else if (is_first(which) || which == "LAST") {
        list.primed = true;
        return list.at(which == "LAST" ? size - 1 : 0);
    } else if (list.primed) {
        if (which == "CURRENT") return list.at(list.position);
        if (which == "NEXT" && list.position + 1 < size) return list.at(list.position + 1);
        if (which == "PREVIOUS" && list.position > 0) return list.at(list.position - 1);
    }
    return Value::make_int(0);
}

}  // namespace tpu
