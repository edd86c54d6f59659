#include <gtest/gtest.h>

#include "support/session.h"

namespace tpu {
namespace {

// The places of all windows in list order, as "top+height@left+width", the current one marked.
std::string places(const TPUEditor& editor) {
    std::string text;
    for (const auto& window : editor.windows) {
        for (int n : {window->top, window->height, window->left, window->width}) {
            text += std::to_string(n) + ' ';
        }
        text += window.get() == editor.current_window ? "* " : "  ";
    }
    return text;
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
    EXPECT_EQ(places(s.editor), "0 24 0 0   24 24 0 80 * 24 24 80 80   ");
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

TEST(Messages, fill_their_buffer_line_by_line_up_to_the_limit) {
    Session s;
    s.editor.message_buffer_limit = 3;
    s.editor.set_message("first");
    Buffer* log = s.editor.find_buffer("$MESSAGE_BUFFER");
    ASSERT_NE(log, nullptr);
    log->cursor_row = 0;
    log->modifiable = false;
    s.editor.set_message("second\nlines");
    EXPECT_EQ(log->text().text(), "first\nsecond\nlines");
    s.editor.set_message("third");
    EXPECT_EQ(log->text().text(), "second\nlines\nthird");
    EXPECT_EQ(log->cursor_row, 0u);
    EXPECT_TRUE(log->no_write && log->system && !log->modified && !log->modifiable);
    EXPECT_EQ(log->eob_text, "[End of message buffer]");
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
}

}  // namespace
}  // namespace tpu
