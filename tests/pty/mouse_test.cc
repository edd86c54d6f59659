// The mouse of the real terminal.
#include <gtest/gtest.h>

#include "pty/pty_session.h"

namespace tpu {
namespace {

TEST(Mouse, is_reported_from_SET_until_the_program_ends) {
    constexpr std::string_view kOn = "\033[?1000h", kOff = "\033[?1000l";
    PtySession tty;
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
