#include "editor/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "app/this_system.h"
#include "buffer/buffer.h"
#include "os/child.h"

namespace tpu {
namespace {

Failure why;

ThisSystem this_system;

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

// The lowest descriptor that is free: it tells when one leaks.
int lowest_free() {
    return Descriptor(dup(STDIN_FILENO)).get();
}

class Process : public testing::Test {
  protected:
    bool start(const char* command, Charset charset = Charset::bytes) {
        return process.start(this_system, command, &buffer, why, charset);
    }
    bool ends() {
        return eventually([&] { return !process.poll_output(); });
    }
    bool shows(std::string_view text) {
        return eventually([&] { return process.poll_output() && contents() == text; });
    }
    std::string contents() const { return buffer.text().text(0, buffer.text().bytes()); }

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
    ASSERT_TRUE(other.start(this_system, "echo out", nullptr, why));
    EXPECT_TRUE(eventually([&] { return !other.poll_output(); }));
}

TEST_F(Process, delivers_all_output_before_it_reports_the_end) {
    ASSERT_TRUE(start("i=0; while [ $i -lt 20000 ]; do echo $i; i=$((i+1)); done"));
    ASSERT_TRUE(ends());
    ASSERT_EQ(buffer.text().size(), 20001u);
    EXPECT_EQ(buffer.text()[0], "0");
    EXPECT_EQ(buffer.text()[1024], "1024");
    EXPECT_EQ(buffer.text()[19999], "19999");
}

TEST_F(Process, one_poll_of_an_endless_writer_takes_its_share) {
    ASSERT_TRUE(start("cat /dev/zero"));
    EXPECT_TRUE(eventually([&] { return process.poll_output(1) && buffer.text().bytes() > 0; }));
    EXPECT_EQ(buffer.text().bytes(), 1u);
    EXPECT_TRUE(process.is_talking());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_TRUE(process.poll_output());
    EXPECT_LE(buffer.text().bytes(), TPUProcess::kPollShare + 1);
}

TEST_F(Process, characters_that_come_in_pieces_are_delivered_whole) {
    ASSERT_TRUE(start("printf 'a\\342'; read x; printf '\\202'; read x; printf '\\254b\\360\\237'",
                      Charset::utf8));
    ASSERT_TRUE(shows("a"));
    process.send("\n");
    buffer.copy_text("|");  // somebody types meanwhile
    EXPECT_TRUE(eventually([&] { return process.poll_output() && process.is_talking(); }));
    EXPECT_EQ(contents(), "a|");
    process.send("\n");
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(),
              "a|\xe2\x82\xac"
              "b\xf0\x9f");
}

TEST_F(Process, bytes_that_are_no_characters_do_not_wait) {
    ASSERT_TRUE(start("printf 'a\\377'; read x; printf '\\342'; read x", Charset::utf8));
    EXPECT_TRUE(shows("a\xff"));
    process.send_eof();
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), "a\xff\xe2");
    TPUProcess other;  // without UTF-8 each byte is a character
    ASSERT_TRUE(other.start(this_system, "printf '\\342'; read x", &buffer, why));
    EXPECT_TRUE(eventually([&] { return other.poll_output() && contents() == "a\xff\xe2\xe2"; }));
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
    ASSERT_TRUE(other.start(this_system, "cat", nullptr, why));
    process.send_eof();
    EXPECT_TRUE(ends());
    EXPECT_TRUE(other.poll_output());
}

TEST_F(Process, children_have_the_descriptors_that_they_would_have_alone) {
    TPUProcess other;
    Buffer alone("ALONE", "");
    ASSERT_TRUE(other.start(this_system, "ls /dev/fd", &alone, why));
    EXPECT_TRUE(eventually([&] { return !other.poll_output(); }));
    TPUProcess running;
    ASSERT_TRUE(running.start(this_system, "cat", nullptr, why));
    ASSERT_TRUE(start("ls /dev/fd"));
    ASSERT_TRUE(ends());
    EXPECT_EQ(contents(), alone.text().text());
}

