#include "builtins/strings.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "buffer/buffer.h"

namespace tpu {
namespace {

constexpr long long kMost = std::numeric_limits<long long>::max();

Value text(const char* s) {
    return Value::make_str(s);
}

Value number(long long n) {
    return Value::make_int(n);
}

TEST(Strings, are_measured_searched_cut_and_changed_byte_by_byte) {
    Buffer buffer("MAIN", "");
    const struct {
        Value (*function)(std::span<const Value>);
        std::vector<Value> arguments;
        Value expected;
    } cases[] = {
        {strings::str, {number(-7)}, text("-7")},
        {strings::str, {Value::make_kw("On")}, text("On")},
        {strings::str, {}, text("UNSPECIFIED")},
        {strings::integer, {text(" 12abc")}, number(12)},
        {strings::ascii_code, {text("\xe9x")}, number(233)},
        {strings::ascii_code, {text("")}, number(0)},
        {strings::length, {text("a\xc3\xa9")}, number(3)},
        {strings::length, {Value::make_buffer(&buffer)}, number(4)},
        {strings::index, {text("abcbc"), text("bc")}, number(2)},
        {strings::index, {text("abc"), text("C")}, number(0)},
        {strings::index, {text(""), text("")}, number(1)},
        {strings::index, {number(1234), number(34)}, number(3)},
        {strings::substr, {text("abcdef"), number(-5), number(2)}, text("ab")},
        {strings::substr, {text("abcdef"), number(6), number(kMost)}, text("f")},
        {strings::substr, {text("abcdef"), number(kMost), number(kMost)}, text("")},
        {strings::substr, {text("abcdef"), number(2), number(-1)}, text("")},
        {strings::substr, {number(12345), text("2"), text("2")}, text("23")},
        {strings::edit, {text("aB1\xe9"), text("upper")}, text("AB1\xe9")},
        {strings::edit, {text("aB1"), Value::make_kw("LOWER")}, text("ab1")},
        {strings::edit, {text("aB1"), text("Invert")}, text("Ab1")},
        {strings::edit, {number(7)}, text("7")},
    };
    for (const auto& c : cases) {
        const Value result = c.function(c.arguments);
        EXPECT_EQ(result.type(), c.expected.type()) << "case " << &c - cases;
        EXPECT_EQ(result.as_string(), c.expected.as_string()) << "case " << &c - cases;
    }
}

}  // namespace
}  // namespace tpu
