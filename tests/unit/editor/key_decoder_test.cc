#include "app/curses/key_decoder.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>

namespace tpu {
namespace {

constexpr int kEscape = 27;
using Codes = std::vector<int>;

class Decoding : public testing::Test {
  protected:
    // All keys up to the first answer that is none.
    Codes keys(std::string_view bytes) {
        decoder.feed(bytes);
        Codes codes;
        for (int key = decoder.next(); last = key, key >= 0; key = decoder.next()) {
            codes.push_back(key);
        }
        return codes;
    }

    KeyDecoder decoder{{{"\033[A", kKeyUp},
                        {"\033OA", kKeyUp},
                        {"\033[1~", kKeyHome},
                        {"\033[1;2D", 393},
                        {"\177", kKeyBackspace},
                        {"\001x", kKeyEnd},
                        {"\033[A", kKeyDown},
                        {"\033[<", kKeyMouse}}};
    int last = kNoKey;  // the answer that was no key
};

TEST_F(Decoding, takes_sequences_of_the_table_and_single_bytes) {
    EXPECT_EQ(keys("a\033[A\033OA\177\033[1~\033[1;2D\r"),
              (Codes{'a', kKeyUp, kKeyUp, kKeyBackspace, kKeyHome, 393, '\r'}));
    EXPECT_EQ(last, kNoKey);
    EXPECT_EQ(keys("\xc3\xa4\xff"), (Codes{0xc3, 0xa4, 0xff}));
    EXPECT_EQ(keys({"\0", 1}), (Codes{0}));
}

TEST_F(Decoding, a_sequence_may_come_byte_by_byte) {
    for (char byte : std::string_view("\033[1;2")) {
        EXPECT_EQ(keys({&byte, 1}), Codes{});
        EXPECT_EQ(last, kIncompleteKey);
    }
    EXPECT_EQ(keys("Dx"), (Codes{393, 'x'}));
}

TEST_F(Decoding, a_sequence_that_is_cut_short_is_single_keys) {
    EXPECT_EQ(keys("\033[1"), Codes{});
    EXPECT_EQ(decoder.next_now(), kEscape);
    EXPECT_EQ(keys(""), (Codes{'[', '1'}));
    EXPECT_EQ(decoder.next_now(), kNoKey);
}

TEST_F(Decoding, escape_before_another_key_is_a_key_of_its_own) {
    EXPECT_EQ(keys("\033x"), (Codes{kEscape, 'x'}));
    EXPECT_EQ(keys("\033\033[A"), (Codes{kEscape, kKeyUp}));
    EXPECT_EQ(keys("\033Ox"), (Codes{kEscape, 'O', 'x'}));
    EXPECT_EQ(keys("\033[\n"), (Codes{kEscape, '[', '\n'}));
    EXPECT_EQ(keys("\001y"), (Codes{1, 'y'}));
}

TEST_F(Decoding, unknown_control_sequences_are_dropped_whole) {
    EXPECT_EQ(keys("a\033[1;5Cb\033[?1;2$yc\033[Zd\033[201~e"), (Codes{'a', 'b', 'c', 'd', 'e'}));
    EXPECT_EQ(keys("\033[99;"), Codes{});
    EXPECT_EQ(last, kIncompleteKey);
    EXPECT_EQ(keys("9Rx"), Codes{'x'});
}

TEST_F(Decoding, mouse_reports_tell_cell_and_first_button) {
    auto event = [&](std::string_view bytes) {
        EXPECT_EQ(keys(bytes), Codes{kKeyMouse});
        MouseEvent e = decoder.mouse().value_or(MouseEvent{});
        return std::array<int, 3>{e.row, e.col, e.clicked};
    };
    EXPECT_FALSE(decoder.mouse());
    EXPECT_EQ(event("\033[<0;300;4M"), (std::array{3, 299, 1}));
    EXPECT_EQ(event("\033[<0;300;4m"), (std::array{3, 299, 0}));
    EXPECT_EQ(event("\033[<16;1;1M"), (std::array{0, 0, 1}));  // with Ctrl
    EXPECT_EQ(event("\033[<2;1;1M"), (std::array{0, 0, 0}));
    EXPECT_EQ(event("\033[<64;1;1M"), (std::array{0, 0, 0}));  // wheel
    EXPECT_EQ(event("\033[M !\""), (std::array{1, 0, 1}));
    EXPECT_EQ(event("\033[M#!\""), (std::array{1, 0, 0}));
    EXPECT_EQ(keys("\033[M !"), Codes{});
    EXPECT_EQ(last, kIncompleteKey);
    EXPECT_EQ(keys("!x"), (Codes{kKeyMouse, 'x'}));
    EXPECT_EQ(keys("\033[<junkM"), (Codes{'u', 'n', 'k', 'M'}));
}

TEST_F(Decoding, a_paste_is_one_key_with_line_feeds) {
    EXPECT_EQ(keys("a\033[200~x\r\ny\rz\n\033[A\033[20\r\033[201~b"), (Codes{'a', kKeyPaste, 'b'}));
    EXPECT_EQ(decoder.take_paste(), "x\ny\nz\n\033[A\033[20\n");
    EXPECT_EQ(decoder.take_paste(), "");
}

TEST_F(Decoding, marks_of_a_paste_may_be_cut_anywhere) {
    std::string all = "1\033[200~text\033[201~2";
    for (std::size_t cut = 1; cut < all.size(); ++cut) {
        Codes codes = keys(all.substr(0, cut));
        for (int key : keys(all.substr(cut))) codes.push_back(key);
        EXPECT_EQ(codes, (Codes{'1', kKeyPaste, '2'})) << cut;
        EXPECT_EQ(decoder.take_paste(), "text") << cut;
    }
}

TEST_F(Decoding, a_paste_without_an_end_loses_nothing) {
    EXPECT_EQ(keys("\033[200~text\033[20"), Codes{});
    EXPECT_TRUE(decoder.pasting());
    EXPECT_EQ(decoder.next_now(), kKeyPaste);
    EXPECT_EQ(decoder.take_paste(), "text\033[20");
    EXPECT_EQ(keys("x"), Codes{'x'});
}

// A search from the start for each piece would take minutes.
TEST_F(Decoding, a_large_paste_takes_time_by_its_size) {
    const std::string piece(1000, '\033');
    auto start = std::chrono::steady_clock::now();
    keys("\033[200~");
    for (int i = 0; i < 4000; ++i) keys(piece);
    EXPECT_EQ(keys("\033[201~"), Codes{kKeyPaste});
    EXPECT_EQ(decoder.take_paste().size(), 4000 * piece.size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace tpu
