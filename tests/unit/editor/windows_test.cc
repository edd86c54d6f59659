#include <gtest/gtest.h>

#include "support/session.h"

namespace tpu {
namespace {

// The places of all windows in list order, as "top+height" or "top+height@left+width".
std::string places(const TPUEditor& editor) {
    std::string text;
    for (const auto& window : editor.windows) {
        text += std::to_string(window->top) + "+" + std::to_string(window->height);
        if (window->width > 0 || window->left > 0) {
            text += "@" + std::to_string(window->left) + "+" + std::to_string(window->width);
        }
        text += window.get() == editor.current_window ? "* " : " ";
    }
    return text;
}

TEST(Windows, are_split_into_halves_while_large_enough) {
    Session s;
    s.editor.split_window_horizontal();
    EXPECT_EQ(places(s.editor), "0+11 11+11* ");
    s.editor.current_window->height = 3;
    s.editor.split_window_horizontal();
    EXPECT_EQ(s.editor.windows.size(), 2u);
    s.editor.current_window->height = 5;
    s.editor.split_window_horizontal();
    // The first window on the buffer but for the new one is chosen.
    EXPECT_EQ(places(s.editor), "0+11* 11+2 13+3 ");
}

TEST(Windows, are_split_side_by_side) {
    Session s({}, 24, 9);
    s.editor.split_window_vertical();
    EXPECT_EQ(places(s.editor), "0+22@0+4* 0+22@4+5 ");
    s.editor.split_window_vertical();
    EXPECT_EQ(s.editor.windows.size(), 2u);
}

TEST(Windows, may_reach_down_to_the_message_line_when_adjusted) {
    Session s;
    TPUWindow* window = s.editor.current_window;
    s.editor.adjust_window(window, -5, 100);
    EXPECT_EQ(places(s.editor), "0+23* ");
    s.editor.adjust_window(window, 10, -20);
    EXPECT_EQ(places(s.editor), "10+1* ");
    s.editor.adjust_window(nullptr, 1, 1);
}

TEST(Windows, keep_their_own_cursors_when_one_walks_through_them) {
    Session s({"a", "b", "c"});
    s.press("<CTRL_O>");
    EXPECT_EQ(s.editor.message, "Window split");
    s.press("<DOWN><DOWN><CTRL_N>");
    EXPECT_EQ(s.editor.message, "Next window");
    EXPECT_EQ(s.editor.current_window->top, 0);
    s.press("<UP><UP><CTRL_N>");
    EXPECT_EQ(s.cursor(), (Position{2, 0}));
    s.press("<CTRL_N>");
    EXPECT_EQ(s.cursor(), (Position{0, 0}));
    s.editor.unmap_window(s.editor.windows[1].get());
    s.editor.next_window();
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
}

TEST(Windows, leave_a_default_window_behind_when_all_are_deleted) {
    Session s({"text"});
    s.editor.delete_window(s.editor.current_window);
    EXPECT_EQ(s.editor.current_window, nullptr);
    EXPECT_EQ(s.screen()[0], "text");
    EXPECT_EQ(places(s.editor), "0+22* ");
}

TEST(Windows, keep_their_proportions_when_the_screen_changes_its_size) {
    Session s({}, 26, 80);
    s.editor.split_window_horizontal();
    s.editor.split_window_vertical();
    const std::string before = places(s.editor);
    auto resize = [&](int rows, int cols) {
        s.terminal.screen = {rows, cols};
        s.editor.resize_screen();
    };
    resize(50, 160);
    EXPECT_EQ(places(s.editor), "0+24 24+24@0+80* 24+24@80+80 ");
    for (int rows = 1; rows < 40; ++rows) {
        for (int cols : {1, 2, 7, 30}) {
            resize(rows, cols);
            ASSERT_EQ(s.editor.windows.size(), 3u);
            for (const auto& window : s.editor.windows) {
                EXPECT_GE(window->top, 0);
                EXPECT_GE(window->height, 1);
                EXPECT_LE(window->top + window->height, std::max(rows - 2, 1));
                EXPECT_LT(window->left, cols);
                EXPECT_LE(window->left + window->width, std::max(cols, 1));
            }
            s.editor.draw();
        }
    }
    resize(26, 80);
    EXPECT_EQ(places(s.editor), before);
}

TEST(Buffers, are_walked_in_order_of_creation_round_the_end) {
    Session s;
    s.editor.set_message("one");  // makes the message buffer
    s.editor.create_buffer("B", "");
    s.editor.previous_buffer();
    EXPECT_EQ(s.editor.message, "Buffer B");
    s.editor.next_buffer();
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
    s.editor.message.clear();
    s.editor.current_buffer = nullptr;
    s.editor.next_buffer();
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
    EXPECT_EQ(s.editor.message, "");
    s.editor.position(s.editor.find_buffer("b"));
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
}

TEST(Messages, fill_their_buffer_line_by_line_up_to_the_limit) {
    Session s;
    s.editor.message_buffer_limit = 3;
    s.editor.set_message("first");
    Buffer* log = s.editor.find_buffer("$MESSAGE_BUFFER");
    ASSERT_NE(log, nullptr);
    log->cursor_row = 0;
    log->modifiable = false;
    s.editor.set_message("second\nlines");
    EXPECT_EQ(log->text().lines(), (std::vector<std::string>{"first", "second", "lines"}));
    s.editor.set_message("third");
    EXPECT_EQ(log->text().lines(), (std::vector<std::string>{"second", "lines", "third"}));
    EXPECT_EQ(log->cursor_row, 0u);
    EXPECT_FALSE(log->modified || log->modifiable);
    EXPECT_TRUE(log->no_write && log->system);
    EXPECT_EQ(log->eob_text, "[End of message buffer]");
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
}

}  // namespace
}  // namespace tpu
