#include <gtest/gtest.h>

#include "editor/glyphs.h"
#include "support/session.h"

namespace tpu {
namespace {

TEST(Screen, never_holds_a_control_character_whatever_is_shown) {
    std::string all;
    for (int i = 1; i < 256; ++i) all += static_cast<char>(i);
    for (Charset charset : {Charset::utf8, Charset::bytes}) {
        Session s({}, 8, 300);
        s.editor.charset = charset;
        s.buffer->set_text(LineStore(std::vector<std::string>{all, std::string(1, '\0')}));
        s.buffer->name = s.buffer->file_name = s.buffer->eob_text = s.editor.message = all;
        s.editor.draw();
        Surface visible = s.terminal.shown.visible();
        for (int cell = 0; cell < visible.rows() * visible.cols(); ++cell) {
            char32_t glyph = visible.at(cell / visible.cols(), cell % visible.cols()).glyph;
            EXPECT_FALSE(glyph != 0 && (glyph < 32 || (glyph >= 127 && glyph < 160)));
        }
    }
    EXPECT_EQ(printable("a\x1b[m\xc3\xa9\xff\xc2\x9b", Charset::utf8),
              "a\xe2\x90\x9b[m\xc3\xa9\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(printable("a\x1b\n", Charset::bytes), "a??");
}

TEST(Screen, has_a_global_status_line_below_the_text) {
    Session s({"one"}, 7, 34);
    s.editor.draw();
    EXPECT_EQ(s.terminal.shown.status.row_text(0), " Vorlane  Buffer:MAIN File:<none> ");
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

}  // namespace
}  // namespace tpu
