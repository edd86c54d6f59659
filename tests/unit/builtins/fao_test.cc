#include "builtins/fao.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>
#include <vector>

namespace tpu {
namespace {

std::string fao(const std::string& control, std::vector<Value> arguments = {}) {
    arguments.insert(arguments.begin(), Value::make_str(control));
    return format_ascii_output(arguments, {});
}

TEST(Fao, shows_the_local_date_and_time) {
    std::tm local{};
    std::istringstream("2024-02-03 04:05:06") >> std::get_time(&local, "%Y-%m-%d %H:%M:%S");
    const Value control = Value::make_str("!%D !%t");
    EXPECT_EQ(format_ascii_output({&control, 1}, local), "03-Feb-2024 04:05:06");
}

TEST(Fao, is_bounded_for_absurd_widths) {
    const Value most = Value::make_int(std::numeric_limits<long long>::max());
    const Value x = Value::make_str("x");
    EXPECT_EQ(fao("!999999999999999999999999AS", {x}).size(), kLongestFormatted);
    EXPECT_EQ(fao("!#*-!#@", {most, most, x}).size(), kLongestFormatted);
    const std::string nested = fao("!500000F9F");
    EXPECT_GT(nested.size(), kMostFormatRepeats / 2);
    EXPECT_LT(nested.size(), kMostFormatRepeats * 2);
    std::string repeats;
    for (int i = 0; i < 20'000; ++i) repeats += "!999999999999F+!999999999-!999999999+";
    EXPECT_EQ(fao(repeats, {x}), "");
}

}  // namespace
}  // namespace tpu
