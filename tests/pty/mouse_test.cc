// The mouse of the real terminal.
#include <gtest/gtest.h>

#include "pty/pty_session.h"

namespace tpu {
namespace {

TEST(Mouse, is_reported_from_SET_until_the_program_ends) {
    constexpr std::string_view kOn = "\033[?1000h", kOff = "\033[?1000l";
    PtySession tty;
    tty.edit("a.txt", "one\ntwo\nthree");
    EXPECT_EQ(tty.output().find(kOn), std::string::npos);
    tty.type("\032SET(MOUSE, ON)\r");
    EXPECT_TRUE(tty.eventually([&] { return tty.output().find(kOn) != std::string::npos; }));
    tty.type("\033[<0;3;2M");
    EXPECT_TRUE(tty.has_cursor_at(1, 2)) << tty.screen();
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
    EXPECT_GT(tty.output().rfind(kOff), tty.output().rfind(kOn));
    EXPECT_NE(tty.output().rfind(kOff), std::string::npos);
}

}  // namespace
}  // namespace tpu
