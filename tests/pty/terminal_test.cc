// Taking a terminal over, and giving it back.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "pty/pty_session.h"

namespace tpu {
namespace {

class TakingOver : public testing::Test {
  protected:
    bool attributes_are(const termios& expected) const {
        termios now = tty.attributes();
        return now.c_iflag == expected.c_iflag && now.c_oflag == expected.c_oflag &&
               now.c_cflag == expected.c_cflag && now.c_lflag == expected.c_lflag &&
               std::equal(now.c_cc, now.c_cc + NCCS, expected.c_cc);
    }
    // Everything that was switched on is off again.
    void expect_given_back(const termios& before) const {
        EXPECT_TRUE(attributes_are(before));
        for (std::string_view mode : {"\033[?1049", "\033[?2004"}) {
            std::size_t last = tty.output().rfind(mode);
            ASSERT_NE(last, std::string::npos);
            EXPECT_EQ(tty.output()[last + mode.size()], 'l') << mode.substr(1);
        }
    }

    PtySession tty;
};

TEST_F(TakingOver, leaving_gives_the_terminal_back) {
    termios before = tty.attributes();
    tty.edit("a.txt", "text");
    EXPECT_FALSE(attributes_are(before));
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
    expect_given_back(before);
    EXPECT_EQ(tty.errors(), "");
}

const std::string kTyped(150, 'x');  // too little to be kept before a second has passed

// What the session that ended has left behind is all that was typed.
void expect_kept(PtySession& tty, const std::string& file) {
    tty.start({file});
    EXPECT_TRUE(tty.shows("Unsaved work of")) << tty.screen();
    tty.type("\032RECOVER_BUFFER\r\023");
    EXPECT_TRUE(tty.shows("Written " + file)) << tty.screen();
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
}

TEST_F(TakingOver, signals_end_all_that_is_under_way_with_0_and_keep_what_was_typed) {
    const struct {
        int signal;
        std::string keys, shown;
    } cases[] = {
        {SIGTERM, "", ""},
        {SIGHUP, "", ""},
        {SIGINT, "", ""},
        {SIGTERM, "\032ERASE_LINE", "* ERASE_LINE"},
        {SIGHUP, "\032x := READ_LINE(\"Line: \")\rsome", "Line: some"},
        {SIGTERM, "\032SLEEP(1000)\r", ""},
        {SIGTERM, "\032spin\r", "started"},
        {SIGTERM, "\032SET(TIMER, 1, \"spin\")\r", "started"},
        {SIGTERM, "\032SPAWN(\"echo st''arted; sleep 1000\")\r", "started"},
        {SIGHUP, "\032SPAWN(\"PS1=st''arted bash --norc -i 2>&1\")\r", "started"},
    };
    tty.write(".tpurc",
              "PROCEDURE spin\nSPAWN(\"echo started\")\nLOOP\nx := READ_KEY\nENDLOOP\n"
              "ENDPROCEDURE\n");
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.signal << c.keys);
        termios before = tty.attributes();
        tty.edit("a.txt", "text");
        std::size_t shown = tty.output().size();
        tty.type(kTyped + c.keys);
        EXPECT_TRUE(
            tty.eventually([&] { return tty.output().find(c.shown, shown) != std::string::npos; }));
        tty.send_signal(c.signal);
        EXPECT_EQ(tty.exit_status(), 0);
        expect_given_back(before);
        EXPECT_EQ(tty.read("a.txt"), "text");
        expect_kept(tty, "a.txt");
        EXPECT_EQ(tty.read("a.txt"), kTyped + "text");
    }
}

TEST_F(TakingOver, a_terminal_that_goes_away_takes_nothing_along) {
    const std::string file = tty.environment["HOME"] + "/a.txt";
    tty.write("a.txt", "text");
    tty.start({file});
    EXPECT_TRUE(tty.shows("INSERT")) << tty.screen();
    tty.type(kTyped);
    EXPECT_TRUE(tty.shows("INSERT 1/1:151")) << tty.screen();
    tty.hang_up();
    EXPECT_EQ(tty.exit_status(), 0);
    PtySession other;
    other.environment["HOME"] = tty.environment["HOME"];
    expect_kept(other, file);
    EXPECT_EQ(tty.read("a.txt"), kTyped + "text");
}

TEST_F(TakingOver, a_terminal_that_takes_no_more_output_does_not_hold_the_end_up) {
    std::string text;
    for (int i = 0; i < 10'000; ++i)
        text += std::string(240, static_cast<char>('a' + i % 26)) + '\n';
    PtySession wide(100, 250);
    wide.edit("a.txt", text);
    wide.type(kTyped);
    EXPECT_TRUE(wide.shows("INSERT 1/10000:151")) << wide.screen();
    for (int i = 0; i < 40; ++i) {
        wide.type_unseen("\033[6~");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));  // each is drawn
    }
    wide.send_signal(SIGTERM);
    ASSERT_TRUE(wide.ends_unseen());
    EXPECT_EQ(wide.exit_status(), 0);
    expect_kept(wide, "a.txt");
    EXPECT_TRUE(wide.read("a.txt") + '\n' == kTyped + text);
}

