#include "value/value.h"

#include <gtest/gtest.h>

#include <utility>

#include "buffer/buffer.h"
#include "buffer/marker.h"
#include "editor/process.h"
#include "editor/window.h"
#include "lang/learning.h"
#include "lang/stmt.h"
#include "pattern/join.h"
#include "pattern/pattern.h"
#include "value/array.h"

namespace tpu {
namespace {

constexpr const char* kLong = "a text that is too long to be held in place";

TEST(Value, integer_is_read_from_the_front_of_a_string) {
    const std::pair<Value, long long> cases[] = {
        {Value::make_str("  42"), 42},
        {Value::make_str("\t-12abc"), -12},
        {Value::make_str("+7"), 7},
        {Value::make_str("+-7"), 0},
        {Value::make_str("x"), 0},
        {Value::make_str("9223372036854775807"), 9223372036854775807},
        {Value::make_str("9223372036854775808"), 0},
        {Value::make_kw("42"), 0},
        {Value(), 0},
    };
    for (auto& [value, integer] : cases) {
        EXPECT_EQ(value.as_int(), integer) << '"' << value.text() << '"';
    }
}

TEST(Value, renders_as_text) {
    Buffer main("MAIN", "");
    main.set_text(LineStore::from_text("one\ntwo\nthree"));
    TPUWindow window, on_main;
    on_main.buffer = &main;
    const std::pair<Value, const char*> cases[] = {
        {Value::make_int(-12), "-12"},
        {Value(), ""},
        {Value::make_buffer(&main), "MAIN"},
        {Value::make_buffer(nullptr), ""},
        {window_value(&window), "<window>"},
        {window_value(&on_main), "<window:MAIN>"},
        {window_value(nullptr), ""},
        {Value::make_marker({&main, 2, 0}), "<marker MAIN:3,1>"},
        {Value::make_marker({}), ""},
        {Value::make_range(Range({&main, 1, 2}, {&main, 0, 1})), "ne\ntw"},
        {Value::make_range(Range(Marker(), Marker())), ""},
        {pattern_value({}), "<pattern>"},
        {process_value(nullptr), "<process>"},
    };
    for (auto& [value, text] : cases) EXPECT_EQ(value.as_string(), text) << type_name(value.type());
}

TEST(Value, truth_is_what_is_there_and_not_empty) {
    Buffer main("MAIN", "");
    auto program = std::make_shared<Program>();
    auto learn = std::make_shared<LearnSequence>();
    const std::pair<Value, bool> cases[] = {
        {Value(), false},
        {Value::make_int(0), false},
        {Value::make_int(2), true},
        {Value::make_str(""), false},
        {Value::make_str("0"), true},
        {Value::make_kw("true"), true},
        {Value::make_kw("On"), true},
        {Value::make_kw("ONE"), false},
        {pattern_value({}), false},
        {pattern_value({{TPUPatternToken::literal("a")}, false}), true},
        {Value::make_range(Range()), false},
        {Value::make_range(Range(Marker(), Marker())), true},
        {Value::make_marker({}), false},
        {Value::make_marker({&main, 0, 0}), true},
        {Value::make_buffer(nullptr), false},
        {Value::make_buffer(&main), true},
        {Value::make_array(), true},
        {Value::make_array(std::shared_ptr<TPUArray>()), false},
        {Value::make_object(Value::Type::program, program), false},
        {learn_value(learn), false},
        {process_value(std::make_shared<TPUProcess>()), true},
    };
    for (auto& [value, truth] : cases) {
        EXPECT_EQ(value.truthy(), truth) << type_name(value.type()) << ' ' << value.as_string();
    }
    program->statements.emplace_back();
    learn->statements.emplace_back();
    EXPECT_TRUE(Value::make_object(Value::Type::program, program).truthy());
    EXPECT_TRUE(learn_value(learn).truthy());
}

TEST(Value, unspecified_is_no_type_or_one_of_two_keywords) {
    EXPECT_TRUE(tpu_value_is_unspecified(Value()));
    EXPECT_TRUE(tpu_value_is_unspecified(tpu_unspecified()));
    EXPECT_TRUE(tpu_value_is_unspecified(Value::make_kw("tpu$k_Unspecified")));
    EXPECT_FALSE(tpu_value_is_unspecified(Value::make_kw("UNSPECIFIE")));
    EXPECT_FALSE(tpu_value_is_unspecified(Value::make_str("UNSPECIFIED")));
}

TEST(Value, copies_share_and_assignment_lets_go) {
    Value marker = Value::make_marker({nullptr, 1, 1});
    std::weak_ptr<Marker> watch = marker.marker();
    Value copy = marker;
    copy.marker()->row = 9;
    EXPECT_EQ(marker.marker()->row, 9u);
    Value moved = std::move(copy);
    marker = Value::make_str(kLong);
    EXPECT_EQ(watch.use_count(), 1);
    moved = marker;
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(moved.text(), kLong);
    EXPECT_EQ(moved.marker(), nullptr);
    EXPECT_EQ(moved.buffer(), nullptr);
    EXPECT_EQ(moved.integer(), 0);
}

TEST(Value, takes_the_place_of_what_it_stood_in) {
    Value value = Value::make_array();
    tpu_array_set(value.array(), Value::make_int(1), Value::make_str(kLong));
    Value* element = nullptr;
    value.array()->for_each([&](const ArrayKey&, Value& only) { element = &only; });
    value = std::move(*element);
    EXPECT_EQ(value.as_string(), kLong);
    value = *&value;
    EXPECT_EQ(value.as_string(), kLong);
}

}  // namespace
}  // namespace tpu
