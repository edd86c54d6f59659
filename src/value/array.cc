#include "value/array.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace tpu {

namespace {

constexpr long long kMostElements = 65535;  // of the static part

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
    static auto* const list = new ArrayList;  // for ever: sessions may outlive main()
    return *list;
}

bool is_first(std::string_view which) {
    return which == "FIRST" || which == "BRST";
}

}  // namespace

// A chain of arrays that hold each other may be longer than the stack is deep, so
// the elements of arrays that go with this one wait in a queue for their turn.
TPUArray::~TPUArray() {
    static std::vector<ArrayElements>* waiting = nullptr;
    if (elements_.size() == 0) return;
    if (waiting) {
        try {
            waiting->emplace_back();
        } catch (const std::bad_alloc&) {
            return;  // they go now, by calls that nest
        }
        waiting->back() = std::move(elements_);
        return;
    }
    std::vector<ArrayElements> queue;
    waiting = &queue;
    for (elements_ = {}; !queue.empty();) {
        ArrayElements next = std::move(queue.back());
        queue.pop_back();
    }
    waiting = nullptr;
}

const Value* TPUArray::find_text(const Value& index) const {
    std::string rendering;
    return elements_.find(ArrayKey::text_from(index, rendering));
}

void TPUArray::set_any(const Value& index, Value value) {
    if (deleted) return;
    auto set_under = [&](auto key, bool is_fixed) {
        if (!tpu_value_is_unspecified(value)) {
            elements_.set(key, std::move(value));
        } else if (is_fixed) {
            elements_.set(key, tpu_unspecified());
        } else {
            elements_.erase(key);
        }
    };
    std::string rendering;
    if (index.is(Value::Type::integer)) {
        set_under(index.integer(), is_static(index.integer()));
    } else {
        set_under(ArrayKey::text_from(index, rendering), false);
    }
}

Value TPUArray::walk(std::string_view which) {
    if (deleted) return tpu_unspecified();
    if (which == "HIGH_INDEX") return Value::make_int(static_high);
    if (which == "LOW_INDEX") return Value::make_int(static_low);
    if (which == "SIZE" || which == "LENGTH" || which == "RECORD_COUNT") {
        return Value::make_int(static_cast<long long>(size()));
    }
    if (size() == 0) return walk_to(std::nullopt);
    if (is_first(which)) return walk_to(elements_.first());
    if (which == "LAST") return walk_to(elements_.last());
    if (!walk_valid) return tpu_unspecified();
    if (which == "CURRENT") return walk_key.to_value();
    // Deliberate: a key that is gone ends the walk backwards but not forwards.
    bool is_there = elements_.contains(walk_key);
    if (which == "NEXT" && is_there) return walk_to(elements_.after(walk_key));
    if (which == "PREVIOUS") return walk_to(is_there ? elements_.before(walk_key) : std::nullopt);
    return tpu_unspecified();
}

// Goes on to a key, or ends the walk when there is none.
Value TPUArray::walk_to(std::optional<ArrayKey> key) {
    walk_valid = key.has_value();
    if (!walk_valid) return tpu_unspecified();
    walk_key = std::move(*key);
    return walk_key.to_value();
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
    for (long long i = 0; i <= last; ++i) array.set(make_int(low + i), tpu_unspecified());
    return value;
}

Value tpu_array_get(const std::shared_ptr<TPUArray>& array, const Value& index) {
    const Value* element = array ? array->find(index) : nullptr;
    return element ? *element : tpu_unspecified();
}

void tpu_array_set(const std::shared_ptr<TPUArray>& array, const Value& index, Value value) {
    if (array) array->set(index, std::move(value));
}

Value tpu_array_walk(const std::shared_ptr<TPUArray>& array, std::string_view which) {
    return array ? array->walk(which) : tpu_unspecified();
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

void tpu_array_visit_all(const std::function<void(TPUArray&)>& visit) {
    for (const auto& array : array_list().arrays) {
        if (auto held = array.lock()) visit(*held);
    }
}

namespace {

// Tells apart what variables and running code hold, directly or by way of other arrays.
class ReachableArrays {
  public:
    explicit ReachableArrays(const std::vector<std::shared_ptr<TPUArray>>& live) {
        for (const auto& array : live) count_holders(*array);
        for (const auto& array : live) {
            if (is_held_from_outside(array)) reach(array.get());
        }
        while (!to_visit_.empty()) {
            const TPUArray* array = to_visit_.back();
            to_visit_.pop_back();
            array->for_each([&](const ArrayKey&, const Value& value) {
                if (const TPUArray* element = value.array_here()) reach(element);
            });
        }
    }

    bool contains(const TPUArray* array) const { return reached_.contains(array); }

  private:
    // Values that were copied from each other share one hold on their array.
    struct Hold {
        std::size_t elements = 0;  // that are such values
        std::size_t values = 0;
    };

    void count_holders(const TPUArray& array) {
        array.for_each([&](const ArrayKey&, const Value& value) {
            const TPUArray* element = value.array_here();
            if (!element) return;
            Hold& hold = holds_[element][value.word().tail];
            ++hold.elements;
            hold.values = value.holders();
        });
    }

    bool is_held_from_outside(const std::shared_ptr<TPUArray>& array) {
        const auto& holds = holds_[array.get()];
        constexpr long kOurs = 1;
        if (array.use_count() - kOurs > static_cast<long>(holds.size())) return true;
        return std::any_of(holds.begin(), holds.end(), [](const auto& hold) {
            return hold.second.values > hold.second.elements;
        });
    }

    void reach(const TPUArray* array) {
        if (reached_.insert(array).second) to_visit_.push_back(array);
    }

    std::unordered_map<const TPUArray*, std::unordered_map<std::uint64_t, Hold>> holds_;
    std::unordered_set<const TPUArray*> reached_;
    std::vector<const TPUArray*> to_visit_;
};

}  // namespace

void tpu_array_free_cycles() noexcept try {
    const std::vector<std::shared_ptr<TPUArray>> live = tpu_array_list();
    if (live.empty()) return;
    const ReachableArrays reachable(live);
    std::vector<ArrayElements> gone;
    for (const auto& array : live) {
        if (!reachable.contains(array.get())) gone.push_back(array->take_elements());
    }
} catch (const std::bad_alloc&) {
    return;
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
