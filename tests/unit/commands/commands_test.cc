// The commands of the command line, without a terminal.
#include <gtest/gtest.h>

#include "commands/command_words.h"
#include "keys/key_code.h"
#include "support/session.h"

namespace tpu {
namespace {

struct Commands : testing::Test {
    // Runs a command line; the message it leaves.
    std::string run(const std::string& line) {
        editor.message.clear();
        editor.execute_command(line);
        return editor.message;
    }
    void go(std::uint64_t row, std::uint64_t column) {
        editor.current_buffer->cursor_row = row;
        editor.current_buffer->cursor_column = column;
    }
    void select(Position from, Position to) {
        go(from.row, from.column);
        editor.current_buffer->select();
        go(to.row, to.column);
    }
    std::string text() { return editor.current_buffer->text().text(); }

    Session session{{"one two", "three", "four five six"}};
    TPUEditor& editor = session.editor;
    Buffer& main = *session.buffer;
};

TEST(CommandNames, are_completed_when_only_one_begins_so) {
    auto resolve = &resolve_command;
    for (const Command* command : all_commands()) {
        const std::string name(command->first_word());
        EXPECT_EQ(resolve(name), name);
    }
    for (const char* stays : {"", "SEL", "E", "INS", "COPY", "C", "UND", "NOSUCH", "ONE", "GO",
                              // Words that begin a form, also where a longer name begins so.
                              "REMOVE", "UNDEFINE", "CHECK", "REMOVE_KEY"}) {
        EXPECT_EQ(resolve(stays), stays);
    }
    for (auto [word, name] : {std::pair{"EXI", "EXIT"},
                              {"SEARCH_", "SEARCH_QUIETLY"},
                              {"T", "TOP"},
                              {"REMOVE_KE", "REMOVE_KEY_MAP"}}) {
        EXPECT_EQ(resolve(word), name);
    }
}

TEST_F(Commands, replacing_ends_with_ctrl_c_and_can_be_undone) {
    main.set_text(LineStore::from_text(std::string(1000, 'o')));
    session.clock.step = std::chrono::milliseconds(100);
    session.terminal.keys = {control('C')};
    EXPECT_EQ(run("REPLACE o 0 ALL"), "Replaced 256, stopped by Ctrl-C");
    run("UNDO");
    EXPECT_EQ(text(), std::string(1000, 'o'));
}

// Built-ins end all that runs, commands only themselves. Both leave the text as it was.
TEST_F(Commands, what_takes_long_ends_with_ctrl_c) {
    std::string long_text;
    while (long_text.size() < 5'000'000) long_text += "ab c\n";
    for (const char* line :
         {"SHIFT(1)", "CHANGE_CASE(CURRENT_BUFFER)", "TRANSLATE(CURRENT_BUFFER, \"a\", \"b\")",
          "FILL()", "TOP; SEARCH(SPAN(\"c\") + \"d\")", "SEARCH(ANY(\"c\") + \"d\", REVERSE)",
          "COPY_TEXT(SELECT_RANGE + FAO(\"!_\"))", "SHIFT RIGHT", "FILL", "CHANGE CASE UPPER",
          "BOX COPY", "BOX CUT", "BOX PASTE", "FIND ANY(\"c\") + \"d\""}) {
        main.set_text(LineStore::from_text(long_text));
        main.box_register = std::vector<std::string>(1000, "box");
        select({0, 0}, {main.text().size() - 2, 2});
        if (std::string_view(line).ends_with("+ \"d\"")) go(0, 0);
        main.box_select = std::string_view(line).starts_with("BOX");
        session.clock.step = std::chrono::milliseconds(100);
        session.terminal.keys = {control('C')};
        std::string message = run(line);
        EXPECT_TRUE(message == "ABORT" || message == "Stopped by Ctrl-C") << line << message;
        EXPECT_TRUE(session.terminal.keys.empty()) << line;
        EXPECT_TRUE(main.text() == LineStore::from_text(long_text)) << line;
        EXPECT_EQ(main.box_register.size(), 1000u) << line;
        EXPECT_FALSE(editor.parser.interrupted) << line;
    }
}

TEST_F(Commands, make_no_more_text_than_there_can_be) {
    editor.parser.longest_text = 100'000;
    std::string words;
    while (words.size() < 4'000) words += "o o ";
    run("SET MARGINS 65535 3");
    run("SET TAB STOPS 65535");
    for (const char* line : {"SHIFT RIGHT 65535", "SHIFT(2147483647)", "FILL", "FILL()",
                             "COPY_TEXT(FAO(\"!_!_!_\"))", "SET(WRAP); COPY_TEXT(\"o o o o\")",
                             "BOX PASTE", "REPLACE o 123456789012345678901234567890 ALL"}) {
        main.set_text(LineStore::from_text(words + "\n\n" + words));
        const LineStore before = main.text();
        main.box_register = std::vector<std::string>(100, "box");
        select({0, 4'000}, {2, 4'000});
        std::string message = run(line);
        EXPECT_TRUE(message.ends_with(" would make the text larger by more than 1 GB"))
            << line << ": " << message;
        EXPECT_LT(main.text().bytes(), 120'000u) << line;
        if (message.starts_with("Replaced")) run("UNDO");
        EXPECT_TRUE(main.text() == before) << line;
        main.auto_wrap = false;
    }
}

// Commands that leave the editor, or write files wherever one is named.
bool acts_outside(const Command& command) {
    std::string_view word = command.first_word();
    return word == "SPAWN" || word == "DCL" || word == "WRITE" || word == "SAVE";
}

// Whatever stands behind a command, and wherever the cursor is: nothing breaks, and what
// cannot be changed is not.
TEST_F(Commands, take_odd_arguments) {
    const std::string before = text();
    auto run_on = [&](const std::string& line, bool modifiable, bool selected) {
        editor.position(&main);
        main.set_text(LineStore::from_text(before));
        main.modifiable = modifiable;
        main.select_anchor.reset();
        if (selected) select({2, 40}, {0, 1});
        main.box_select = selected;
        run(line);
        main.text().check_invariants();
    };
    for (const Command* command : all_commands()) {
        if (acts_outside(*command)) continue;
        for (const char* argument :
             {"", " 0", " -1", " 99999999999999999999", " \"", " \"\" \"\" ALL", " \xc3", " TO",
              " a b c d e f", " TO \xe2\x82\xac", " ANY(", " gold_", " /nowhere/at/all"}) {
            std::string line = std::string(command->words) + argument;
            SCOPED_TRACE(line);
            for (bool selected : {false, true}) {
                run_on(line, true, selected);
                run_on(line, false, selected);
                EXPECT_EQ(main.text().text(), before);
            }
            editor.current_buffer = nullptr;
            run(line);
        }
    }
    editor.current_buffer = nullptr;
    EXPECT_EQ(run("TOP"), "There is no buffer");
    EXPECT_EQ(run("SET INSERT"), "There is no buffer");
    EXPECT_EQ(run("SET LINE NUMBER on"), "Line numbers on");
}

}  // namespace
}  // namespace tpu
