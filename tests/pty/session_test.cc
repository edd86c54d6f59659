// Windows, timers and processes that source text sets going, seen from outside.
#include <gtest/gtest.h>

#include "pty/pty_session.h"

namespace tpu {
namespace {

class SessionBuiltins : public testing::Test {
  protected:
    // Runs a line on the command line.
    void command(const std::string& line) { tty.type("\032" + line + "\r"); }

    PtySession tty;
};

TEST_F(SessionBuiltins, a_window_made_from_source_shows_its_buffer) {
    tty.edit("a.txt", "one\ntwo");
    command("w := CREATE_WINDOW(10, 6, ON)");
    command("b := CREATE_BUFFER(\"notes\")");
    command("MAP(w, b)");
    command("POSITION(w)");
    command("COPY_TEXT(\"in the window\")");
    EXPECT_TRUE(tty.shows(10, "in the window")) << tty.screen();
    EXPECT_TRUE(tty.eventually([&] { return tty.row(15).starts_with(" notes *"); }))
        << tty.screen();
    EXPECT_TRUE(tty.shows(0, "one"));
    command("DELETE(b)");
    EXPECT_TRUE(tty.shows(10, "one")) << tty.screen();
    EXPECT_TRUE(tty.shows(23, "Deleted buffer notes"));
}

TEST_F(SessionBuiltins, a_timer_runs_its_statement_between_keys) {
    tty.edit("a.txt", "");
    command("SET(TIMER, 20, \"COPY_TEXT(\" & FAO(\"!%C\", 34) & \"x\" & FAO(\"!%C\", 34) & \")\")");
    EXPECT_TRUE(tty.eventually([&] { return tty.row(0).starts_with("xxx"); })) << tty.screen();
    command("SET(TIMER, 0)");
    command("ERASE_LINE");
    EXPECT_TRUE(tty.shows(0, "")) << tty.screen();
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
}

TEST_F(SessionBuiltins, a_process_gets_what_is_typed_while_attached) {
    tty.edit("a.txt", "");
    command("p := CREATE_PROCESS(\"while read line; do echo got $line; done; echo end\")");
    EXPECT_TRUE(tty.eventually([&] { return tty.row(23).starts_with("Process started (pid "); }));
    command("SEND(\"sent\")");
    EXPECT_TRUE(tty.shows(0, "got sent")) << tty.screen();
    command("ATTACH");
    EXPECT_TRUE(tty.eventually([&] { return tty.row(23).starts_with("ATTACHED"); }));
    tty.type("typed\r");
    EXPECT_TRUE(tty.shows(1, "got typed")) << tty.screen();
    tty.type("\032");
    EXPECT_TRUE(tty.shows(23, "Detached"));
    command("SEND_EOF");
    EXPECT_TRUE(tty.shows(2, "end")) << tty.screen();
}

TEST_F(SessionBuiltins, a_flood_of_output_leaves_time_for_keys) {
    tty.edit("a.txt", "");
    command("b := CREATE_BUFFER(\"flood\")");
    command("p := CREATE_PROCESS(\"yes\", b)");
    EXPECT_TRUE(tty.eventually([&] { return tty.row(23).starts_with("Process started"); }));
    tty.type("still here");
    EXPECT_TRUE(tty.shows(0, "still here")) << tty.screen();
    command("DELETE(p)");
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
}

TEST_F(SessionBuiltins, spawn_gives_the_screen_away_and_takes_it_back) {
    tty.edit("a.txt", "text");
    command("SPAWN(\"echo from the shell; exit 2\")");
    EXPECT_TRUE(tty.shows(23, "SPAWN exit code 512")) << tty.screen();
    EXPECT_TRUE(tty.shows(0, "text"));
    EXPECT_NE(tty.output().find("from the shell"), std::string::npos);
}

}  // namespace
}  // namespace tpu
