#include "value/array.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <string>

#include "buffer/buffer.h"
#include "buffer/marker.h"

namespace tpu {
namespace {

using Array = std::shared_ptr<TPUArray>;

Value integer(long long value) {
    return Value::make_int(value);
}
Value text(const char* value) {
    return Value::make_str(value);
}

Array array_of(std::initializer_list<Value> subscripts) {
    Array array = Value::make_array().array();
    for (const Value& subscript : subscripts) tpu_array_set(array, subscript, integer(1));
    return array;
}

using Steps = std::initializer_list<const char*>;

// What the steps of a walk give, joined by blanks.
template <class Step>
std::string joined(Steps steps, Step step) {
    std::string results;
    for (const char* which : steps) {
        if (!results.empty()) results += ' ';
        results += step(which).as_string();
    }
    return results;
}

std::string walk(const Array& array, Steps steps) {
    return joined(steps, [&](const char* which) { return tpu_array_walk(array, which); });
}

// The same for the walk over all arrays, each shown as its element "n".
std::string walk_list(Steps steps) {
    return joined(steps, [](const char* which) {
        Value value = tpu_array_list_walk(which);
        return value.array() ? tpu_array_get(value.array(), text("n")) : value;
    });
}

Value numbered(long long n) {
    Value value = Value::make_array();
    tpu_array_set(value.array(), text("n"), integer(n));
    return value;
}

TEST(ArrayKey, all_but_integers_are_text_and_no_text_is_a_question_mark) {
    Buffer main("MAIN", "");
    Array array = array_of({});
    tpu_array_set(array, Value::make_kw("abc"), integer(1));
    tpu_array_set(array, text("ABC"), integer(2));
    tpu_array_set(array, text("1"), integer(3));
    tpu_array_set(array, integer(1), integer(4));
    tpu_array_set(array, Value::make_marker({&main, 0, 0}), integer(5));
    tpu_array_set(array, text(""), integer(6));
    EXPECT_EQ(array->size(), 6u);
    EXPECT_EQ(tpu_array_get(array, text("?")).as_int(), 6);
    EXPECT_EQ(tpu_array_get(array, text("abc")).as_int(), 1);
    EXPECT_EQ(tpu_array_get(array, text("1")).as_int(), 3);
    EXPECT_EQ(tpu_array_get(array, text("<marker MAIN:1,1>")).as_int(), 5);
    EXPECT_EQ(ArrayKey::from_value(Value::make_kw("abc")).to_value().type(), Value::Type::string);
}

TEST(Array, walk_is_in_the_order_of_keys) {
    Array array =
        array_of({text("b"), integer(10), text("B"), integer(2), text("a"), text("\xe4")});
    EXPECT_EQ(walk(array, {"FIRST", "NEXT", "NEXT", "NEXT", "NEXT", "NEXT"}), "2 10 B a b \xe4");
    EXPECT_EQ(walk(array, {"LAST", "PREVIOUS", "PREVIOUS", "CURRENT"}), "\xe4 b a a");
    EXPECT_EQ(walk(array, {"BRST", "SIZE", "CURRENT"}), "2 6 2");
}

TEST(Array, walk_ends_past_either_end) {
    Array array = array_of({integer(1), integer(2)});
    EXPECT_EQ(walk(array, {"CURRENT", "NEXT", "PREVIOUS"}), "UNSPECIFIED UNSPECIFIED UNSPECIFIED");
    EXPECT_EQ(walk(array, {"LAST", "NEXT", "CURRENT"}), "2 UNSPECIFIED UNSPECIFIED");
    EXPECT_EQ(walk(array, {"FIRST", "PREVIOUS", "NEXT"}), "1 UNSPECIFIED UNSPECIFIED");
    EXPECT_EQ(walk(array, {"FIRST", "first", "CURRENT"}), "1 UNSPECIFIED 1");
}

TEST(Array, walk_from_a_removed_key_goes_on_forwards_and_ends_backwards) {
    Array array = array_of({integer(1), integer(2), integer(3)});
    EXPECT_EQ(walk(array, {"FIRST", "NEXT"}), "1 2");
    tpu_array_set(array, integer(2), tpu_unspecified());
    EXPECT_EQ(walk(array, {"NEXT", "CURRENT"}), "UNSPECIFIED 2");
    tpu_array_set(array, integer(2), integer(1));
    EXPECT_EQ(walk(array, {"NEXT", "PREVIOUS"}), "3 2");
    tpu_array_set(array, integer(2), tpu_unspecified());
    EXPECT_EQ(walk(array, {"PREVIOUS", "CURRENT"}), "UNSPECIFIED UNSPECIFIED");
    tpu_array_set(array, integer(1), tpu_unspecified());
    EXPECT_EQ(walk(array, {"LAST"}), "3");
    tpu_array_set(array, integer(3), tpu_unspecified());
    EXPECT_EQ(walk(array, {"SIZE", "LOW_INDEX", "HIGH_INDEX", "NEXT"}), "0 1 0 UNSPECIFIED");
    tpu_array_set(array, integer(3), integer(1));
    EXPECT_EQ(walk(array, {"CURRENT"}), "UNSPECIFIED");
}

TEST(Array, static_elements_are_reset_and_others_removed) {
    Array array = Value::make_array(3, 0).array();
    EXPECT_EQ(walk(array, {"LOW_INDEX", "HIGH_INDEX", "SIZE"}), "0 2 3");
    tpu_array_set(array, integer(1), text("x"));
    tpu_array_set(array, integer(5), text("y"));
    EXPECT_EQ(walk(array, {"HIGH_INDEX", "LENGTH"}), "2 4");
    tpu_array_set(array, integer(1), Value());
    tpu_array_set(array, integer(5), tpu_unspecified());
    tpu_array_set(array, text("1"), tpu_unspecified());
    EXPECT_EQ(walk(array, {"RECORD_COUNT", "FIRST", "NEXT", "NEXT", "NEXT"}),
              "3 0 1 2 UNSPECIFIED");
    EXPECT_EQ(tpu_array_get(array, integer(1)).as_string(), "UNSPECIFIED");
}

TEST(Array, count_and_bounds_are_clamped) {
    EXPECT_EQ(walk(Value::make_array(0, -5).array(), {"LOW_INDEX", "HIGH_INDEX", "SIZE"}),
              "-5 -5 1");
    EXPECT_EQ(walk(Value::make_array(65536, 1).array(), {"SIZE", "LAST"}), "65535 65535");
    long long most = std::numeric_limits<long long>::max();
    EXPECT_EQ(walk(Value::make_array(9, most - 1).array(), {"SIZE", "LAST"}),
              "2 9223372036854775807");
    EXPECT_EQ(walk(Value::make_array(2, -most - 1).array(), {"LAST"}), "-9223372036854775807");
}

TEST(Array, deleted_or_absent_array_reads_as_empty) {
    Array array = array_of({integer(1)});
    array->deleted = true;
    for (const Array& gone : {array, Array()}) {
        tpu_array_set(gone, integer(2), integer(2));
        EXPECT_EQ(tpu_array_get(gone, integer(1)).as_string(), "UNSPECIFIED");
        EXPECT_EQ(walk(gone, {"FIRST", "SIZE"}), "UNSPECIFIED UNSPECIFIED");
    }
    EXPECT_EQ(array->size(), 1u);
}

TEST(Array, long_chain_of_arrays_is_let_go) {
    Value chain = Value::make_array();
    std::weak_ptr<TPUArray> innermost = chain.array();
    for (int i = 0; i < 200000; ++i) {
        Value outer = Value::make_array();
        tpu_array_set(outer.array(), integer(1), chain);
        chain = outer;
    }
    EXPECT_FALSE(innermost.expired());
    chain = Value();
    EXPECT_TRUE(innermost.expired());
}

TEST(Array, that_only_arrays_hold_is_let_go_with_its_session) {
    Value shared = Value::make_array();
    auto store = [](const Value& array, int key, const Value& value) {
        tpu_array_set(array.array(), integer(key), value);
    };
    {
        ArrayCycles session;
        Value itself = Value::make_array(), one = Value::make_array(), other = Value::make_array();
        store(itself, 1, itself);
        store(itself, 2, Value::make_array(itself.array()));  // another hold on it
        store(one, 1, other);
        store(other, 1, one);
        store(other, 2, Value::make_array());
        store(shared, 1, Value::make_array());
        store(*shared.array_here()->find(integer(1)), 1, shared);
        itself = one = other = Value();
        EXPECT_EQ(tpu_array_list().size(), 6u);
    }
    EXPECT_EQ(tpu_array_list().size(), 2u) << "what somebody holds, and what that holds";
    EXPECT_EQ(shared.array_here()->size(), 1u);
    shared.array_here()->deleted = true;
    shared = Value();
    tpu_array_free_cycles();
    EXPECT_TRUE(tpu_array_list().empty());
}

TEST(ArrayList, walks_in_order_of_creation_and_stays_at_the_ends) {
    ASSERT_EQ(walk_list({"FIRST"}), "0");
    Value a = numbered(1), b = numbered(2), c = numbered(3);
    EXPECT_EQ(walk_list({"CURRENT", "NEXT", "PREVIOUS"}), "0 0 0");
    EXPECT_EQ(walk_list({"FIRST", "PREVIOUS", "NEXT", "NEXT", "NEXT"}), "1 0 2 3 0");
    EXPECT_EQ(walk_list({"CURRENT", "PREVIOUS", "BRST", "LAST", "last"}), "3 2 1 3 0");
    EXPECT_EQ(tpu_array_list_walk("CURRENT").array(), c.array());
}

TEST(ArrayList, keeps_its_place_while_arrays_go) {
    ASSERT_EQ(walk_list({"FIRST"}), "0");
    Value a = numbered(1), b = numbered(2), c = numbered(3), d = numbered(4);
    EXPECT_EQ(walk_list({"FIRST", "NEXT"}), "1 2");
    a = Value();
    EXPECT_EQ(tpu_array_list().size(), 3u);
    EXPECT_EQ(walk_list({"CURRENT", "LAST"}), "3 4");
    b = c = Value();
    EXPECT_EQ(walk_list({"CURRENT", "PREVIOUS", "PREVIOUS"}), "0 0 4");
    d = Value();
    EXPECT_EQ(walk_list({"CURRENT"}), "0");
    a = numbered(5);
    EXPECT_EQ(walk_list({"CURRENT", "FIRST"}), "0 5");
}

}  // namespace
}  // namespace tpu
