// Cutting, copying, pasting and saving from the session, with their messages.
#include <gtest/gtest.h>

#include "support/session.h"

namespace tpu {
namespace {

using Rows = std::vector<std::string>;

TEST(Paste, brings_back_what_was_cut_or_copied) {
    Session s({"one", "two"});
    s.press("<CTRL_W>");
    EXPECT_EQ(s.editor.message, "No SELECT_RANGE");
    s.press("<CTRL_Y>");
    EXPECT_EQ(s.editor.message, "Paste buffer empty");
    s.press("<CTRL_V><DOWN><RIGHT><CTRL_W>");
    EXPECT_EQ(s.editor.message, "MOVE_TEXT SELECT_RANGE");
    EXPECT_EQ(s.lines(), (Rows{"wo"}));
    EXPECT_FALSE(s.buffer->select_anchor.has_value());
    s.press("<CTRL_Y>");
    EXPECT_EQ(s.editor.message, "Pasted");
    EXPECT_EQ(s.lines(), (Rows{"one", "two"}));
    s.press("<CTRL_V><LEFT>");
    s.editor.copy_selection();
    EXPECT_EQ(s.editor.message, "Copied SELECT_RANGE");
    EXPECT_TRUE(s.buffer->select_anchor.has_value());
    EXPECT_EQ(s.buffer->paste_text.text(), "t");
    s.editor.paste_previous();
    EXPECT_EQ(s.editor.message, "Pasted previous");
    EXPECT_EQ(s.lines(), (Rows{"one", "one", "ttwo"}));
}

TEST(Paste, takes_no_character_apart) {
    Session s({"ab", "\xc3\xa4", "ab"});
    s.press("<RIGHT><CTRL_V><DOWN><CTRL_W>");
    EXPECT_EQ(s.lines(), (Rows{"a\xc3\xa4", "ab"}));
    s.press("<DOWN><RIGHT><UP><CTRL_V><END><CTRL_W>");
    EXPECT_EQ(s.lines(), (Rows{"a", "ab"}));
}

TEST(Paste, is_the_same_as_typing_whatever_the_text_holds) {
    for (const char* text : {"abc", "a\nb\n", "a\tb", "\n", "one two\nthree"}) {
        for (int mode = 0; mode < 8; ++mode) {
            Session pasted({"x", "yz"}), typed({"x", "yz"});
            for (Session* s : {&pasted, &typed}) {
                s->buffer->insert_mode = mode & 1;
                s->buffer->auto_wrap = mode & 2;
                s->buffer->free_cursor = mode & 4;
                s->buffer->right_margin = 5;
                s->buffer->cursor_row = 1;
                s->buffer->cursor_column = mode & 4 ? 5 : 1;
            }
            pasted.editor.push_kill_ring(LineStore::from_text(text));
            pasted.press("<CTRL_Y>");
            typed.buffer->copy_text(text);
            EXPECT_EQ(pasted.lines(), typed.lines()) << text << " in mode " << mode;
            EXPECT_EQ(pasted.cursor(), typed.cursor());
        }
    }
}

TEST(Paste, of_an_empty_selection_keeps_the_register) {
    Session s({"one"});
    s.editor.push_kill_ring(LineStore::from_text("old"));
    s.press("<CTRL_V><CTRL_W>");
    EXPECT_EQ(s.editor.message, "MOVE_TEXT SELECT_RANGE");
    EXPECT_FALSE(s.buffer->select_anchor.has_value());
    EXPECT_EQ(s.buffer->paste_text.text(), "old");
}

TEST(Paste, walks_a_ring_of_32_texts) {
    Session s({""});
    s.editor.paste_previous();
    EXPECT_EQ(s.editor.message, "Kill ring empty");
    for (int i = 0; i < 33; ++i) s.editor.push_kill_ring(LineStore::from_text(std::to_string(i)));
    s.editor.push_kill_ring(LineStore::from_text(""));
    EXPECT_EQ(s.editor.kill_ring.size(), 32u);
    EXPECT_EQ(s.editor.kill_ring.front().text(), "1");
    s.editor.paste_previous();
    EXPECT_EQ(s.buffer->paste_text.text(), "31");
    for (int i = 0; i < 31; ++i) s.editor.paste_previous();
    EXPECT_EQ(s.buffer->paste_text.text(), "32");
}

TEST(Paste, keeps_named_texts_for_all_buffers) {
    Session s({""});
    s.editor.store_named_paste("");
    EXPECT_EQ(s.editor.message, "STORE_PASTE needs a name");
    s.editor.push_kill_ring(LineStore::from_text("text"));
    s.editor.store_named_paste("abc");
    EXPECT_EQ(s.editor.message, "Stored paste \"ABC\" (4 chars)");
    s.editor.recall_named_paste("x", true);
    EXPECT_EQ(s.editor.message, "No named paste \"X\"");
    s.editor.position(s.editor.create_buffer("B", ""));
    s.editor.paste();
    EXPECT_EQ(s.editor.message, "Paste buffer empty");
    s.editor.recall_named_paste("Abc", false);
    EXPECT_EQ(s.editor.message, "Recalled paste \"ABC\"");
    s.editor.recall_named_paste("ABC", true);
    EXPECT_EQ(s.editor.message, "Pasted \"ABC\"");
    EXPECT_EQ(s.editor.current_buffer->text()[0], "text");
}

TEST(Save, asks_for_a_name_and_says_what_happened) {
    Session s({"text"});
    s.press("<CTRL_S><RETURN>");
    EXPECT_EQ(s.editor.message, "No file specified");
    s.press("<CTRL_S>/no/such/folder/file<RETURN>");
    EXPECT_EQ(s.editor.message, "Write failed: /no/such/folder/file");
    s.buffer->file_name = "/no/such/folder/file";
    s.press("x<GOLD>W");
    EXPECT_EQ(s.editor.message, "Write failed: /no/such/folder/file");
    EXPECT_TRUE(s.buffer->modified);
}

}  // namespace
}  // namespace tpu