TEST_F(Process, is_awaited_while_it_may_write_or_has_room) {
    ASSERT_TRUE(start("read x; exec >&- 2>&-; cat >/dev/null"));
    auto awaits = [&](std::size_t readable, std::size_t writable) {
        Awaited awaited;
        process.await(awaited);
        return awaited.readable.size() == readable && awaited.writable.size() == writable;
    };
    EXPECT_TRUE(awaits(1, 0));
    process.send(std::string(300000, 'x'));
    EXPECT_TRUE(awaits(1, 1));
    process.send("\n");
    // Its end of the output is no reason to look again and again.
    EXPECT_TRUE(eventually([&] { return process.poll_output() && awaits(0, 0); }));
    process.send_eof();
    EXPECT_TRUE(ends());
}

TEST_F(Process, leave_nothing_behind_however_many_there_were) {
    const int lowest = lowest_free();
    for (int round = 0; round < 10; ++round) {
        TPUProcess several[10];
        pid_t pids[10];
        for (int i = 0; i < 10; ++i) {
            ASSERT_TRUE(several[i].start(this_system, "echo x", &buffer, why));
            pids[i] = several[i].pid();
        }
        for (TPUProcess& one : several) EXPECT_TRUE(eventually([&] { return !one.poll_output(); }));
        for (pid_t pid : pids)
            EXPECT_EQ(waitpid(pid, nullptr, WNOHANG), -1);  // not even a dead one
    }
    EXPECT_EQ(buffer.text().size(), 101u);
    EXPECT_EQ(lowest_free(), lowest);
}

TEST_F(Process, does_not_start_without_descriptors) {
    const int lowest = lowest_free();
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit lower = limit;
    for (unsigned free = 0; free < 4; ++free) {
        lower.rlim_cur = static_cast<rlim_t>(lowest) + free;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &lower), 0);
        TPUProcess one;
        EXPECT_FALSE(one.start(this_system, "echo x", &buffer, why)) << free;
        EXPECT_EQ(why.text(), "Too many open files");
        EXPECT_EQ(one.pid(), -1);
        setrlimit(RLIMIT_NOFILE, &limit);
        EXPECT_EQ(lowest_free(), lowest);
    }
    EXPECT_TRUE(start("echo x"));
    EXPECT_TRUE(ends());
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
        ASSERT_TRUE(doomed.start(this_system, "exec sleep 1000", nullptr, why));
        pid = doomed.pid();
    }
    // Reaped here if it had not ended yet when it was looked for.
    EXPECT_TRUE(eventually([&] { return waitpid(pid, nullptr, WNOHANG) != 0; }));
}

TEST_F(Process, children_that_will_not_end_are_killed_with_all_that_they_started) {
    int ends[2];  // inherited: at its end when none of them is left
    ASSERT_EQ(pipe(ends), 0);
    Descriptor alive_read(ends[0]), alive_write(ends[1]);
    auto stubborn = std::make_shared<TPUProcess>();
    ASSERT_TRUE(
        stubborn->start(this_system, "trap '' TERM; sleep 1000 & echo ready; wait", &buffer, why));
    auto obedient = std::make_shared<TPUProcess>();
    ASSERT_TRUE(obedient->start(
        this_system, "sh -c 'trap \"\" TERM; echo ready; sleep 1000; echo' & wait", &buffer, why));
    alive_write.close();
    ASSERT_TRUE(eventually([&] {
        return stubborn->poll_output() && obedient->poll_output() && contents() == "ready\nready\n";
    }));
    TPUProcess::end_all({stubborn, obedient});
    EXPECT_EQ(stubborn->pid(), -1);
    EXPECT_EQ(obedient->pid(), -1);
    ASSERT_TRUE(set_nonblocking(alive_read, why));
    char byte;
    EXPECT_TRUE(eventually([&] { return ::read(alive_read.get(), &byte, 1) == 0; }));
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
