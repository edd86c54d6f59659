#include "text/find_bytes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tpu {
namespace {

TEST(FindBytes, finds_what_a_plain_search_finds) {
    std::mt19937 random(5);
    for (int i = 0; i < 20'000; ++i) {
        std::string text, needle;
        auto letters = 1 + random() % 3;
        for (auto n = random() % 600; n > 0; --n)
            text += static_cast<char>('a' + random() % letters);
        for (auto n = 1 + random() % 12; n > 0; --n) {
            needle += static_cast<char>('a' + random() % letters);
        }
        if (random() % 4 == 0 && text.size() > 20) needle = text.substr(random() % 20, 150);
        if (random() % 4 == 0) needle.back() = '\xff';
        ASSERT_EQ(find_bytes(text, needle), text.find(needle)) << text << " / " << needle;
    }
}

// Where both ends of the needle are everywhere, comparing at each of them is quadratic.
TEST(FindBytes, is_linear_in_text_that_resembles_the_needle) {
    std::string text(20'000'000, 'a');
    std::string needle = std::string(50'000, 'a') + "b" + std::string(50'000, 'a');
    EXPECT_EQ(find_bytes(text, needle), std::string::npos);
    text.replace(15'000'000, needle.size(), needle);
    EXPECT_EQ(find_bytes(text, needle), 15'000'000u);
}

}  // namespace
}  // namespace tpu
