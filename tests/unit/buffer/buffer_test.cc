#include "buffer/buffer.h"

#include <gtest/gtest.h>

#include <random>

namespace tpu {
namespace {

using Lines = std::vector<std::string>;

// A buffer with a text and a cursor.
struct Text : Buffer {
    explicit Text(const Lines& text, Position cursor = {}) : Buffer("TEXT", "") {
        set_text(LineStore(text));
        go(cursor.row, cursor.column);
    }
    void go(std::uint64_t row, std::uint64_t column) {
        cursor_row = row;
        cursor_column = column;
    }
    Position cursor() const { return {cursor_row, cursor_column}; }
    Marker at(std::uint64_t row, std::uint64_t column) { return {this, row, column}; }
    Range range(Position from, Position to) {
        return Range(at(from.row, from.column), at(to.row, to.column));
    }
    Lines all() const { return this->text().lines(); }
};

TEST(Cursor, stands_past_the_text_only_when_free_and_not_too_far) {
    Text text({"ab"});
    text.free_cursor = true;
    text.move_horizontal(5000);
    EXPECT_EQ(text.cursor_column, 4096u);
    EXPECT_EQ(text.current_character(), '\n');
    EXPECT_EQ(text.current_offset_in_line(), 2u);
    text.cursor_column = 5;
    text.copy_text('x');
    EXPECT_EQ(text.all(), (Lines{"ab   x"}));
    text.cursor_column = 9;
    text.erase_n_characters(-4);
    EXPECT_EQ(text.all(), (Lines{"ab   "}));
    text.free_cursor = false;
    text.cursor_column = 99;
    text.clamp_cursor();
    EXPECT_EQ(text.cursor_column, 5u);
}

TEST(Ranges, are_put_in_order_and_stay_in_one_buffer) {
    Text text({"abc", "def"}), other({"x"});
    Range backward = text.range({1, 2}, {0, 1});
    EXPECT_EQ(backward.start.position(), (Position{0, 1}));
    Range across(text.at(0, 0), other.at(0, 0));
    EXPECT_FALSE(across.valid);
    EXPECT_EQ(across.buffer(), nullptr);
    EXPECT_TRUE(text.position_in_range(1, 1, backward));
    EXPECT_FALSE(text.position_in_range(1, 2, backward));
    EXPECT_FALSE(other.position_in_range(0, 1, backward));
    text.box_select = true;
    EXPECT_TRUE(text.position_in_range(0, 1, backward));
    EXPECT_FALSE(text.position_in_range(1, 0, backward));
    EXPECT_FALSE(text.position_in_range(0, 2, backward));
}

TEST(Lines, lose_characters_one_by_one_as_in_one_go) {
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i) {
        Lines lines(1 + random() % 4);
        for (std::string& line : lines) line.assign(random() % 4, 'x');
        Position cursor{random() % lines.size(), random() % 6};
        Text steps(lines, cursor), once(lines, cursor);
        steps.free_cursor = once.free_cursor = random() % 2 == 0;
        int n = static_cast<int>(random() % 13) - 6;
        for (int k = 0; k < std::abs(n); ++k) {
            n > 0 ? steps.erase_character_at_cursor() : steps.erase_character_left();
        }
        once.erase_n_characters(n);
        steps.clamp_cursor();
        ASSERT_EQ(once.all(), steps.all());
        ASSERT_EQ(once.cursor(), steps.cursor());
        ASSERT_EQ(once.modified, steps.modified);
    }
}

TEST(Undo, goes_back_two_hundred_snapshots_and_forth_again) {
    Text text({""});
    for (int i = 0; i < 201; ++i) {
        text.push_undo(true);
        text.copy_text('x');
    }
    int undone = 0;
    while (text.undo()) ++undone;
    EXPECT_EQ(undone, 200);
    EXPECT_EQ(text.all(), (Lines{"x"}));
    while (text.redo()) --undone;
    EXPECT_EQ(undone, 0);
    EXPECT_EQ(text.text().length(0), 201u);
    text.modified = false;
    text.undo();
    EXPECT_TRUE(text.modified);
    text.push_undo(false);
    EXPECT_EQ(text.redo_stack.size(), 1u);
    text.push_undo(true);
    EXPECT_TRUE(text.redo_stack.empty());
}

TEST(Undo, keeps_the_view_and_can_be_switched_off) {
    Text text({"one", "two"}, {1, 2});
    text.view_line = 1;
    text.push_undo(true);
    text.beginning_of_buffer();
    EXPECT_EQ(text.view_line, 0u);
    text.undo();
    EXPECT_EQ(text.view_line, 1u);
    text.undo_enabled = false;
    text.push_undo(true);
    EXPECT_EQ(text.undo_stack.size(), 0u);
    EXPECT_EQ(text.redo_stack.size(), 1u);
}

TEST(Cursor, ignores_markers_of_other_buffers) {
    Text text({"abc"}, {0, 1}), other({"abc"});
    text.position(other.at(0, 3));
    EXPECT_EQ(text.cursor(), (Position{0, 1}));
    text.position(text.at(5, 9));
    EXPECT_EQ(text.cursor(), (Position{0, 3}));
    text.free_cursor = true;
    text.cursor_column = 9000;
    EXPECT_EQ(text.mark(false).column, 4096u);
    text.change_case_word(Buffer::Case::upper);
    EXPECT_EQ(text.cursor_column, 4096u);
}

TEST(Typing, survives_margins_and_stops_beyond_all_reason) {
    Text text({"abc def"}, {0, 7});
    text.left_margin = UINT64_MAX;
    text.right_margin = 3;
    text.tab_stops = {UINT64_MAX};
    text.wrap_current_line();
    text.copy_text("\t\r");
    text.fill_range(text.range({0, 0}, {0, 2}), UINT64_MAX, 0);
    EXPECT_EQ(text.text().size(), 2u);
    EXPECT_LT(text.text().bytes(), 1'000'000u);
}

TEST(Typing, of_a_string_is_typing_of_its_characters) {
    std::mt19937 random(3);
    for (int i = 0; i < 2000; ++i) {
        Text steps({"zero", "one two three four", ""}, {random() % 3, random() % 20});
        steps.insert_mode = random() % 2 == 0;
        steps.auto_wrap = random() % 2 == 0;
        steps.free_cursor = random() % 2 == 0;
        steps.right_margin = random() % 12;
        steps.left_margin = random() % 4;
        if (random() % 2 == 0) steps.tab_stops = {3, 5, 11};
        Text once(steps.all(), steps.cursor());
        once.insert_mode = steps.insert_mode;
        once.auto_wrap = steps.auto_wrap;
        once.free_cursor = steps.free_cursor;
        once.right_margin = steps.right_margin;
        once.left_margin = steps.left_margin;
        once.tab_stops = steps.tab_stops;
        std::string typed;
        for (std::uint64_t n = random() % 30; n > 0; --n) typed += "abcd  \t\n\r"[random() % 9];

        Marker start = steps.mark(false);
        for (char c : typed) {
            if (c == '\n') {
                steps.split_line();
            } else if (c == '\t') {
                steps.insert_tab();
            } else {
                steps.copy_text(c);
            }
        }
        Range range = once.copy_text(typed);
        ASSERT_EQ(once.all(), steps.all());
        ASSERT_EQ(once.cursor(), steps.cursor());
        ASSERT_EQ(range.end.position(), steps.cursor());
        ASSERT_EQ(range.start.position(), start.position());
        once.text().check_invariants();
    }
}

TEST(Typing, wraps_at_the_last_blank_before_the_cursor) {
    Text text({"aaa bbb  ccc ddd"}, {0, 11});
    text.right_margin = 10;
    text.left_margin = 3;
    text.wrap_current_line();
    EXPECT_EQ(text.all(), (Lines{"aaa bbb ", "  ccc ddd"}));
    EXPECT_EQ(text.cursor(), (Position{1, 4}));
    Text word({"aaaaaaaaaaaaaaaa bb"}, {0, 14});
    word.right_margin = 10;
    word.wrap_current_line();
    EXPECT_EQ(word.all(), (Lines{"aaaaaaaaaaaaaaaa bb"}));
}

TEST(Fill, makes_lines_no_longer_than_the_margin_but_for_long_words) {
    Text text({"aa bb  cc", "dddddddddddd e", "tail"});
    text.fill_range(text.range({0, 0}, {1, 14}), 3, 9);
    EXPECT_EQ(text.all(), (Lines{"  aa bb", "  cc", "  dddddddddddd", "  e", "tail"}));
    Text margins({"aa bb cc"});
    margins.right_margin = 10;
    margins.fill_range(margins.range({0, 0}, {0, 8}), 5, 0);
    EXPECT_EQ(margins.all(), (Lines{"    aa bb", "    cc"}));
    Text zero({"aa bb cc"});
    zero.right_margin = 5;
    zero.fill_range(zero.range({0, 0}, {0, 8}), 0, 0);
    EXPECT_EQ(zero.all(), (Lines{"aa bb", "cc"}));
    Text empty({""});
    empty.fill_range(empty.range({0, 0}, {0, 0}), 4, 20);
    EXPECT_EQ(empty.all(), (Lines{"   "}));
}

TEST(Ranges, are_read_and_erased_across_lines) {
    Text text({"one", "two", "three"});
    EXPECT_EQ(text.text_of_range(text.range({0, 0}, {2, 0})), "one\ntwo\n");
    EXPECT_EQ(text.text_of_range(text.range({0, 1}, {0, 99})), "ne");
    EXPECT_EQ(text.text_of_range(text.range({0, 1}, {3, 0})), "");
    text.erase_range(text.range({0, 1}, {7, 0}));
    EXPECT_EQ(text.all().size(), 3u);
    text.erase_range(text.range({0, 1}, {2, 2}));
    EXPECT_EQ(text.all(), (Lines{"oree"}));
    EXPECT_EQ(text.cursor(), (Position{0, 1}));
    text.erase_range(text.range({0, 2}, {0, 99}));
    EXPECT_EQ(text.all(), (Lines{"or"}));
}

}  // namespace
}  // namespace tpu
