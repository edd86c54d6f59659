#include "app/curses/key_decoder.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>

#include "support/session.h"

namespace tpu {
namespace {

constexpr int kEscape = 27;
using Codes = std::vector<int>;

class Decoding : public testing::Test {
  protected:
    // All events up to the first answer that is none.
    Codes keys(std::string_view bytes) {
        decoder.feed(bytes);
        Codes codes;
        for (Event event; (event = decoder.next()).kind != Event::Kind::none; last = event) {
            codes.push_back(code_of(event));
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
    Event last;
};

TEST_F(Decoding, takes_sequences_of_the_table_and_single_bytes) {
    EXPECT_EQ(keys("a\033[A\033OA\177\033[1~\033[1;2D\r"),
              (Codes{'a', kKeyUp, kKeyUp, kKeyBackspace, kKeyHome, 393, '\r'}));
    EXPECT_FALSE(decoder.is_incomplete());
    EXPECT_EQ(keys("\xc3\xa4\xff"), (Codes{0xc3, 0xa4, 0xff}));
    EXPECT_EQ(keys({"\0", 1}), (Codes{0}));
}

TEST_F(Decoding, a_sequence_may_come_byte_by_byte) {
    for (char byte : std::string_view("\033[1;2")) {
        EXPECT_EQ(keys({&byte, 1}), Codes{});
        EXPECT_TRUE(decoder.is_incomplete());
    }
    EXPECT_EQ(keys("Dx"), (Codes{393, 'x'}));
}

TEST_F(Decoding, a_sequence_that_is_cut_short_is_single_keys) {
    EXPECT_EQ(keys("\033[1"), Codes{});
    EXPECT_EQ(decoder.next_now().key, kEscape);
    EXPECT_EQ(keys(""), (Codes{'[', '1'}));
    EXPECT_EQ(decoder.next_now().kind, Event::Kind::none);
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
    EXPECT_TRUE(decoder.is_incomplete());
    EXPECT_EQ(keys("9Rx"), Codes{'x'});
}

TEST_F(Decoding, mouse_reports_tell_cell_and_first_button) {
    auto event = [&](std::string_view bytes) {
        EXPECT_EQ(keys(bytes), Codes{kKeyMouse});
        return std::array<int, 3>{last.mouse.row, last.mouse.col, last.mouse.clicked};
    };
    EXPECT_EQ(event("\033[<0;300;4M"), (std::array{3, 299, 1}));
    EXPECT_EQ(event("\033[<0;300;4m"), (std::array{3, 299, 0}));
    EXPECT_EQ(event("\033[<16;1;1M"), (std::array{0, 0, 1}));  // with Ctrl
    EXPECT_EQ(event("\033[<2;1;1M"), (std::array{0, 0, 0}));
    EXPECT_EQ(event("\033[<64;1;1M"), (std::array{0, 0, 0}));  // wheel
    EXPECT_EQ(event("\033[M !\""), (std::array{1, 0, 1}));
    EXPECT_EQ(event("\033[M#!\""), (std::array{1, 0, 0}));
    EXPECT_EQ(keys("\033[M !"), Codes{});
    EXPECT_TRUE(decoder.is_incomplete());
    EXPECT_EQ(keys("!x"), (Codes{kKeyMouse, 'x'}));
    EXPECT_EQ(keys("\033[<junkM"), (Codes{'u', 'n', 'k', 'M'}));
}

TEST_F(Decoding, a_paste_is_one_key_with_line_feeds) {
    EXPECT_EQ(keys("a\033[200~x\r\ny\rz\n\033[A\033[20\r\033[201~"), (Codes{'a', kKeyPaste}));
    EXPECT_EQ(last.text, "x\ny\nz\n\033[A\033[20\n");
    EXPECT_EQ(keys("b"), Codes{'b'});
}

TEST_F(Decoding, marks_of_a_paste_may_be_cut_anywhere) {
    std::string all = "1\033[200~text\033[201~";
    for (std::size_t cut = 1; cut < all.size(); ++cut) {
        Codes codes = keys(all.substr(0, cut));
        for (int key : keys(all.substr(cut))) codes.push_back(key);
        EXPECT_EQ(codes, (Codes{'1', kKeyPaste})) << cut;
        EXPECT_EQ(last.text, "text") << cut;
    }
}

TEST_F(Decoding, a_paste_without_an_end_loses_nothing) {
    EXPECT_EQ(keys("\033[200~text\033[20"), Codes{});
    EXPECT_TRUE(decoder.pasting());
    EXPECT_EQ(decoder.next_now().text, "text\033[20");
    EXPECT_EQ(keys("x"), Codes{'x'});
}

TEST_F(Decoding, bytes_of_a_character_are_one_key) {
    decoder = KeyDecoder({}, Charset::utf8);
    for (std::string_view bytes :
         {"\xc3\xa4", "\xe2\x82\xac", "\xe2\x82", "\xc3", "\xff", "\xa4"}) {
        const bool cut = bytes == "\xe2\x82" || bytes == "\xc3";
        EXPECT_EQ(keys(bytes).size(), cut ? 0U : 1U);
        EXPECT_EQ(decoder.is_incomplete(), cut);
        if (cut) last = decoder.next_now();
        EXPECT_EQ(last.text, bytes);
        EXPECT_EQ(last.key, static_cast<unsigned char>(bytes.front()));
    }
    EXPECT_EQ(keys("\xe2\x82x\xc3\033\xf0\x9f\x98"), (Codes{0xe2, 'x', 0xc3, kEscape}));
    EXPECT_EQ(keys("\x80\x80"), (Codes{0xf0, 0x80}));
}

// A search from the start for each piece would take minutes.
TEST_F(Decoding, a_large_paste_takes_time_by_its_size) {
    const std::string piece(1000, '\033');
    auto start = std::chrono::steady_clock::now();
    keys("\033[200~");
    for (int i = 0; i < 4000; ++i) keys(piece);
    EXPECT_EQ(keys("\033[201~"), Codes{kKeyPaste});
    EXPECT_EQ(last.text.size(), 4000 * piece.size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace tpu
