// Cutting, copying, pasting and saving from the session, with their messages.
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "support/session.h"

namespace tpu {
namespace {

using Rows = std::vector<std::string>;

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
            actions::push_kill_ring(pasted.editor, LineStore::from_text(text));
            pasted.press("<CTRL_Y>");
            typed.buffer->copy_text(text);
            EXPECT_EQ(pasted.lines(), typed.lines()) << text << " in mode " << mode;
            EXPECT_EQ(pasted.cursor(), typed.cursor());
        }
    }
}

TEST(Paste, walks_a_ring_of_32_texts) {
    Session s({""});
    actions::paste_previous(s.editor);
    EXPECT_EQ(s.editor.message, "Kill ring empty");
    for (int i = 0; i < 33; ++i)
        actions::push_kill_ring(s.editor, LineStore::from_text(std::to_string(i)));
    actions::push_kill_ring(s.editor, LineStore::from_text(""));
    EXPECT_EQ(s.editor.kill_ring.size(), 32u);
    EXPECT_EQ(s.editor.kill_ring.front().text(), "1");
    actions::paste_previous(s.editor);
    EXPECT_EQ(s.buffer->paste_text.text(), "31");
    for (int i = 0; i < 31; ++i) actions::paste_previous(s.editor);
    EXPECT_EQ(s.buffer->paste_text.text(), "32");
}

}  // namespace
}  // namespace tpu
