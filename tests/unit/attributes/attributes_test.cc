// What SET does where a script cannot look, and whether the tables are whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "attributes/attribute.h"
#include "support/session.h"

namespace tpu {
namespace {

struct Attributes : testing::Test {
    void run(const std::string& statement) { session.editor.parser.execute_statement(statement); }
    void define(const std::string& name, const std::string& body) {
        session.editor.parser.compile_text("PROCEDURE " + name + "\n" + body + "\nENDPROCEDURE");
    }
    Session session{{"abcdef", "", "ghi"}};
};

TEST_F(Attributes, the_bell_rings_unless_it_is_off) {
    run("SET(BELL, OFF)");
    run("BELL");
    EXPECT_EQ(session.terminal.beeps, 0);
    run("SET(BELL, ON)");
    run("BELL");
    EXPECT_EQ(session.terminal.beeps, 1);
}

TEST_F(Attributes, the_timer_runs_its_statement_until_it_is_switched_off) {
    define("tick", "COPY_TEXT(\"t\")");
    run("SET(TIMER, 100, \"IF CURRENT_ROW = 1 THEN tick; ENDIF\")");
    run("SET(TIMER, 100)");  // keeps the statement
    session.clock.step = std::chrono::milliseconds(60);
    session.terminal.keys.assign(6, kNoKey);
    session.terminal.before_key = [&, passes = 0]() mutable {
        if (++passes == 5) run("SET(TIMER, 0)");
    };
    session.editor.run();
    EXPECT_EQ(session.lines()[0], "ttabcdef");
}

TEST_F(Attributes, the_timer_leaves_time_for_keys_however_long_it_takes) {
    define("tick", "session_ticks := session_ticks + 1; SLEEP(5)");
    run("session_ticks := 0");
    run("SET(TIMER, 1000, \"tick\")");
    session.clock.step = std::chrono::milliseconds(300);
    session.terminal.keys = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l'};
    session.editor.run();
    EXPECT_EQ(session.lines()[0], "abcdefghijklabcdef");
    long long ticks = variable(session.editor, "SESSION_TICKS")->as_int();
    EXPECT_GE(ticks, 1);
    EXPECT_LE(ticks, 4);
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
    for (const Attribute* row : all_attributes()) {
        for (std::string_view name : row->items) {
            if (name.empty()) continue;
            bool given = false;
            std::istringstream objects(
                "0 \"\" here gone lost range void array program before learned process shown far "
                "empty pattern SCREEN BUFFERS WINDOWS COMMAND_LINE \"TPU$KEY_MAP\" "
                "\"TPU$KEY_MAP_LIST\"");
            for (std::string object; objects >> object;) {
                std::string call = "GET_INFO(" + object + ", \"";
                call.append(name) += "\")";
                Value value = value_of(session.editor, call);
                given = given || !tpu_value_is_unspecified(value);
            }
            EXPECT_TRUE(given) << name;
        }
    }
}

TEST(AttributeTables, rows_are_whole_and_no_name_occurs_twice) {
    std::set<std::string_view> keywords(ignored_set_keywords().begin(),
                                        ignored_set_keywords().end());
    EXPECT_EQ(keywords.size(), ignored_set_keywords().size());
    std::set<std::pair<std::string_view, Of>> items;
    for (const Attribute* row : all_attributes()) {
        bool is_field = row->field.index() > 0;
        EXPECT_TRUE(row->items[0].empty() || row->get || is_field) << row->items[0];
        EXPECT_EQ(row->gives.ends_with('.'), row->is_readable()) << row->gives;
        for (std::string_view name : row->items) {
            EXPECT_TRUE(name.empty() || items.insert({name, row->of}).second) << name;
        }
        for (const auto& [name, help, command] : row->keywords) {
            if (name.empty()) continue;
            EXPECT_TRUE(row->set || is_field) << name;
            EXPECT_TRUE(help.ends_with('.')) << name;
            EXPECT_TRUE(keywords.insert(name).second) << name;
            std::string words = "SET " + std::string(name);
            std::replace(words.begin(), words.end(), '_', ' ');
            EXPECT_TRUE(command.form.empty() || command.form.starts_with(words)) << name;
        }
    }
}

}  // namespace
}  // namespace tpu
