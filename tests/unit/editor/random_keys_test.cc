// A person who presses anything: the session stays whole, and undo leads back.
#include <gtest/gtest.h>

#include <random>

#include "support/session.h"

namespace tpu {
namespace {

class RandomKeys : public testing::TestWithParam<unsigned> {};

TEST_P(RandomKeys, leave_a_session_that_undo_leads_back_through) {
    const std::vector<std::string> start{"one two", "", "\xe4\xb8\xad\xff\tthree"};
    const std::vector<std::string> presses{
        "a",        "\xc3\xa9",   " ",        "<RETURN>", "<TAB>",    "<LEFT>",      "<RIGHT>",
        "<UP>",     "<DOWN>",     "<HOME>",   "<END>",    "<DELETE>", "<BACKSPACE>", "<INSERT>",
        "<CTRL_V>", "<CTRL_W>",   "<CTRL_Y>", "<CTRL_O>", "<CTRL_N>", "<GOLD>U",     "<GOLD>R",
        "<PAGEUP>", "<PAGEDOWN>", "<PF4>",    "<GOLD>E",  "<GOLD>T",  "<F9>",        "\xff",
    };
    std::mt19937 random(GetParam());
    Session s(start, 12, 20);
    s.buffer->undo_limit = 1'000'000;
    s.buffer->auto_wrap = true;
    s.buffer->right_margin = 15;
    s.buffer->free_cursor = GetParam() % 2 == 0;
    for (int i = 0; i < 3000; ++i) {
        s.press(presses[random() % presses.size()]);
        if (random() % 50 == 0) s.editor.insert_paste("pasted\ttext\nand more");
        if (random() % 100 == 0) {
            s.terminal.screen = {static_cast<int>(1 + random() % 30),
                                 static_cast<int>(1 + random() % 60)};
            s.editor.resize_screen();
        }
        s.editor.draw();
        s.buffer->text().check_invariants();
        ASSERT_LT(s.buffer->cursor_row, s.buffer->text().size());
        ASSERT_TRUE(s.buffer->free_cursor || s.buffer->cursor_column <= s.buffer->line_length());
    }
    while (s.buffer->redo()) {
    }
    const LineStore newest = s.buffer->text();
    while (s.buffer->undo()) {
    }
    EXPECT_EQ(s.lines(), start);
    while (s.buffer->redo()) {
    }
    EXPECT_EQ(s.buffer->text(), newest);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomKeys, testing::Range(1u, 5u));

}  // namespace
}  // namespace tpu
