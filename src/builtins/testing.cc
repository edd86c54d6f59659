// The test harness of the language: assertions that keep a report.
#include "builtins/families.h"
#include "editor/editor.h"

namespace tpu::builtins {

namespace {

void keep(TPUEditor& editor, bool passed, const std::string& line) {
    ++(passed ? editor.assertions_passed : editor.assertions_failed);
    using Line = TestReport::Line;
    editor.test_report.add(passed ? Line::passed : Line::failed,
                           (passed ? "PASS  " : "FAIL  ") + line);
}

// What an assertion is called in the report.
std::string label(Args& args) {
    return args.count() > 2 ? args.text(2) : std::string(args.whole());
}

void test(Call& call) {
    editor_of(call).test_report.add(TestReport::Line::heading,
                                    "---- " + std::string(call.args.whole()));
}

void assert_true(Call& call) {
    keep(editor_of(call), call.args.value(0).truthy(), label(call.args));
}

void assert_false(Call& call) {
    keep(editor_of(call), !call.args.value(0).truthy(), label(call.args));
}

bool equal(const Value& got, const Value& expected) {
    using Type = Value::Type;
    if (got.is(Type::integer) && expected.is(Type::integer)) {
        return got.integer() == expected.integer();
    }
    return got.as_string() == expected.as_string();
}

void assert_eq(Call& call) {
    Args& args = call.args;
    std::span<Value> values = args.values();
    bool passed = values.size() >= 2 && equal(values[0], values[1]);
    std::string line = label(args);
    if (!passed) {
        auto shown = [&](std::size_t i) {
            return i < values.size() ? values[i].as_string() : std::string();
        };
        line += "  (got=\"" + shown(0) + "\" expected=\"" + shown(1) + "\")";
    }
    keep(editor_of(call), passed, line);
}

Value assert_value(Call& call) {
    bool passed = call.args.value(0).truthy();
    keep(editor_of(call), passed, label(call.args));
    return Value::make_int(passed);
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "TEST", .statement = test, .form = "TEST(title)",
     .help = "Put a heading into the test report."},
    {.name = "ASSERT", .statement = assert_true, .function = assert_value,
     .form = "ASSERT(condition)", .help = "Report whether the condition is true."},
    {.name = "ASSERT_TRUE", .statement = assert_true,
     .form = "ASSERT_TRUE(condition)", .help = "Report whether the condition is true."},
    {.name = "ASSERT_FALSE", .statement = assert_false,
     .form = "ASSERT_FALSE(condition)", .help = "Report whether the condition is false."},
    {.name = "ASSERT_EQ", .statement = assert_eq,
     .form = "ASSERT_EQ(got, expected [, label])",
     .help = "Report whether two integers, or the texts of two values, are equal."},
};
// clang-format on

}  // namespace

std::span<const Builtin> testing() {
    return kRows;
}

}  // namespace tpu::builtins
