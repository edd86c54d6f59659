#include "proc/process.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

#include "core/buffer.h"

namespace tpu {
namespace {

// Tries again until it holds or far more time than any child needs is over.
template <class Condition>
bool eventually(Condition holds) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

class Process : public testing::Test {
  protected:
    bool start(const char* command) { return process.start(command, &buffer); }
    bool ends() {
        return eventually([&] { return !process.poll_output(); });
    }
    bool shows(std::string_view text) {
        return eventually([&] { return process.poll_output() && contents() == text; });
    }
    std::string contents() const { return buffer.lines.text(0, buffer.lines.bytes()); }

    Buffer buffer{"OUT", ""};
    TPUProcess process;
};

TEST_F(Process, puts_output_and_errors_at_the_cursor) {
    buffer.copy_text("<>");
    buffer.cursor_column = 1;
    ASSERT_TRUE(start("echo out; echo err >&2"));
    EXPECT_GT(process.pid(), 0);
    EXPECT_EQ(process.command, "echo out; echo err >&2");
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), "<out\nerr\n>");
    EXPECT_EQ(process.pid(), -1);
    EXPECT_FALSE(process.poll_output());
    EXPECT_EQ(process.pid(), -1);
}

TEST_F(Process, writes_into_an_unmodifiable_buffer_and_drops_without_one) {
    buffer.modifiable = false;
    ASSERT_TRUE(start("echo out"));
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), "out\n");
    EXPECT_FALSE(buffer.modifiable);

    TPUProcess other;
    ASSERT_TRUE(other.start("echo out", nullptr));
    EXPECT_TRUE(eventually([&] { return !other.poll_output(); }));
}

TEST_F(Process, delivers_all_output_before_it_reports_the_end) {
    ASSERT_TRUE(start("i=0; while [ $i -lt 20000 ]; do echo $i; i=$((i+1)); done"));
    ASSERT_TRUE(ends());
    ASSERT_EQ(buffer.lines.size(), 20001u);
    EXPECT_EQ(buffer.lines[0], "0");
    EXPECT_EQ(buffer.lines[1024], "1024");
    EXPECT_EQ(buffer.lines[19999], "19999");
}

TEST_F(Process, one_poll_of_an_endless_writer_comes_back) {
    ASSERT_TRUE(start("yes"));
    EXPECT_TRUE(eventually([&] { return process.poll_output() && buffer.lines.size() > 1; }));
}

TEST_F(Process, reads_what_is_sent_until_the_end_of_its_input) {
    ASSERT_TRUE(start("cat"));
    process.send("one\ntw");
    EXPECT_TRUE(shows("one\ntw"));
    process.send("o");
    EXPECT_TRUE(shows("one\ntwo"));
    process.send_eof();
    process.send("three");
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), "one\ntwo");
}

TEST_F(Process, input_larger_than_the_pipes_comes_back_whole) {
    std::string text;
    for (int i = 0; i < 100000; ++i) text += std::to_string(i) + "\n";
    ASSERT_TRUE(start("cat"));
    process.send(text);
    process.send_eof();
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), text);
}

TEST_F(Process, sending_to_a_child_that_has_gone_is_harmless) {
    auto old_handler = signal(SIGPIPE, SIG_DFL);  // would end this test
    ASSERT_TRUE(start("exit 0"));
    ASSERT_TRUE(ends());
    process.send("nobody reads this\n");
    process.send_eof();
    signal(SIGPIPE, old_handler);
}

TEST_F(Process, other_children_do_not_hold_its_input_open) {
    ASSERT_TRUE(start("cat"));
    TPUProcess other;
    ASSERT_TRUE(other.start("cat", nullptr));
    process.send_eof();
    EXPECT_TRUE(ends());
    EXPECT_TRUE(other.poll_output());
}

TEST_F(Process, child_has_a_dumb_terminal_and_default_signals) {
    auto old_handler = signal(SIGTERM, SIG_IGN);
    sigset_t mask, old_mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &mask, &old_mask);
    bool started = start("echo $TERM; kill -TERM $$; echo survived");
    pthread_sigmask(SIG_SETMASK, &old_mask, nullptr);
    signal(SIGTERM, old_handler);
    ASSERT_TRUE(started);
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), "dumb\n");
}

TEST_F(Process, child_is_ended_with_its_object) {
    pid_t pid = -1;
    {
        TPUProcess doomed;
        ASSERT_TRUE(doomed.start("exec sleep 1000", nullptr));
        pid = doomed.pid();
    }
    // Reaped here if it had not ended yet when it was looked for.
    EXPECT_TRUE(eventually([&] { return waitpid(pid, nullptr, WNOHANG) != 0; }));
}

TEST_F(Process, child_that_will_not_end_is_killed_in_the_end) {
    auto stubborn = std::make_shared<TPUProcess>();
    ASSERT_TRUE(stubborn->start("trap '' TERM; echo ready; while :; do sleep 1; done", &buffer));
    pid_t pid = stubborn->pid();
    ASSERT_TRUE(eventually([&] { return stubborn->poll_output() && contents() == "ready\n"; }));
    TPUProcess::end_all({stubborn}, std::chrono::milliseconds(50));
    EXPECT_EQ(stubborn->pid(), -1);
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST_F(Process, child_that_does_not_read_is_not_sent_without_limit) {
    ASSERT_TRUE(start("exec sleep 1000"));
    std::string megabyte(1 << 20, 'x');
    int taken = 0;
    while (taken < 100 && process.send(megabyte)) ++taken;
    EXPECT_GE(taken, 16);
    EXPECT_LT(taken, 18);
}

}  // namespace
}  // namespace tpu
