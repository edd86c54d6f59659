// Arrays against a plain map of all elements: the same random steps on both, with the
// contents, the order and the walk compared on the way.
#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>

#include "value/array.h"

namespace tpu {
namespace {

constexpr long long kLowest = std::numeric_limits<long long>::min();
constexpr long long kHighest = std::numeric_limits<long long>::max();

class Model {
  public:
    void set(const ArrayKey& key, const Value& value) {
        if (tpu_value_is_unspecified(value)) {
            elements_.erase(key);
        } else {
            elements_[key] = value;
        }
    }
    const Value* find(const ArrayKey& key) const {
        auto element = elements_.find(key);
        return element == elements_.end() ? nullptr : &element->second;
    }
    std::size_t size() const { return elements_.size(); }
    std::string text() const {
        std::string text;
        for (const auto& [key, value] : elements_) text += line(key, value);
        return text;
    }
    static std::string line(const ArrayKey& key, const Value& value) {
        return key.to_value().as_string() + "=" + value.as_string() + "\n";
    }

    Value walk(std::string_view which) {
        if (elements_.empty()) return at(elements_.end());
        if (which == "FIRST") return at(elements_.begin());
        if (which == "LAST") return at(std::prev(elements_.end()));
        if (!walking_) return tpu_unspecified();
        auto here = elements_.find(key_);
        bool is_gone = here == elements_.end();
        if (which == "NEXT") return is_gone ? tpu_unspecified() : at(std::next(here));
        bool at_first = here == elements_.begin();
        return at(is_gone || at_first ? elements_.end() : std::prev(here));
    }

  private:
    Value at(std::map<ArrayKey, Value>::iterator element) {
        walking_ = element != elements_.end();
        if (!walking_) return tpu_unspecified();
        key_ = element->first;
        return key_.to_value();
    }

    std::map<ArrayKey, Value> elements_;
    ArrayKey key_;
    bool walking_ = false;
};

// Takes the steps; a share of them, in percent, removes elements.
class Player {
  public:
    explicit Player(unsigned seed) : random_(seed) {}

    void play(int steps, int removals) {
        long long centre = subscript();
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            switch (below(8)) {
                case 0: store(text_key(), removals); break;
                case 1: walk(); break;
                case 2: sweep(centre, removals); break;
                case 3: centre = subscript(); break;
                default: store(Value::make_int(near(centre)), removals); break;
            }
            ASSERT_EQ(array_.size(), model_.size());
            if (i % 16 == 0) compare();
        }
        compare();
    }

  private:
    long long below(long long bound) {
        return std::uniform_int_distribution<long long>(0, bound - 1)(random_);
    }
    // A few regions that grow together, two of them at the ends of what there is.
    long long subscript() {
        switch (below(6)) {
            case 0: return kLowest + below(40);
            case 1: return kHighest - below(40);
            case 2: return 300 + below(300);
            default: return below(120) - 60;
        }
    }
    long long near(long long centre) {
        long long distance = below(9) - 4;
        if (distance < 0) return centre < kLowest - distance ? kLowest : centre + distance;
        return centre > kHighest - distance ? kHighest : centre + distance;
    }
    Value text_key() { return Value::make_str(std::string(1, "ab1\xe4"[below(4)])); }

    void store(const Value& index, int removals) {
        bool removes = below(100) < removals;
        Value value = removes ? Value() : Value::make_int(below(1000));
        array_.set(index, value);
        model_.set(ArrayKey::from_value(index), value);
        const Value* found = array_.find(index);
        ASSERT_EQ(found != nullptr, !removes);
        if (found) {
            ASSERT_EQ(found->integer(), value.integer());
        }
    }
    // Stores under neighbours in one direction.
    void sweep(long long start, int removals) {
        bool up = below(2) == 0;
        for (long long left = below(80); left > 0; --left) {
            store(Value::make_int(start), removals);
            if (start == (up ? kHighest : kLowest)) return;
            start += up ? 1 : -1;
        }
    }
    void walk() {
        const char* const starts[] = {"FIRST", "LAST", "NEXT", "PREVIOUS"};
        const char* which = starts[below(4)];
        for (long long left = below(200); left > 0; --left) {
            ASSERT_EQ(array_.walk(which).as_string(), model_.walk(which).as_string()) << which;
            which =
                starts[2 + (below(20) == 0 ? below(2) : which == starts[1] || which == starts[3])];
        }
    }
    void compare() {
        std::string text;
        array_.for_each(
            [&](const ArrayKey& key, Value& value) { text += Model::line(key, value); });
        ASSERT_EQ(text, model_.text());
        for (int i = 0; i < 20; ++i) {
            Value index = Value::make_int(subscript());
            const Value* found = array_.find(index);
            const Value* expected = model_.find(ArrayKey::from_value(index));
            ASSERT_EQ(found ? found->as_string() : "none",
                      expected ? expected->as_string() : "none");
        }
    }

