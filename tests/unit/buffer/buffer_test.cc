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

TEST(Cursor, crosses_one_line_end_at_most) {
    Text text({"first", "second", "third", "abcdef"}, {3, 2});
    text.move_horizontal(-5);
    EXPECT_EQ(text.cursor(), (Position{2, 5}));
    text.move_horizontal(3);
    EXPECT_EQ(text.cursor(), (Position{3, 0}));
    text.move_horizontal(10);
    EXPECT_EQ(text.cursor(), (Position{3, 6}));
    text.go(0, 2);
    text.move_horizontal(-3);
    EXPECT_EQ(text.cursor(), (Position{0, 0}));
    text.move_vertical(INT32_MAX);
    EXPECT_EQ(text.cursor_row, 3u);
    text.move_vertical(INT32_MIN);
    EXPECT_EQ(text.cursor_row, 0u);
    text.go(2, 5);
    text.move_vertical(-1);
    text.move_vertical(-1);
    EXPECT_EQ(text.cursor(), (Position{0, 5}));
}

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

TEST(Cursor, knows_its_offset_and_character) {
    Text text({"ab", "", "cde"}, {2, 1});
    EXPECT_EQ(text.current_offset_in_line(), 5u);
    EXPECT_EQ(text.current_character(), 'd');
    text.go(1, 0);
    EXPECT_EQ(text.current_character(), '\n');
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

TEST(Lines, are_split_joined_and_erased) {
    Text text({"one", "two", "three"}, {1, 1});
    text.split_line();
    EXPECT_EQ(text.all(), (Lines{"one", "t", "wo", "three"}));
    EXPECT_EQ(text.cursor(), (Position{2, 0}));
    text.append_line();
    EXPECT_EQ(text.all(), (Lines{"one", "two", "three"}));
    EXPECT_EQ(text.cursor(), (Position{1, 1}));
    text.go(2, 5);
    text.erase_line();
    EXPECT_EQ(text.cursor(), (Position{1, 3}));
    text.erase_line();
    text.erase_line();
    EXPECT_EQ(text.all(), (Lines{""}));
    EXPECT_EQ(text.cursor(), (Position{0, 0}));
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

TEST(Lines, stay_when_the_buffer_may_not_be_modified) {
    Text text({"one two", "three"}, {1, 2});
    text.modifiable = false;
    text.right_margin = 2;
    text.free_cursor = true;
    text.box_register = {"x"};
    text.split_line();
    text.append_line();
    text.erase_line();
    text.erase_n_characters(1);
    text.copy_text('x');
    text.copy_text("x");
    text.insert_tab();
    text.go(0, 6);
    text.wrap_current_line();
    text.cursor_column = 20;
    text.materialize_cursor_column();
    text.erase_range(text.range({0, 0}, {1, 0}));
    text.change_case_range(text.range({0, 0}, {1, 0}), Buffer::Case::upper);
    text.translate_range(text.range({0, 0}, {1, 0}), "o", "0");
    text.change_case_buffer(Buffer::Case::upper);
    text.change_case_word(Buffer::Case::upper);
    text.translate("o", "0");
    text.fill_range(text.range({0, 0}, {1, 0}), 1, 4);
    text.box_cut(0, 1, 0, 2);
    text.box_paste(0, 0);
    EXPECT_EQ(text.all(), (Lines{"one two", "three"}));
    EXPECT_FALSE(text.modified);
    text.shift_columns(1);  // which does not ask
    EXPECT_EQ(text.all(), (Lines{" one two", " three"}));
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

// What sets the modified flag although it may change nothing, and what does not.
TEST(Modified, is_set_by_every_operation_that_says_so) {
    Text other({"x"});
    struct Case {
        const char* name;
        void (*run)(Text&, Text&);
        bool modified;
    };
    const Case cases[] = {
        {"erase_range",
         [](Text& t, Text&) {
             t.erase_range(t.range({0, 1}, {0, 1}));
         },
         true},
        {"of another",
         [](Text& t, Text& o) {
             t.erase_range(o.range({0, 0}, {0, 1}));
         },
         false},
        {"box_paste", [](Text& t, Text&) { t.box_register = {""}, t.box_paste(0, 0); }, true},
        {"no box", [](Text& t, Text&) { t.box_paste(0, 0); }, false},
        {"shift", [](Text& t, Text&) { t.shift_columns(0); }, true},
        {"translate", [](Text& t, Text&) { t.translate("z", "y"); }, true},
        {"translate nothing", [](Text& t, Text&) { t.translate("", "y"); }, false},
        {"case",
         [](Text& t, Text&) {
             t.change_case_range(t.range({7, 0}, {9, 0}), {});
         },
         true},
        {"erase at the end", [](Text& t, Text&) { t.go(0, 3), t.erase_n_characters(9); }, false},
        {"append", [](Text& t, Text&) { t.append_line(); }, false},
    };
    for (const Case& c : cases) {
        Text text({"abc"});
        c.run(text, other);
        EXPECT_EQ(text.modified, c.modified) << c.name;
        EXPECT_EQ(text.all(), (Lines{"abc"})) << c.name;
    }
    EXPECT_EQ(other.text_of_range(Text({"abc"}).range({0, 0}, {0, 1})), "");
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

TEST(Typing, of_tabs_goes_to_the_next_stop) {
    Text text({""});
    text.insert_tab();
    EXPECT_EQ(text.cursor_column, 8u);
    text.insert_tab();
    EXPECT_EQ(text.cursor_column, 16u);
    text.set_text(LineStore());
    text.go(0, 0);
    text.tab_stops = {5, 10};
    text.insert_tab();
    EXPECT_EQ(text.cursor_column, 4u);
    text.insert_tab();
    EXPECT_EQ(text.cursor_column, 9u);
    text.insert_tab();
    EXPECT_EQ(text.all(), (Lines{std::string(16, ' ')}));
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

TEST(Characters, of_several_bytes_are_one_for_the_keys) {
    Text text({"a\xc3\xa9\xe2\x82\xac\xff", "\xc3"}, {0, 0});
    std::vector<std::uint64_t> stops;
    for (int i = 0; i < 5; ++i, text.move_character_right(Charset::utf8)) {
        stops.push_back(text.cursor_column);
    }
    EXPECT_EQ(stops, (std::vector<std::uint64_t>{0, 1, 3, 6, 7}));
    EXPECT_EQ(text.cursor(), (Position{1, 0}));
    for (int i = 0; i < 3; ++i) text.move_character_left(Charset::utf8);
    EXPECT_EQ(text.cursor(), (Position{0, 3}));
    text.cursor_column = 5;  // inside the euro sign
    text.move_character_left(Charset::utf8);
    EXPECT_EQ(text.cursor_column, 3u);
    text.cursor_column = 4;
    text.type_character("\xc3\xbc", Charset::utf8);
    EXPECT_EQ(text.text()[0], "a\xc3\xa9\xc3\xbc\xe2\x82\xac\xff");
    text.cursor_column = 6;
    text.erase_character_at_cursor(Charset::utf8);
    text.erase_character_left(Charset::utf8);
    EXPECT_EQ(text.text()[0], "a\xc3\xa9\xff");
    text.insert_mode = false;
    text.cursor_column = 1;
    text.copy_text("xy", Charset::utf8);
    EXPECT_EQ(text.text()[0], "axy");
    text.erase_character_left(Charset::bytes);
    EXPECT_EQ(text.cursor(), (Position{0, 2}));
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

TEST(Case, is_changed_in_words_ranges_and_buffers) {
    Text text({"  one TWO", "x\xc3\xa9Y"});
    text.change_case_word(Buffer::Case::upper);
    EXPECT_EQ(text.text()[0], "  ONE TWO");
    EXPECT_EQ(text.cursor_column, 5u);
    text.change_case_range(text.range({0, 6}, {1, 1}), Buffer::Case::invert);
    EXPECT_EQ(text.all(), (Lines{"  ONE two", "X\xc3\xa9Y"}));
    text.change_case_buffer(Buffer::Case::lower);
    EXPECT_EQ(text.all(), (Lines{"  one two", "x\xc3\xa9y"}));
    text.go(1, 4);
    text.modified = false;
    text.change_case_word(Buffer::Case::upper);
    EXPECT_TRUE(text.modified);
}

TEST(Translate, maps_bytes_and_keeps_those_without_a_partner) {
    Text text({"abcabc", "ab"});
    text.translate("abc", "x");
    EXPECT_EQ(text.all(), (Lines{"xbcxbc", "xb"}));
    text.translate_range(text.range({0, 1}, {1, 1}), "xb", "\ny");
    EXPECT_EQ(text.all(), (Lines{"xyc\nyc", "\nb"}));
    EXPECT_EQ(text.text().size(), 2u);
    text.translate("", "x");
    EXPECT_EQ(text.text()[1], "\nb");
}

TEST(Shift, moves_every_line) {
    Text text({"abcd", "", "xy"});
    text.shift_columns(2);
    EXPECT_EQ(text.all(), (Lines{"  abcd", "  ", "  xy"}));
    text.shift_columns(-3);
    EXPECT_EQ(text.all(), (Lines{"bcd", "", "y"}));
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

TEST(Boxes, are_cut_and_pasted_with_padding) {
    Text text({"abcdef", "xy", "123456"});
    text.box_cut(2, 0, 4, 2);
    EXPECT_EQ(text.box_register, (Lines{"cd", "", "34"}));
    EXPECT_EQ(text.all(), (Lines{"abef", "xy", "1256"}));
    EXPECT_EQ(text.cursor(), (Position{0, 2}));
    text.box_cut(0, 0, 0, 0);
    EXPECT_EQ(text.box_register, (Lines{""}));
    text.box_register = {"cd", "", "34"};
    text.go(0, 2);
    text.box_paste(2, 5);
    EXPECT_EQ(text.all(), (Lines{"abef", "xy", "1256 cd", "     ", "     34"}));
    EXPECT_EQ(text.cursor(), (Position{0, 2}));
}

}  // namespace
}  // namespace tpu
