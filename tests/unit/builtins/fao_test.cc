#include "builtins/fao.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>
#include <vector>

namespace tpu {
namespace {

constexpr long long kLeast = std::numeric_limits<long long>::min();

Value value(long long integer) {
    return Value::make_int(integer);
}

Value value(const char* text) {
    return Value::make_str(text);
}

std::string fao(const std::string& control, std::vector<Value> arguments = {}) {
    arguments.insert(arguments.begin(), Value::make_str(control));
    return format_ascii_output(arguments, {});
}

struct Case {
    const char* control;
    std::vector<Value> arguments;
    std::string expected;
};

void expect(const std::vector<Case>& cases) {
    for (const Case& c : cases) EXPECT_EQ(fao(c.control, c.arguments), c.expected) << c.control;
}

TEST(Fao, shows_numbers) {
    expect({
        {"!SL !sw !SL", {value(5), value(-5), value(0LL)}, "+5 -5 +0"},
        {"!4SL!2SL", {value(5), value(123)}, "  +5+123"},
        {"!5ZL!5ZL", {value(42), value(-42)}, "0004200-42"},
        {"!21UW!UB", {value(-1), value("7x")}, " 184467440737095516157"},
        {"!4XL!Xw!5XB", {value(255), value(-255), value(-1)}, "00FF-FF000-1"},
        {"!OL!4OW!OB", {value(8), value(-8), value(0LL)}, "100-100"},
        {"!8BB!BL", {value(5), value(-2)}, "00000101-10"},
        {"!ZL !XL", {value(kLeast), value(kLeast)}, "-9223372036854775808 -8000000000000000"},
        {"!BL", {value(kLeast)}, "-1" + std::string(63, '0')},
        {"!SB!ZW", {value(5)}, "!SB!ZW"},
    });
}

TEST(Fao, shows_texts) {
    expect({
        {"!3AS|!6AC|!AS", {value("abcdef"), value("ab"), value(12)}, "abcdef|ab    |12"},
        {"!3AD|!9AD|!0AD", {value("abcdef"), value("ab"), value("x")}, "abc|ab|"},
        {"!4@!1@!@", {value("ab"), value("ab"), value(7)}, "  abab7"},
        {"!AS!UL", {}, "UNSPECIFIED0"},
        {"!%c!%C", {value(65), value(128 + 66)}, "AB"},
        {"!#AS!#*-!#*-", {value(3), value("x"), value(2), value(-2)}, "x  --"},
        {"!!!/!_!^! !3**!*x!0*y", {}, "!\n\t\f ***x"},
    });
}

TEST(Fao, adds_the_plural_ending_by_what_was_consumed_last) {
    expect({
        {"!UL file!%S", {value(1)}, "1 file"},
        {"!UL file!%S", {value(2)}, "2 files"},
        {"!UL file!%S", {value(-1)}, "18446744073709551615 file"},
        {"!%s", {value(1)}, "s"},
        {"!UL!+!%S!-!-!%S", {value(1), value(2)}, "1"},
        {"!2FUL!%S", {value(2), value(1)}, "21"},
    });
}

TEST(Fao, moves_in_the_arguments) {
    const std::vector<Value> abcd = {value("a"), value("b"), value("c"), value("d")};
    expect({
        {"!+!AS!2+!AS", abcd, "bUNSPECIFIED"},
        {"!-!AS!-!-!AS!AS!0-!AS", abcd, "aabc"},
        {"!3+!2-!AS!9-!AS", abcd, "ba"},
        {"!AS!2-!AS", abcd, "a!AS!2-!AS"},  // as many as the index: the control text
        {"!AS!2-!-!+!AS", abcd, "aa"},
    });
}

TEST(Fao, repeats_a_directive) {
    expect({
        {"!3FSL,!UL!FUL", {value(1), value(2), value(3), value(4), value(5)}, "+1+2+3,45"},
        {"!2F!!0FULx", {}, "!!x"},
        {"!2F%S?", {}, "ss?"},
        {"!2F*-", {}, "!*-"},     // the second ! is what is repeated
        {"!2F3SL", {}, "!S!SL"},  // two characters at most
        {"!3FFUL", {value(1)}, "!U!U!UL"},
        {"!#FAS!AS", {value(2), value("a"), value("b"), value("c")}, "abc"},
    });
}

TEST(Fao, copies_what_is_no_directive) {
    expect({{"", {}, ""},
            {"100% a#b", {}, "100% a#b"},
            {"!Q!5q!A!%!%x", {}, "!Q!q!A!%!%x"},
            {"a!", {}, "a!"},
            {"a!12", {}, "a!"},
            {"!*", {}, "!*"},
            {"!3F", {}, "!F"},
            {"!A", {value("x")}, "!A"}});
    EXPECT_EQ(format_ascii_output({}, {}), "UNSPECIFIED");
}

TEST(Fao, shows_the_local_date_and_time) {
    std::tm local{};
    std::istringstream("2024-02-03 04:05:06") >> std::get_time(&local, "%Y-%m-%d %H:%M:%S");
    const Value control = Value::make_str("!%D !%t");
    EXPECT_EQ(format_ascii_output({&control, 1}, local), "03-Feb-2024 04:05:06");
}

TEST(Fao, is_bounded_for_absurd_widths) {
    const Value most = value(std::numeric_limits<long long>::max());
    EXPECT_EQ(fao("!999999999999999999999999AS", {value("x")}).size(), kLongestFormatted);
    EXPECT_EQ(fao("!#*-!#@", {most, most, value("x")}).size(), kLongestFormatted);
    const std::string nested = fao("!500000F9F");
    EXPECT_GT(nested.size(), kMostFormatRepeats / 2);
    EXPECT_LT(nested.size(), kMostFormatRepeats * 2);
    std::string repeats;
    for (int i = 0; i < 20'000; ++i) repeats += "!999999999999F+!999999999-!999999999+";
    EXPECT_EQ(fao(repeats, {value("x")}), "");
}

}  // namespace
}  // namespace tpu
