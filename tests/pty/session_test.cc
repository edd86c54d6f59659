// Windows, timers and processes that source text sets going, seen from outside.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <string>

#include "pty/pty_session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

class SessionBuiltins : public testing::Test {
  protected:
    // Runs a line on the command line.
    void command(const std::string& line) { tty.type("\032" + line + "\r"); }

    PtySession tty;
};

TEST_F(SessionBuiltins, a_second_session_on_a_file_is_told_while_the_first_one_lives) {
    TempFolder folder;
    const std::string file = folder.write("shared", "text");
    auto open_in = [&](PtySession& session) {
        session.environment["XDG_STATE_HOME"] = folder.path("state");
        session.start({file});
        ASSERT_TRUE(session.shows("INSERT")) << session.screen() << session.errors();
    };
    PtySession second, third;
    open_in(tty);
    EXPECT_TRUE(tty.shows("Ctrl-Z command")) << tty.screen();
    open_in(second);
    EXPECT_TRUE(second.shows("shared is open in")) << second.screen();
    for (PtySession* session : {&tty, &second}) {
        session->send_signal(SIGKILL);
        session->exit_status();
    }
    open_in(third);
    EXPECT_TRUE(third.shows("Ctrl-Z command")) << third.screen();
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

TEST_F(SessionBuiltins, a_process_answers_at_once) {
    tty.edit("a.txt", "");
    command("ATTACH(CREATE_PROCESS(\"cat\"))");
    EXPECT_TRUE(tty.eventually([&] { return tty.row(23).starts_with("ATTACHED"); }));
    int column = 1;
    auto answers = [&] {
        tty.type("x");
        return tty.shows(21, " a.txt * Modified INSERT 1/1:" + std::to_string(++column));
    };
    // Ten in less than a second, some time: the machine may have much else to do.
    EXPECT_TRUE(tty.eventually([&] {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 10 && answers(); ++i) {
        }
        return std::chrono::steady_clock::now() - start < std::chrono::seconds(1);
    })) << tty.screen();
}

TEST_F(SessionBuiltins, a_process_cannot_take_the_terminal_away) {
    tty.edit("a.txt", "");
    command("p := CREATE_PROCESS(\"(echo mine >/dev/tty) 2>/dev/null || echo none\")");
    EXPECT_TRUE(tty.shows(0, "none")) << tty.screen();
    command("p := CREATE_PROCESS(\"bash -i\")");  // would make itself the terminal's foreground
    EXPECT_TRUE(tty.eventually([&] { return tty.row(23).starts_with("Process started (pid "); }));
    command("SEND(\"echo $((6*7))\")");
    command("SEND_EOF");
    EXPECT_TRUE(tty.shows("42") || tty.shows("not found")) << tty.screen();
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
}

TEST_F(SessionBuiltins, processes_end_with_the_program_however_it_ends) {
    for (int signal : {0, SIGTERM, SIGHUP}) {
        PtySession session;
        session.edit("a.txt", "");
        session.type(
            "\032CREATE_PROCESS(\"trap '' TERM HUP PIPE; echo $$ .; while :; do sleep 1; "
            "done\")\r");
        EXPECT_TRUE(session.eventually([&] { return session.row(0).ends_with(" ."); }));
        const auto pid = static_cast<pid_t>(std::stol(session.row(0)));
        EXPECT_EQ(kill(pid, 0), 0);
        if (signal == 0) {
            session.type("\030");
        } else {
            session.send_signal(signal);
        }
        EXPECT_EQ(session.exit_status(), 0) << signal;
        EXPECT_TRUE(session.eventually([&] { return kill(pid, 0) != 0; })) << signal;
    }
}

TEST_F(SessionBuiltins, spawn_gives_the_screen_away_and_takes_it_back) {
    tty.edit("a.txt", "text");
    command("SPAWN(\"echo from the shell; stty -a >modes; exit 2\")");
    EXPECT_TRUE(tty.shows(23, "SPAWN exit code 512")) << tty.screen();
    EXPECT_TRUE(tty.shows(0, "text"));
    EXPECT_NE(tty.output().find("from the shell"), std::string::npos);
    EXPECT_NE(tty.read("modes").find(" icanon"), std::string::npos) << tty.read("modes");
    EXPECT_NE(tty.read("modes").find(" echo "), std::string::npos);
    EXPECT_EQ(tty.attributes().c_lflag & (ICANON | ECHO), 0u);
    command("SPAWN(\"kill -9 $$\")");
    EXPECT_TRUE(tty.shows(23, "SPAWN exit code 9"));
    tty.type("\003new ");  // Ctrl-C is a key again
    EXPECT_TRUE(tty.shows(0, "new text")) << tty.screen();
}

}  // namespace
}  // namespace tpu
