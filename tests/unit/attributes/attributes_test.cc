// What SET does where a script cannot look, and the document of the two tables.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "attributes/get_info_table.h"
#include "attributes/set_table.h"
#include "support/session.h"

namespace tpu {
namespace {

struct Attributes : testing::Test {
    void run(const std::string& statement) { session.editor.parser.execute_statement(statement); }
    void define(const std::string& name, const std::string& body) {
        session.editor.parser.compile_text("PROCEDURE " + name + "\n" + body + "\nENDPROCEDURE");
    }
    // The attributes of the cells that show the first columns of a row.
    std::string attrs(int row, int columns) {
        session.editor.draw();
        std::string result;
        for (int col = 0; col < columns; ++col) {
            Attr attr = session.terminal.shown.text.at(row, col).attr;
            result += has(attr, Attr::bold) ? has(attr, Attr::underline) ? 'B' : 'b' : '.';
        }
        return result;
    }

    Session session{{"abcdef", "", "ghi"}};
};

TEST_F(Attributes, video_is_for_the_selection_or_else_the_line) {
    run("MOVE_HORIZONTAL(2)");
    run("SELECT");
    run("MOVE_HORIZONTAL(2)");
    run("SET(VIDEO, bold)");
    EXPECT_EQ(attrs(0, 7), "..bb...");
    session.buffer->select_anchor.reset();
    run("SET(VIDEO, \"bold underline\")");
    run("SET(VIDEO, BOLD, UNDERLINE)");
    EXPECT_EQ(attrs(0, 7), "BBBBBB.");
    EXPECT_EQ(session.buffer->video_regions.size(), 2u);
    run("SET(VIDEO, BOLD, GREEN)");
    run("SET(VIDEO)");
    EXPECT_EQ(session.buffer->video_regions.size(), 2u);
}

TEST_F(Attributes, video_off_removes_what_touches_the_line_and_no_more) {
    run("SELECT");
    run("END_OF");
    run("SET(VIDEO, BOLD)");
    session.buffer->select_anchor.reset();
    run("SET(VIDEO, BOLD)");
    run("MOVE_VERTICAL(-1)");
    run("SET(VIDEO, OFF)");
    EXPECT_EQ(attrs(0, 7), ".......");
    EXPECT_EQ(attrs(2, 4), "bbb.");
}

TEST_F(Attributes, the_terminal_reports_the_mouse_while_it_is_on) {
    run("SET(MOUSE, ON)");
    EXPECT_TRUE(session.terminal.reports_mouse);
    run("SET(MOUSE, OFF)");
    EXPECT_FALSE(session.terminal.reports_mouse);
}

TEST_F(Attributes, the_bell_rings_unless_it_is_off) {
    run("SET(BELL, OFF)");
    run("BELL");
    EXPECT_EQ(session.terminal.beeps, 0);
    run("SET(BELL, ON)");
    run("BELL");
    EXPECT_EQ(session.terminal.beeps, 1);
}

TEST_F(Attributes, procedures_run_around_keys_and_for_those_without_meaning) {
    define("before", "COPY_TEXT(\"<\")");
    define("unknown", "COPY_TEXT(\"?\")");
    run("SET(PRE_KEY_PROCEDURE, \"before()\")");
    run("SET(POST_KEY_PROCEDURE, \"COPY_TEXT(1 + 1)\")");
    run("SET(UNDEFINED_KEY, unknown)");
    session.press("x<F9>");
    EXPECT_EQ(session.lines()[0], "<x2<?2abcdef");
}

TEST_F(Attributes, the_timer_runs_until_it_is_switched_off) {
    run("SET(TIMER, 100, \"COPY_TEXT(1)\")");
    session.clock.step = std::chrono::milliseconds(60);
    session.terminal.keys = {kNoKey, kNoKey, kNoKey, kNoKey};
    session.terminal.before_key = [&, passes = 0]() mutable {
        if (++passes == 3) run("SET(TIMER, 0)");
    };
    session.editor.run();
    EXPECT_EQ(session.lines()[0], "1abcdef");
}

TEST_F(Attributes, the_timer_runs_blocks_and_procedures_and_keeps_its_own) {
    define("tick", "COPY_TEXT(\"t\")");
    run("SET(TIMER, 100, \"IF CURRENT_ROW = 1 THEN tick; ENDIF\")");
    run("SET(TIMER, 100)");
    session.clock.step = std::chrono::milliseconds(60);
    session.terminal.keys = {kNoKey, kNoKey, kNoKey, kNoKey};
    session.editor.run();
    EXPECT_EQ(session.lines()[0], "ttabcdef");
}

TEST_F(Attributes, the_timer_leaves_time_for_keys_however_long_it_takes) {
    using namespace std::chrono_literals;
    define("tick", "session_ticks := session_ticks + 1; SLEEP(5)");
    run("session_ticks := 0");
    run("SET(TIMER, 1000, \"tick\")");
    session.clock.step = 300ms;
    session.terminal.keys = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l'};
    session.editor.run();
    EXPECT_EQ(session.lines()[0], "abcdefghijklabcdef");
    long long ticks = session.editor.parser.lookup_var("SESSION_TICKS")->as_int();
    EXPECT_GE(ticks, 1);
    EXPECT_LE(ticks, 4);
}

TEST_F(Attributes, the_shift_key_is_a_second_gold) {
    run("SET(SHIFT_KEY, \"F6\")");
    session.press("<F6>E");
    EXPECT_EQ(session.cursor(), (Position{2, 3}));
    run("SET(SHIFT_KEY, KEY_NAME(\"CTRL_K\"))");
    session.press("<CTRL_K>T");
    EXPECT_EQ(session.cursor(), (Position{0, 0}));
    run("SET(SHIFT_KEY, \"NO_KEY\")");
    EXPECT_EQ(session.editor.message, "Unknown key name");
    EXPECT_EQ(session.editor.shift_key, control('K'));
    run("SET(SHIFT_KEY, OFF)");
    EXPECT_EQ(session.editor.shift_key, 0);
}

// Objects of all kinds, those that lead nowhere too: some of them have each item.
TEST_F(Attributes, every_item_can_be_asked_of_every_object) {
    session.editor.parser.compile_text(R"(
        here := CURRENT_BUFFER; gone := CREATE_BUFFER("gone"); lost := MARK
        range := CREATE_RANGE(MARK, END_OF(here)); void := CREATE_RANGE(MARK, MARK)
        DELETE(gone); DELETE(void); array := CREATE_ARRAY(2); program := COMPILE("TOP")
        MOVE_VERTICAL(2); before := MARK; ERASE_LINE
        LEARN_BEGIN; learned := LEARN_END; process := CREATE_PROCESS("exit 0", here)
        shown := CURRENT_WINDOW; far := CREATE_WINDOW(9223372036854775807, 9223372036854775807)
        MAP(far, here); empty := CREATE_WINDOW(-5, -7, OFF); pattern := SPAN("a"))");
    for (const InfoItem& row : info_items()) {
        for (std::string_view name : row.names) {
            if (name.empty()) continue;
            bool given = false;
            for (const char* object : {"0",
                                       "\"\"",
                                       "here",
                                       "gone",
                                       "lost",
                                       "range",
                                       "void",
                                       "array",
                                       "program",
                                       "before",
                                       "learned",
                                       "process",
                                       "shown",
                                       "far",
                                       "empty",
                                       "pattern",
                                       "SCREEN",
                                       "BUFFERS",
                                       "WINDOWS",
                                       "COMMAND_LINE",
                                       "\"TPU$KEY_MAP\"",
                                       "\"TPU$KEY_MAP_LIST\""}) {
                std::string call = std::string("GET_INFO(").append(object) + ", \"";
                call.append(name) += "\")";
                Value value = session.editor.parser.eval_expression(call);
                given = given || !tpu_value_is_unspecified(value);
            }
            EXPECT_TRUE(given) << name;
        }
    }
}

// The rows that a document shall have for the tables of the code.
std::vector<std::string> document_rows() {
    std::vector<std::string> rows;
    auto code = [](std::string_view text) { return "`" + std::string(text) + "`"; };
    for (const SetKeyword& row : set_keywords()) {
        rows.push_back("| " + code(row.name) + " | " + std::string(row.value) + " | " +
                       (row.takes_buffer ? "yes" : "") + " | " + std::string(row.help) + " |");
    }
    for (std::string_view name : ignored_set_keywords()) rows.push_back(code(name));
    for (const InfoItem& row : info_items()) {
        std::string names;
        for (std::string_view name : row.names) {
            if (!name.empty()) names += (names.empty() ? "" : ", ") + code(name);
        }
        rows.push_back("| " + names + " | " + std::string(name_of(row.of)) + " | " +
                       std::string(row.help) + " |");
    }
    return rows;
}

TEST(AttributeTables, every_row_has_its_help_and_stands_in_the_document) {
    auto root = std::filesystem::path(__FILE__).parent_path() / "../../..";
    std::ifstream file(root / "docs/attributes.md");
    std::stringstream text;
    text << file.rdbuf();
    for (const std::string& row : document_rows()) {
        EXPECT_NE(text.str().find(row), std::string::npos) << row;
    }
    for (const SetKeyword& row : set_keywords()) EXPECT_TRUE(row.help.ends_with('.')) << row.name;
    for (const InfoItem& row : info_items()) EXPECT_TRUE(row.help.ends_with('.')) << row.names[0];
}

TEST(AttributeTables, no_name_occurs_twice) {
    std::set<std::string_view> keywords;
    for (const SetKeyword& row : set_keywords()) EXPECT_TRUE(keywords.insert(row.name).second);
    for (std::string_view name : ignored_set_keywords()) {
        EXPECT_TRUE(keywords.insert(name).second) << name;
    }
    std::set<std::pair<std::string_view, Of>> items;
    for (const InfoItem& row : info_items()) {
        for (std::string_view name : row.names) {
            if (!name.empty()) {
                EXPECT_TRUE(items.insert({name, row.of}).second) << name;
            }
        }
    }
}

}  // namespace
}  // namespace tpu
