#include <gtest/gtest.h>

#include "editor/glyphs.h"
#include "editor/status_line.h"
#include "support/session.h"

namespace tpu {
namespace {

using Rows = std::vector<std::string>;

// The attributes of a row: a letter for each cell, "." for none, "r" reverse, "d" dim, ...
std::string attrs(const Surface& surface, int row) {
    std::string text;
    for (int col = 0; col < surface.cols(); ++col) {
        switch (surface.at(row, col).attr) {
            case Attr::none: text += '.'; break;
            case Attr::reverse: text += 'r'; break;
            case Attr::dim: text += 'd'; break;
            case Attr::bold: text += 'b'; break;
            default: text += '?';
        }
    }
    return text;
}

TEST(Screen, shows_lines_end_of_buffer_status_and_message) {
    Session s({"one", "two"}, 7, 34);
    s.press("<DOWN><END>!");
    s.editor.message = "hello";
    EXPECT_EQ(s.screen(), (Rows{"one", "two!", "[End of file]", "", " MAIN * Modified INSERT 2/2:5",
                                "", "hello"}));
    EXPECT_EQ(s.terminal.shown.cursor, (ScreenPlace{1, 4}));
    EXPECT_EQ(attrs(s.terminal.shown.text, 2), std::string(13, 'd') + std::string(21, '.'));
    EXPECT_EQ(attrs(s.terminal.shown.text, 4), std::string(34, 'r'));
    EXPECT_EQ(s.terminal.shown.status.row_text(0), " Vorlane  Buffer:MAIN File:<none> ");
}

TEST(Screen, of_24_rows_has_its_window_status_on_row_21_and_the_global_one_hidden) {
    Session s({"text"});
    Rows rows = s.screen();
    ASSERT_EQ(rows.size(), 24u);
    EXPECT_EQ(rows[21], " MAIN * Saved INSERT 1/1:1");
    EXPECT_EQ(rows[22], "");
}

TEST(Screen, scrolls_no_further_than_it_takes_to_keep_the_cursor_in_view) {
    Rows numbers;
    for (int i = 0; i < 100; ++i) numbers.push_back(std::to_string(i));
    Session s(numbers, 7, 20);
    s.screen();
    s.press("<DOWN><DOWN><DOWN><DOWN><DOWN>");
    EXPECT_EQ(s.screen()[0], "2");
    s.press("<UP><UP>");
    EXPECT_EQ(s.screen()[0], "2");
    s.press("<UP><UP><UP>");
    EXPECT_EQ(s.screen()[0], "0");
    s.press("<PAGEDOWN>");
    EXPECT_EQ(s.cursor(), (Position{4, 0}));
}

TEST(Screen, draws_two_windows_on_one_buffer_by_a_shared_first_line) {
    Session s({"0", "1", "2", "3", "4", "5", "6"}, 10, 12);
    s.press("<CTRL_O>");
    s.buffer->cursor_row = 5;
    Rows rows = s.screen();
    EXPECT_EQ(rows[0], "3");
    EXPECT_EQ(rows[2], "5");
    EXPECT_EQ(rows[4], "3");
    EXPECT_EQ(s.terminal.shown.cursor.row, 6);
}

TEST(Screen, shows_line_numbers_only_in_windows_of_nine_columns) {
    Session s({"abcdef"}, 5, 9);
    s.editor.show_line_numbers = true;
    EXPECT_EQ(s.screen()[0], "    1 abc");
    s.press("<END>");
    s.screen();
    EXPECT_EQ(s.terminal.shown.cursor.col, 8);
    EXPECT_EQ(attrs(s.terminal.shown.text, 0), "dddddd...");
    Session narrow({"abcdef"}, 5, 8);
    narrow.editor.show_line_numbers = true;
    EXPECT_EQ(narrow.screen()[0], "abcdef");
}

TEST(Screen, marks_selection_regions_and_the_column_past_the_margin) {
    Session s({"abcdefgh", "ij"}, 6, 9);
    s.buffer->right_margin = 6;
    s.buffer->video_regions.push_back(
        {Range(Marker{s.buffer, 0, 3}, Marker{s.buffer, 0, 5}), Attr::bold});
    s.press("<RIGHT><CTRL_V><RIGHT>");
    s.screen();
    EXPECT_EQ(attrs(s.terminal.shown.text, 0), ".r.bb.d..");
    s.press("<DOWN>");
    s.screen();
    EXPECT_EQ(attrs(s.terminal.shown.text, 0), ".rr??rrrr");
    EXPECT_EQ(attrs(s.terminal.shown.text, 1), "rr....d..");
}

TEST(Screen, gives_every_byte_a_cell_and_draws_characters_in_the_first_of_theirs) {
    Session s({"a\xc3\xa9z", "\xe4\xb8\xad.", "\xff\x01\t|", "e\xcc\x81x", "\xc2\x9b\xe2\x80\xae!"},
              9, 10);
    Rows rows = s.screen();
    EXPECT_EQ(rows[0], "a\xc3\xa9 z");
    EXPECT_EQ(rows[1], "\xe4\xb8\xad .");
    EXPECT_EQ(s.terminal.shown.text.at(1, 1).glyph, 0u);
    EXPECT_EQ(rows[2], "\xef\xbf\xbd\xe2\x90\x81 |");
    EXPECT_EQ(s.terminal.shown.text.at(3, 3).glyph, U'x');
    EXPECT_EQ(rows[4], "\xef\xbf\xbd \xef\xbf\xbd  !");
    Session narrow({"\xe4\xb8\xad", "ab"}, 5, 1);
    EXPECT_EQ(narrow.screen()[0], "");
}

TEST(Screen, never_holds_a_control_character_whatever_is_shown) {
    std::string all;
    for (int i = 1; i < 256; ++i) all += static_cast<char>(i);
    for (Charset charset : {Charset::utf8, Charset::bytes}) {
        Session s({}, 8, 300);
        s.editor.charset = charset;
        s.buffer->set_text(LineStore(Rows{all, std::string(1, '\0')}));
        s.buffer->name = s.buffer->file_name = s.buffer->eob_text = s.editor.message = all;
        s.editor.draw();
        Surface visible = s.terminal.shown.visible();
        for (int row = 0; row < visible.rows(); ++row) {
            for (int col = 0; col < visible.cols(); ++col) {
                char32_t glyph = visible.at(row, col).glyph;
                EXPECT_FALSE(glyph != 0 && (glyph < 32 || (glyph >= 127 && glyph < 160)));
            }
        }
    }
}

TEST(Screen, has_a_printable_form_for_texts_off_the_screen) {
    EXPECT_EQ(printable("a\x1b[m\xc3\xa9\xff\xc2\x9b", Charset::utf8),
              "a\xe2\x90\x9b[m\xc3\xa9\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(printable("a\x1b\n", Charset::bytes), "a??");
}

TEST(Screen, blanks_a_wide_glyph_that_a_later_window_cuts) {
    Session s({"\xe4\xb8\xad\xe4\xb8\xad\xe4\xb8\xad"}, 6, 20);
    TPUWindow* window = s.editor.create_window(0, 2, false);
    s.editor.map_window(window, s.editor.create_buffer("B", ""));
    window->left = 4;
    window->width = 3;
    s.editor.draw();
    EXPECT_EQ(s.terminal.shown.text.at(0, 0).glyph, U'\u4e2d');
    EXPECT_EQ(s.terminal.shown.text.at(0, 3).glyph, U' ');
    EXPECT_EQ(s.terminal.shown.text.at(0, 7).glyph, U' ');
}

TEST(StatusLine, follows_its_template) {
    Buffer buffer("main.c", "src/main.c");
    buffer.set_text(LineStore(Rows{"a", "b"}));
    buffer.cursor_row = 1;
    EXPECT_EQ(window_status(buffer, false, ""), " main.c   Saved INSERT 2/2:1");
    EXPECT_EQ(window_status(buffer, true, "%n|%f|%l/%t:%c %m %i %d 100%% %x%"),
              "main.c|src/main.c|2/2:1 Saved INSERT FWD 100% %x%");
    buffer.modified = buffer.reverse = true;
    buffer.insert_mode = false;
    buffer.file_name.clear();
    EXPECT_EQ(window_status(buffer, true, "%f%m%i%d"), "<none>ModifiedOVERSTRIKEREV");
}

}  // namespace
}  // namespace tpu