    std::mt19937 random_;
    TPUArray array_;
    Model model_;
};

TEST(ArrayModel, random_steps_agree_with_a_map) {
    for (unsigned seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Player player(seed);
        for (int removals : {10, 60, 95, 30, 100, 5, 50, 85}) player.play(150, removals);
    }
}

// True when the elements lie one behind the other in memory.
bool is_dense(const TPUArray& array, long long low, long long high) {
    const Value* first = array.find(Value::make_int(low));
    for (long long i = 0; i <= high - low; ++i) {
        if (!first || array.find(Value::make_int(low + i)) != first + i) return false;
    }
    return true;
}

void fill(TPUArray& array, long long from, long long to) {
    long long step = from <= to ? 1 : -1;
    array.set(Value::make_int(from), Value::make_int(from));
    while (from != to) {
        from += step;
        array.set(Value::make_int(from), Value::make_int(from));
    }
}

TEST(ArrayDensity, neighbours_come_together_in_whatever_order_they_are_stored) {
    TPUArray up, down, joined, random, late;
    fill(up, -50, 49);
    EXPECT_TRUE(is_dense(up, -50, 49));
    fill(down, 49, -50);
    EXPECT_TRUE(is_dense(down, -50, 49));
    fill(joined, 1, 10);
    fill(joined, 30, 21);
    EXPECT_FALSE(is_dense(joined, 1, 30));
    fill(joined, 11, 20);
    EXPECT_TRUE(is_dense(joined, 1, 30));
    for (long long i = 0; i < 101; ++i) fill(random, i * 37 % 101, i * 37 % 101);
    EXPECT_TRUE(is_dense(random, 0, 100));
    fill(late, -7, -7);
    fill(late, 1, 1000);
    EXPECT_TRUE(is_dense(late, 1, 1000));
    EXPECT_EQ(late.size(), 1001u);
}

TEST(ArrayDensity, longest_run_is_the_dense_one) {
    TPUArray array;
    auto remove = [&](long long key) { array.set(Value::make_int(key), Value()); };
    for (long long i = 0; i < 101; ++i) fill(array, i * 37 % 101, i * 37 % 101);
    for (long long i = 2000; i < 2100; i += 2) fill(array, i, i);
    EXPECT_TRUE(is_dense(array, 0, 100));
    fill(array, 4001, 5000);
    EXPECT_TRUE(is_dense(array, 4001, 5000));
    for (long long i = 4002; i < 5000; ++i) remove(i);
    EXPECT_NE(array.find(Value::make_int(5000)), array.find(Value::make_int(4001)) + 999);
    EXPECT_EQ(array.size(), 153u);
    for (long long i = 0; i <= 5000; ++i) remove(i);
    EXPECT_EQ(array.size(), 0u);
    fill(array, -7, -7);
    fill(array, 1, 100);
    EXPECT_TRUE(is_dense(array, 1, 100));
}

int count_by_walk(TPUArray& array) {
    int count = 0;
    for (array.walk("FIRST"); array.walk_valid; array.walk("NEXT")) ++count;
    return count;
}

// A walk remembers the hole that it passed.
TEST(ArrayDensity, walk_finds_all_elements_when_a_hole_has_moved_or_was_filled) {
    TPUArray moved, filled;
    auto remove = [](TPUArray& array, long long from, long long to) {
        for (; from <= to; ++from) array.set(Value::make_int(from), Value());
    };
    fill(moved, 0, 159);
    remove(moved, 5, 29);
    EXPECT_EQ(count_by_walk(moved), 135);
    remove(moved, 0, 119);
    remove(moved, 125, 129);
    EXPECT_EQ(count_by_walk(moved), 35);
    fill(filled, 0, 99);
    remove(filled, 40, 69);
    EXPECT_EQ(count_by_walk(filled), 70);
    remove(filled, 70, 99);
    fill(filled, 40, 60);
    remove(filled, 50, 50);
    EXPECT_EQ(count_by_walk(filled), 60);
}

TEST(ArrayDensity, ends_of_the_range_of_integers_are_places_like_others) {
    TPUArray low, high;
    fill(low, kLowest + 20, kLowest);
    fill(low, kHighest, kHighest);
    EXPECT_TRUE(is_dense(low, kLowest, kLowest + 20));
    fill(high, kHighest - 20, kHighest - 1);
    fill(high, kHighest, kHighest);
    fill(high, kLowest, kLowest);
    EXPECT_TRUE(is_dense(high, kHighest - 20, kHighest));
    EXPECT_EQ(high.walk("FIRST").integer(), kLowest);
    EXPECT_EQ(low.walk("LAST").integer(), kHighest);
}

}  // namespace
}  // namespace tpu
