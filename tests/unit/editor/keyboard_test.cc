// Keys from a descriptor, and what else ends the wait for them.
#include "app/curses/keyboard.h"

#include <gtest/gtest.h>
#include <sys/select.h>
#include <unistd.h>

#include "os/child.h"
#include "support/session.h"

namespace tpu {
namespace {

using std::chrono::steady_clock;

constexpr int kLong = 20000;  // milliseconds that no wait here takes

class Waiting : public testing::Test {
  protected:
    Waiting() {
        Failure why;
        EXPECT_TRUE(keys.open(why) && process.open(why) && full.open(why));
        EXPECT_TRUE(set_nonblocking(full.write, why));
        keyboard.open(keys.read.get(), nullptr, Charset::utf8);
        const std::string block(4096, 'x');
        while (write(full.write.get(), block.data(), block.size()) > 0) {
        }
    }
    ~Waiting() override { EXPECT_TRUE(is_quick()); }
    bool is_quick() const { return steady_clock::now() - start < std::chrono::milliseconds(kLong); }
    static void put(const Pipe& pipe, std::string_view bytes) {
        ASSERT_EQ(write(pipe.write.get(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }

    int read_code(int wait_ms, const Awaited& others) {
        return code_of(keyboard.read(wait_ms, others));
    }

    Pipe keys, process, full;
    Keyboard keyboard;
    const steady_clock::time_point start = steady_clock::now();
};

TEST_F(Waiting, ends_when_something_else_is_ready) {
    const Awaited awaited{{process.read.get()}, {full.write.get()}};
    EXPECT_EQ(read_code(1, awaited), kNoKey);
    put(process, "output");
    EXPECT_EQ(read_code(kLong, awaited), kNoKey);
    ASSERT_TRUE(is_quick());
    EXPECT_EQ(read_code(-1, awaited), kNoKey);
    char bytes[1 << 16];
    EXPECT_GT(read(process.read.get(), bytes, sizeof bytes), 0);
    EXPECT_GT(read(full.read.get(), bytes, sizeof bytes), 0);
    EXPECT_EQ(read_code(kLong, awaited), kNoKey);
}

TEST_F(Waiting, goes_on_for_what_a_set_of_descriptors_cannot_hold) {
    EXPECT_EQ(read_code(1, {{FD_SETSIZE, FD_SETSIZE + 1000}, {FD_SETSIZE}}), kNoKey);
    put(keys, "k");
    EXPECT_EQ(read_code(kLong, {{FD_SETSIZE}, {}}), 'k');
}

TEST_F(Waiting, prefers_keys_and_finishes_those_that_are_cut_short) {
    const Awaited awaited{{process.read.get()}, {}};
    put(process, "a flood");
    put(keys, "kl\033[");
    EXPECT_EQ(read_code(kLong, awaited), 'k');
    EXPECT_EQ(read_code(kLong, awaited), 'l');
    int key = kNoKey;
    while (key == kNoKey) key = read_code(kLong, awaited);
    EXPECT_EQ(key, 27);
    EXPECT_EQ(read_code(kLong, awaited), '[');
}

constexpr int kPause = 250;  // milliseconds in which no paste stops, as far as we know

TEST_F(Waiting, for_the_end_of_a_paste_leaves_keys_alone) {
    put(keys, "\033[200~te\003xt");
    int pressed = 0;
    Event event;
    for (; event.kind == Event::Kind::none && pressed < 40; ++pressed) {
        event = keyboard.read(kPause, {});
        put(keys, "k");
    }
    EXPECT_EQ(event.text, "te\003xt");
    for (; pressed > 0; --pressed) EXPECT_EQ(read_code(kLong, {}), 'k');
}

TEST_F(Waiting, for_the_end_of_a_paste_is_over_with_control_c) {
    for (bool running : {false, true}) {
        put(keys, "\033[200~te\003xt");
        EXPECT_FALSE(keyboard.interrupt_waiting());
        EXPECT_EQ(read_code(kPause, {}), kNoKey);
        put(keys, "\003");
        if (running) {
            EXPECT_TRUE(keyboard.interrupt_waiting());
        } else {
            EXPECT_EQ(keyboard.read(kLong, {}).text, "te\003xt");
            EXPECT_EQ(read_code(kLong, {}), 3);
        }
        put(keys, "k");
        EXPECT_EQ(read_code(kLong, {}), 'k');
    }
}

TEST_F(Waiting, for_the_end_of_a_paste_is_over_while_control_c_is_held_down) {
    put(keys, "\033[200~text");
    Event event;
    for (int i = 0; event.kind == Event::Kind::none && i < 40; ++i) {
        event = keyboard.read(30, {});
        if (event.kind == Event::Kind::none) put(keys, "\003");
    }
    EXPECT_TRUE(event.text.starts_with("text"));
    EXPECT_EQ(read_code(kLong, {}), 3);
}

TEST_F(Waiting, for_the_end_of_a_paste_goes_on_when_it_was_held_up) {
    for (std::string_view rest : {"y\033[201~", "y that is longer than any key\033[201~"}) {
        put(keys, "\033[200~text");
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(read_code(kPause, {}), kNoKey);
            put(keys, "\033[2");
        }
        put(keys, rest);
        rest.remove_suffix(6);
        EXPECT_EQ(keyboard.read(kLong, {}).text, "text\033[2\033[2" + std::string(rest));
    }
    put(keys, "\033[200~pasted\003\033[201~k");
    EXPECT_FALSE(keyboard.interrupt_waiting());
}

}  // namespace
}  // namespace tpu
