// What the program does at a terminal, seen from outside.
#include <gtest/gtest.h>

#include <chrono>

#include "pty/pty_session.h"

namespace tpu {
namespace {

class Editing : public testing::Test {
  protected:
    PtySession tty;
};

std::string bracketed(const std::string& text) {
    return "\033[200~" + text + "\033[201~";
}

TEST_F(Editing, shows_a_file_with_its_status_line_and_the_greeting) {
    tty.edit("a.txt", "first\nsecond\n");
    EXPECT_TRUE(tty.shows(0, "first")) << tty.screen();
    EXPECT_TRUE(tty.shows(1, "second"));
    EXPECT_TRUE(tty.shows(2, "[End of file]"));
    EXPECT_TRUE(tty.shows(21, " a.txt * Saved INSERT 1/2:1"));
    EXPECT_TRUE(tty.shows("Ctrl-Z command, Ctrl-X"));
    EXPECT_TRUE(tty.is_reverse(21, 0) && tty.is_reverse(21, 79));
    EXPECT_FALSE(tty.is_reverse(22, 0) || tty.is_reverse(0, 0));
    EXPECT_TRUE(tty.has_cursor_at(0, 0));
}

TEST_F(Editing, saves_what_was_typed_and_keeps_the_old_file) {
    tty.edit("a.txt", "old");
    tty.type("new\r");
    EXPECT_TRUE(tty.shows(21, " a.txt * Modified INSERT 2/2:1")) << tty.screen();
    tty.type("\033[B\033OF!\023");
    EXPECT_TRUE(tty.shows(23, "Written a.txt")) << tty.screen();
    EXPECT_TRUE(tty.shows(22, ""));  // the global status line stays covered
    EXPECT_EQ(tty.read("a.txt").substr(0, 8), "new\nold!");
    EXPECT_EQ(tty.read("a.txt.bak"), "old");
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
}

TEST_F(Editing, keeps_text_and_status_line_inside_a_resized_screen) {
    tty.edit("a.txt", "one\ntwo");
    tty.resize(10, 40);
    EXPECT_TRUE(tty.shows(7, " a.txt * Saved INSERT 1/2:1")) << tty.screen();
    EXPECT_TRUE(tty.shows(0, "one")) << tty.screen();
    EXPECT_TRUE(tty.eventually([&] { return tty.is_reverse(7, 39); }));
    tty.type("x");
    EXPECT_TRUE(tty.shows(0, "xone"));
    tty.resize(30, 100);
    EXPECT_TRUE(tty.shows(27, " a.txt * Modified INSERT 1/2:2")) << tty.screen();
    EXPECT_TRUE(tty.shows(1, "two")) << tty.screen();
    EXPECT_TRUE(tty.shows(7, "")) << tty.screen();
    EXPECT_TRUE(tty.eventually([&] { return tty.is_reverse(27, 99); }));
    tty.resize(2, 5);
    tty.resize(1, 1);
    tty.resize(24, 80);
    EXPECT_TRUE(tty.shows(21, " a.txt * Modified INSERT 1/2:2")) << tty.screen();
}

TEST_F(Editing, keeps_a_command_line_when_the_screen_is_resized) {
    tty.edit("a.txt", "one\ntwo");
    tty.type("\032message(\"");
    EXPECT_TRUE(tty.shows(23, "* message(\"")) << tty.screen();
    tty.resize(10, 20);
    EXPECT_TRUE(tty.shows(9, "* message(\"")) << tty.screen();
    tty.type("0123456789\xc3\xa4\xe6\xbc\xa2");
    EXPECT_TRUE(tty.shows(9, "sage(\"0123456789\xc3\xa4\xe6\xbc\xa2")) << tty.screen();
    EXPECT_TRUE(tty.has_cursor_at(9, 19)) << tty.screen();
    tty.resize(24, 80);
    tty.type("\")\r");
    EXPECT_TRUE(tty.shows(23, "0123456789\xc3\xa4\xe6\xbc\xa2")) << tty.screen();
    tty.type("\032\033[A\033[D\033[3~\007\006tw\033");  // Up, Left and Delete; then Find
    EXPECT_TRUE(tty.shows(23, "I-find cancelled")) << tty.screen();
}

TEST_F(Editing, takes_utf8_as_characters) {
    tty.edit("a.txt", "");
    tty.type("h\xc3\xa4user \xe6\xbc\xa2 \xe2\x82\xac");
    EXPECT_TRUE(tty.shows(0, "h\xc3\xa4 user \xe6\xbc\xa2  \xe2\x82\xac")) << tty.screen();
    tty.type("\x7f\023");
    EXPECT_TRUE(tty.shows(23, "Written a.txt"));
    EXPECT_EQ(tty.read("a.txt").substr(0, 12), "h\xc3\xa4user \xe6\xbc\xa2 ");
}

// What a file holds never steers the terminal.
TEST_F(Editing, shows_control_characters_without_sending_them) {
    tty.edit("a.txt",
             "\033]0;title\007 \033[31mred \xc2\x9b"
             "31m \x9b \x0e \x7f \xe2\x80\xae rtl\n\033c\016");
    EXPECT_TRUE(tty.shows("red")) << tty.screen();
    for (std::string_view raw :
         {"\033]", "\033[31m", "\xc2\x9b", "\033c", "\016", "\007", "\x7f", "\xe2\x80\xae"}) {
        EXPECT_EQ(tty.output().find(raw), std::string::npos) << testing::PrintToString(raw);
    }
}

TEST_F(Editing, takes_a_large_paste_whole) {
    tty.edit("a.txt", "");
    std::string text;
    for (int i = 0; i < 100000; ++i) text += "line " + std::to_string(i) + "\n";
    tty.type(bracketed(text));
    tty.type("\023");
    EXPECT_TRUE(tty.shows(23, "Written a.txt")) << tty.screen();
    EXPECT_EQ(tty.read("a.txt").substr(0, text.size() - 1), text.substr(0, text.size() - 1));
    tty.type(bracketed("one\rtwo \033OP\r") + "\033OPU\033OPU");
    EXPECT_TRUE(tty.shows(0, "")) << tty.screen();
    EXPECT_TRUE(tty.shows(1, "[End of file]")) << tty.screen();
}

}  // namespace
}  // namespace tpu
