#include "value/array.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace tpu {
namespace {

using Array = std::shared_ptr<TPUArray>;

Value integer(long long value) {
    return Value::make_int(value);
}
Value text(const char* value) {
    return Value::make_str(value);
}

using Steps = std::initializer_list<const char*>;

// What the steps of the walk over all arrays give, each shown as its element "n".
std::string walk_list(Steps steps) {
    std::string results;
    for (const char* which : steps) {
        Value value = tpu_array_list_walk(which);
        if (!results.empty()) results += ' ';
        results += (value.array() ? tpu_array_get(value.array(), text("n")) : value).as_string();
    }
    return results;
}

Value numbered(long long n) {
    Value value = Value::make_array();
    tpu_array_set(value.array(), text("n"), integer(n));
    return value;
}

TEST(Array, deleted_or_absent_array_reads_as_empty) {
    Array array = Value::make_array().array();
    tpu_array_set(array, integer(1), integer(1));
    array->deleted = true;
    for (const Array& gone : {array, Array()}) {
        tpu_array_set(gone, integer(2), integer(2));
        EXPECT_EQ(tpu_array_get(gone, integer(1)).as_string(), "UNSPECIFIED");
        for (const char* item : {"FIRST", "SIZE"}) {
            EXPECT_EQ(tpu_array_walk(gone, item).as_string(), "UNSPECIFIED");
        }
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