TEST_F(TakingOver, faults_give_the_terminal_back) {
    for (int signal : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT}) {
        termios before = tty.attributes();
        tty.edit("a.txt", "text");
        tty.send_signal(signal);
        EXPECT_EQ(tty.exit_status(), 128 + signal);
        expect_given_back(before);
    }
}

// The file is shown before all of it is read.
TEST_F(TakingOver, survives_a_file_that_shrinks_while_it_is_read) {
    for (int milliseconds : {1, 15, 30, 50, 80}) {
        tty.write("large", std::string(200, '\n'));
        const std::string file = tty.environment["HOME"] + "/large";
        std::filesystem::resize_file(file, std::uintmax_t{100} << 20);
        tty.start({"large"});
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        std::filesystem::resize_file(file, 10'000);
        EXPECT_TRUE(tty.shows("INSERT")) << milliseconds << tty.screen();
        tty.type("x\030");
        EXPECT_EQ(tty.exit_status(), 0) << milliseconds;
    }
}

TEST_F(TakingOver, refuses_what_is_no_terminal_or_cannot_place_its_cursor) {
    const struct {
        const char *variable, *value, *input, *complaint;
    } cases[] = {
        {"TERM", "no-such-terminal", "", "newterm() failed for TERM=no-such-terminal"},
        {"TERM", "dumb", "", "tpu: a terminal of type dumb cannot place its cursor"},
        {"TERM", "xterm", "/dev/null", "tpu: standard input is not a terminal"},
        {"ZK_TTY", "/dev/null", "", "ZK_TTY is not a TTY: /dev/null"},
    };
    for (const auto& c : cases) {
        PtySession session;
        session.environment[c.variable] = c.value;
        session.start({"a.txt"}, c.input);
        EXPECT_EQ(session.exit_status(), 1);
        EXPECT_EQ(session.errors(), std::string(c.complaint) + "\n");
        EXPECT_EQ(session.output(), "");
    }
    tty.environment.erase("TERM");
    tty.edit("a.txt", "text");
    EXPECT_TRUE(tty.shows(0, "text"));
}

TEST_F(TakingOver, version_and_help_need_no_terminal) {
    for (const char* option : {"--version", "--help"}) {
        tty.start({option}, "/dev/null");
        EXPECT_EQ(tty.exit_status(), 0) << option;
        EXPECT_TRUE(tty.output().find("tpu") != std::string::npos) << option;
        EXPECT_EQ(tty.output().find('\033'), std::string::npos) << option;
    }
}

TEST_F(TakingOver, works_on_another_terminal_when_told_to) {
    PtySession home;
    termios before = tty.attributes();
    home.environment["ZK_TTY"] = tty.terminal_name();
    home.write("a.txt", "text");
    home.start({"a.txt"});
    EXPECT_TRUE(tty.shows(21, " a.txt * Saved INSERT 1/1:1")) << tty.screen() << home.errors();
    tty.type("x\023");
    EXPECT_TRUE(tty.shows(23, "Written a.txt")) << tty.screen();
    EXPECT_EQ(home.read("a.txt").substr(0, 5), "xtext");
    tty.type("\030");
    EXPECT_EQ(home.exit_status(), 0);
    EXPECT_TRUE(tty.eventually([&] { return tty.output().ends_with("\033[?2004l"); }));
    expect_given_back(before);
    EXPECT_EQ(home.output(), "");
}

TEST_F(TakingOver, reports_the_mouse_from_SET_to_the_end_of_the_program) {
    constexpr std::string_view kOn = "\033[?1000h", kOff = "\033[?1000l";
    tty.edit("a.txt", "one\ntwo\nthree");
    auto command = [&](const std::string& line) { tty.type("\032" + line + "\r"); };
    EXPECT_EQ(tty.output().find(kOn), std::string::npos);
    command("SET(MOUSE, ON)");
    EXPECT_TRUE(tty.eventually([&] { return tty.output().find(kOn) != std::string::npos; }));
    tty.type("\033[<0;3;2M");
    EXPECT_TRUE(tty.has_cursor_at(1, 2)) << tty.screen();
    command("SET(MOUSE, OFF)");
    EXPECT_TRUE(
        tty.eventually([&] { return tty.output().rfind(kOff) + 1 > tty.output().rfind(kOn) + 1; }));
    command("SET(MOUSE, ON)");
    EXPECT_TRUE(tty.eventually([&] { return tty.output().rfind(kOn) > tty.output().rfind(kOff); }));
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
    EXPECT_GT(tty.output().rfind(kOff), tty.output().rfind(kOn));
    EXPECT_NE(tty.output().rfind(kOff), std::string::npos);
}

}  // namespace
}  // namespace tpu
