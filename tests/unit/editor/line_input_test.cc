// Typing a line on the message line.
#include "editor/line_input.h"

#include <gtest/gtest.h>

#include "support/session.h"

namespace tpu {
namespace {

// The text after some keys, with a bar where the cursor is.
std::string typed(LineInput& input, std::string_view keys) {
    for (int key : key_codes(keys)) EXPECT_FALSE(input.key(key));
    return std::string(input.text()).insert(input.cursor(), "|");
}

std::string typed(std::string_view keys, Asking how = {}) {
    LineInput input(Charset::utf8, std::move(how));
    return typed(input, keys);
}

TEST(LineInput, is_edited_anywhere) {
    EXPECT_EQ(typed("abc<LEFT><LEFT>x"), "ax|bc");
    EXPECT_EQ(typed("abc<HOME>x<END>y"), "xabcy|");
    EXPECT_EQ(typed("<LEFT><RIGHT><BACKSPACE><DELETE>a"), "a|");
    EXPECT_EQ(typed("abcd<LEFT><LEFT><BACKSPACE><DELETE>"), "a|d");
    EXPECT_EQ(typed("abc<LEFT><CTRL_U>d"), "d|");
    EXPECT_EQ(typed("a\xc3\xa4\xe2\x82\xac<LEFT><LEFT><DELETE>"), "a|\xe2\x82\xac");
    EXPECT_EQ(typed("\xff\xc3<LEFT><LEFT><RIGHT>x"), "\xffx|\xc3");
}

TEST(LineInput, holds_2047_bytes) {
    LineInput input(Charset::bytes);
    input.paste(std::string(2046, 'a') + "bc\nd");
    EXPECT_EQ(input.text(), std::string(2046, 'a') + "b");
    EXPECT_EQ(typed(input, "<HOME>x"), "|" + std::string(2046, 'a') + "b");
}

TEST(LineInput, ends_or_is_cancelled) {
    LineInput input(Charset::utf8);
    EXPECT_FALSE(input.key('a'));
    EXPECT_TRUE(input.key('\r'));
    EXPECT_FALSE(input.cancelled());
    EXPECT_TRUE(input.key(control('G')));
    EXPECT_TRUE(input.cancelled());
}

TEST(LineInput, recalls_earlier_lines) {
    const std::vector<std::string> history = {"first", "second"};
    Asking how;
    how.history = &history;
    EXPECT_EQ(typed("new<UP>", how), "second|");
    EXPECT_EQ(typed("new<UP><UP><UP>!", how), "first!|");
    EXPECT_EQ(typed("new<UP><UP><DOWN><DOWN><DOWN>", how), "new|");
    EXPECT_EQ(typed("new<UP>"), "new|");
}

TEST(LineInput, completes_what_is_common_and_then_goes_through_the_rest) {
    Asking how;
    how.complete = [](std::string_view line) {
        std::string_view word = line.substr(line.rfind(' ') + 1);
        Completion completion{line.size() - word.size(), {}};
        for (std::string name : {"salt", "sand", "tea"}) {
            if (name.starts_with(word)) completion.candidates.push_back(name);
        }
        return completion;
    };
    EXPECT_EQ(typed("a t<TAB>", how), "a tea|");
    EXPECT_EQ(typed("a s<TAB>", how), "a sa|");
    EXPECT_EQ(typed("a s<TAB><TAB>", how), "a salt|");
    EXPECT_EQ(typed("s<TAB><TAB><TAB><TAB>x", how), "saltx|");
    EXPECT_EQ(typed("sa!<LEFT><TAB><TAB>", how), "sand|!");
    EXPECT_EQ(typed("x<TAB>", how), "x|");
    // Characters that share their first byte have nothing in common.
    how.complete = [](std::string_view) { return Completion{0, {"na\xc3\xa4", "na\xc3\xb6"}}; };
    EXPECT_EQ(typed("n<TAB>", how), "na|");
    EXPECT_EQ(typed("x<TAB>"), "x|");
}

}  // namespace
}  // namespace tpu
