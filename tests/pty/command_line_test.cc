// The command line as a person uses it: typed, recalled, completed and given up.
#include <gtest/gtest.h>

#include "pty/pty_session.h"

namespace tpu {
namespace {

class CommandLineKeys : public testing::Test {
  protected:
    void SetUp() override { tty.edit("a.txt", "one\ntwo\nthree"); }
    void expect_message(std::string_view text) {
        EXPECT_TRUE(tty.shows(23, text)) << text << '\n' << tty.screen();
    }

    PtySession tty;
};

constexpr const char* kUp = "\033[A";
constexpr const char* kLeft = "\033[D";
constexpr const char* kDelete = "\033[3~";

TEST_F(CommandLineKeys, recall_a_line_and_change_it) {
    tty.type("\032go to 2\r\032what line\r");
    expect_message("Line 2 of 3  Col 1");
    tty.type(std::string("\032") + kUp + kUp);
    expect_message("* go to 2");
    EXPECT_TRUE(tty.has_cursor_at(23, 9)) << tty.screen();
    tty.type(std::string(kLeft) + kDelete + "3\r");
    expect_message("Line 3");
    EXPECT_TRUE(tty.has_cursor_at(2, 0)) << tty.screen();
}

TEST_F(CommandLineKeys, give_a_line_up) {
    tty.type("\032erase_line\007!");
    EXPECT_TRUE(tty.shows(0, "!one")) << tty.screen();
    tty.type(std::string("\032") + kUp + "\007\032quit\007?");
    EXPECT_TRUE(tty.shows(0, "!?one")) << tty.screen();
}

TEST_F(CommandLineKeys, complete_commands_and_files) {
    tty.write("notes of today", "notes");
    tty.write(".hidden", "");
    tty.type("\032inc\t");
    expect_message("* INCLUDE");
    tty.type("no\t");
    expect_message("* INCLUDE \"notes of today\"");
    tty.type("\r");
    expect_message("Included notes of today");
    EXPECT_TRUE(tty.shows(0, "notesone")) << tty.screen();
}

TEST_F(CommandLineKeys, survive_a_resize_and_a_line_longer_than_the_screen) {
    tty.type("\032message(\"");
    expect_message("* message(\"");
    tty.resize(10, 20);
    EXPECT_TRUE(tty.shows(9, "* message(\"")) << tty.screen();
    tty.type("0123456789\xc3\xa4\xe6\xbc\xa2");
    EXPECT_TRUE(tty.shows(9, "sage(\"0123456789\xc3\xa4\xe6\xbc\xa2")) << tty.screen();
    EXPECT_TRUE(tty.has_cursor_at(9, 19)) << tty.screen();
    tty.resize(24, 80);
    tty.type("\")\r");
    expect_message("0123456789\xc3\xa4\xe6\xbc\xa2");
}

TEST_F(CommandLineKeys, find_goes_on_and_back_while_the_text_is_typed) {
    tty.type("\032find\r");
    expect_message("I-find:");
    tty.type("e");
    EXPECT_TRUE(tty.has_cursor_at(0, 2)) << tty.screen();
    tty.type("\006");
    EXPECT_TRUE(tty.has_cursor_at(2, 3)) << tty.screen();
    tty.type("q");
    expect_message("I-find: eq  (not found)");
    tty.type("\177");
    expect_message("I-find: e");
    EXPECT_TRUE(tty.has_cursor_at(2, 3)) << tty.screen();
    tty.type("\007");
    expect_message("I-find cancelled");
}

TEST_F(CommandLineKeys, replace_asks_and_can_be_undone) {
    tty.type("\032replace\r");
    expect_message("Old:");
    tty.type("two\r");
    expect_message("New:");
    tty.type("2\r");
    expect_message("Replaced");
    EXPECT_TRUE(tty.shows(1, "2")) << tty.screen();
    tty.type("\032undo\r");
    EXPECT_TRUE(tty.shows(1, "two")) << tty.screen();
}

TEST_F(CommandLineKeys, help_and_show_open_buffers_that_can_be_left) {
    tty.type("\032help wrap\r");
    expect_message("HELP buffer (Ctrl-X to exit, NEXT BUFFER to leave)");
    EXPECT_TRUE(tty.shows(0, "WRAP")) << tty.screen();
    tty.type("\032sho version\r");
    EXPECT_TRUE(tty.shows(1, "Release date: 2026-07-17")) << tty.screen();
    EXPECT_TRUE(tty.shows(2, "[End of $SHOW_VERSION]")) << tty.screen();
    tty.type("\032next buffer\r");
    expect_message("Buffer a.txt");
    EXPECT_TRUE(tty.shows(2, "three")) << tty.screen();
}

}  // namespace
}  // namespace tpu
