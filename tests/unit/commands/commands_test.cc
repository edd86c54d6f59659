// The commands of the command line, without a terminal.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <set>

#include "commands/command_words.h"
#include "keys/key_code.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

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
    std::string current() { return editor.current_buffer->name; }

    Session session{{"one two", "three", "four five six"}};
    TPUEditor& editor = session.editor;
    Buffer& main = *session.buffer;
};

TEST(CommandNames, are_completed_when_only_one_begins_so) {
    const char* names[] = {"ADD_KEY_MAP",
                           "BOTTOM",
                           "BUFFER",
                           "COMPILE",
                           "COPY",
                           "COPY_TEXT",
                           "CREATE_KEY_MAP",
                           "CREATE_KEY_MAP_LIST",
                           "CUT",
                           "DELETE",
                           "DEFINE_KEY",
                           "END",
                           "ERASE_LINE",
                           "EXECUTE",
                           "EXIT",
                           "FIND",
                           "GET",
                           "HELP",
                           "INCLUDE",
                           "INSERT",
                           "INSERT_HERE",
                           "KEY_NAME",
                           "LAST_KEY",
                           "LOOKUP_KEY",
                           "MATCH",
                           "MOVE_TEXT",
                           "NEXT",
                           "OVERSTRIKE",
                           "PASTE",
                           "PREVIOUS",
                           "QUIT",
                           "READ_KEY",
                           "REPLACE",
                           "REMOVE_KEY_MAP",
                           "SAVE",
                           "SEARCH",
                           "SEARCH_QUIETLY",
                           "SELECT",
                           "SELECT_RANGE",
                           "SET",
                           "SHOW",
                           "TOP",
                           "UNDEFINE_KEY",
                           "UNDO",
                           "REDO",
                           "RELOAD",
                           "CHECK_DISK",
                           "WRITE"};
    std::set<std::string> expected(std::begin(names), std::end(names)), found;
    for (const Command* command : all_commands()) {
        if (!command->in_full) found.emplace(command->first_word());
    }
    EXPECT_EQ(found, expected);
    auto resolve = &resolve_command;
    for (const std::string& name : expected) EXPECT_EQ(resolve(name), name);
    for (const char* stays : {"", "SEL", "E", "INS", "COPY", "C", "UND", "NOSUCH", "ONE", "GO"}) {
        EXPECT_EQ(resolve(stays), stays);
    }
    EXPECT_EQ(resolve("EXI"), "EXIT");
    EXPECT_EQ(resolve("SEARCH_"), "SEARCH_QUIETLY");
    EXPECT_EQ(resolve("T"), "TOP");
    // Words that begin a form are themselves, also where a longer name begins like them.
    for (const char* word : {"REMOVE", "UNDEFINE", "CHECK", "REMOVE_KEY"}) {
        EXPECT_EQ(resolve(word), word);
    }
    EXPECT_EQ(resolve("REMOVE_KE"), "REMOVE_KEY_MAP");
}

TEST_F(Commands, are_tried_in_layers) {
    editor.parser.compile_text(
        "PROCEDURE top\nMESSAGE(\"my top\")\nENDPROCEDURE\n"
        "PROCEDURE get\nMESSAGE(\"my get\")\nENDPROCEDURE\n"
        "PROCEDURE plus(a, b)\nMESSAGE(STR(a + b))\nENDPROCEDURE\n");
    EXPECT_EQ(run("to"), "my top");
    EXPECT_EQ(run("get"), "GET file");
    EXPECT_EQ(run("execute get"), "my get");
    EXPECT_EQ(run("EXECUTE nothing"), "No such procedure: nothing");
    EXPECT_EQ(run("plus (3, 4)"), "7");
    EXPECT_EQ(run("sel"), "Unknown command: sel");
    EXPECT_EQ(run("x := 1; MESSAGE(STR(x + 1))"), "2");
    EXPECT_EQ(run("   \t "), "");
    // A name that was completed is what the statement begins with.
    EXPECT_EQ(run("  red"), "Nothing to redo");
    EXPECT_EQ(run("und"), "Nothing to undo");
    EXPECT_EQ(run("POSITION (END_OF (CURRENT_BUFFER))"), "");
    EXPECT_EQ(main.cursor_row, 2u);
    run("q := 1");
    EXPECT_EQ(run("MESSAGE(STR(q))"), "1");
    EXPECT_TRUE(editor.running);
    run("q");
    EXPECT_FALSE(editor.running);
}

TEST_F(Commands, of_one_line_are_one_step_of_undo) {
    editor.current_buffer->paste_text = LineStore::from_text("a\nb\n");
    EXPECT_EQ(run("PASTE"), "Pasted");
    EXPECT_EQ(run("REPLACE e E ALL"), "Replaced 4");
    EXPECT_EQ(run("undo"), "Undone");
    EXPECT_EQ(text(), "a\nb\none two\nthree\nfour five six");
    run("undo");
    EXPECT_EQ(text(), "one two\nthree\nfour five six");
}

TEST_F(Commands, find_texts_and_patterns) {
    EXPECT_EQ(run("FIND 'five'"), "Found");
    EXPECT_EQ(session.cursor(), (Position{2, 5}));
    EXPECT_EQ(run("search \"one\""), "Not found");
    run("TOP");
    EXPECT_EQ(run("FIND \"two\" "), "Found");
    EXPECT_EQ(run("FIND six "), "Found");
    run("TOP");
    EXPECT_EQ(run("FIND \"six \""), "Not found");
    EXPECT_EQ(run("FIND LINE_END"), "Found");
    EXPECT_EQ(session.cursor(), (Position{0, 7}));
    EXPECT_EQ(run("FIND span(\"x\") & line_end"), "Found");
    EXPECT_EQ(session.cursor(), (Position{2, 12}));
    EXPECT_EQ(run("FIND any(\"x\")"), "Found");
    EXPECT_EQ(run("bot"), "");
    EXPECT_EQ(run("SEARCH_QUIETLY one"), "");
    EXPECT_EQ(session.cursor(), (Position{2, 13}));
    // The argument begins where the word first occurs, be it in the name of the command.
    run("TOP");
    EXPECT_EQ(run("FIND I"), "Not found");
}

TEST_F(Commands, move_by_line_and_column) {
    EXPECT_EQ(run("GO TO 2"), "Line 2");
    EXPECT_EQ(run("go to column 4"), "Column 4");
    EXPECT_EQ(session.cursor(), (Position{1, 3}));
    EXPECT_EQ(run("WHAT LINE"), "Line 2 of 3  Col 4");
    EXPECT_EQ(run("GO TO COL 99"), "Column 6");
    EXPECT_EQ(run("GO TO 99999999999999999999999"), "Line 3");
    for (const char* line : {"GO TO 0", "GO TO -1", "GO TO x", "GO TO 2x"}) {
        EXPECT_EQ(run(line), "Bad line number");
    }
    EXPECT_EQ(run("GO TO COLUMN 0"), "Bad column number");
    EXPECT_EQ(run("GO TO COL"), "GO TO COLUMN n");
    for (const char* line : {"GO", "GO UP", "GO TO"}) {
        EXPECT_EQ(run(line), "GO TO line | GO TO COLUMN n");
    }
    EXPECT_EQ(session.cursor(), (Position{2, 0}));
}

TEST_F(Commands, cut_copy_and_paste_by_name) {
    select({0, 0}, {0, 3});
    EXPECT_EQ(run("COPY TO first"), "Stored paste \"FIRST\" (3 chars)");
    EXPECT_EQ(run("COPY"), "Copied SELECT_RANGE");
    select({0, 4}, {0, 7});
    EXPECT_EQ(run("CUT TO"), "STORE_PASTE needs a name");
    EXPECT_EQ(run("CUT TO Second"), "Stored paste \"SECOND\" (3 chars)");
    EXPECT_EQ(text(), "one \nthree\nfour five six");
    EXPECT_EQ(run("CUT TO third"), "No SELECT_RANGE");
    EXPECT_EQ(editor.named_pastes.size(), 2u);
    EXPECT_EQ(run("PASTE FROM FIRST"), "Pasted \"FIRST\"");
    EXPECT_EQ(run("RECALL second"), "Recalled paste \"SECOND\"");
    EXPECT_EQ(run("FETCH nothing"), "No named paste \"NOTHING\"");
    EXPECT_EQ(run("INSERT_HERE"), "Pasted");
    EXPECT_EQ(text(), "one onetwo\nthree\nfour five six");
    EXPECT_EQ(run("STORE third"), "Stored paste \"THIRD\" (3 chars)");
    select({1, 0}, {2, 0});
    EXPECT_EQ(run("STORE third"), "Stored paste \"THIRD\" (6 chars)");
    EXPECT_EQ(run("REMOVE"), "Removed selection to paste");
    EXPECT_EQ(run("REMOVE"), "Select a range first");
    EXPECT_EQ(run("RESTORE"), "Pasted");
    EXPECT_EQ(run("PASTE PREVIOUS"), "Pasted previous");
    EXPECT_EQ(run("STORE"), "STORE_PASTE needs a name");
}

TEST_F(Commands, delete_the_selection_or_a_character) {
    editor.current_buffer->set_text(
        LineStore::from_text("\xc3\xa4"
                             "b"));
    EXPECT_EQ(run("DEL"), "");
    EXPECT_EQ(text(), "b");
    select({0, 0}, {0, 1});
    EXPECT_EQ(run("DELETE"), "Deleted selection");
    EXPECT_EQ(run("PASTE"), "Pasted");
    EXPECT_EQ(text(), "b");
}

TEST_F(Commands, fill_shift_and_change_case_of_what_is_selected) {
    main.right_margin = 9;
    EXPECT_EQ(run("FILL"), "Select a range first");
    select({0, 0}, {2, 13});
    EXPECT_EQ(run("FILL"), "Filled");
    EXPECT_EQ(text(), "one two\nthree\nfour five\nsix");
    EXPECT_FALSE(main.select_range());
    go(1, 0);
    EXPECT_EQ(run("SHIFT RIGHT"), "Shifted right");
    EXPECT_EQ(run("SHIFT RIGHT 2"), "Shifted right");
    select({0, 0}, {2, 0});
    EXPECT_EQ(run("SHIFT LEFT 2"), "Shifted left");
    EXPECT_EQ(text(), "e two\n three\nfour five\nsix");
    EXPECT_EQ(run("SHIFT LEFT x"), "Bad column number");
    select({0, 1}, {1, 3});
    EXPECT_EQ(run("CASE UPPER"), "Changed case");
    EXPECT_EQ(text(), "e TWO\n THree\nfour five\nsix");
    main.select_anchor.reset();
    go(1, 1);
    EXPECT_EQ(run("CHANGE CASE"), "Changed case");
    EXPECT_EQ(run("GO TO 3"), "Line 3");
    EXPECT_EQ(run("CHANGE CASE UPPER"), "Changed case");
    EXPECT_EQ(text(), "e TWO\n thREE\nFOUR five\nsix");
}

TEST_F(Commands, cut_and_paste_rectangles) {
    EXPECT_EQ(run("BOX"), "BOX SELECT|CUT|COPY|PASTE");
    EXPECT_EQ(run("BOX PASTE"), "Box paste buffer empty");
    EXPECT_EQ(run("BOX CUT"), "Start with BOX SELECT first");
    go(0, 1);
    EXPECT_EQ(run("BOX SELECT"), "BOX SELECT");
    go(2, 3);
    EXPECT_EQ(run("BOX COPY"), "Box copied");
    EXPECT_EQ(text(), "one two\nthree\nfour five six");
    EXPECT_EQ(run("BOX COPY"), "Start with BOX SELECT first");
    go(0, 7);
    EXPECT_EQ(run("BOX PASTE"), "Box pasted");
    EXPECT_EQ(text(), "one twone\nthree  hr\nfour fiouve six");
    go(0, 2);
    run("BOX SELECT");
    run("SELECT");
    EXPECT_EQ(run("BOX REMOVE"), "Start with BOX SELECT first");
    go(1, 0);
    run("BOX SELECT");
    go(0, 4);
    EXPECT_EQ(run("BOX REMOVE"), "Box cut");
    EXPECT_EQ(text(), "twone\ne  hr\nfour fiouve six");
}

TEST_F(Commands, take_no_character_apart) {
    main.set_text(LineStore::from_text("h\xc3\xa4user\nabcd"));
    const std::string before = text();
    go(0, 2);
    run("SELECT");
    go(1, 0);
    EXPECT_EQ(run("CUT"), "MOVE_TEXT SELECT_RANGE");
    EXPECT_EQ(text(), "habcd");
    go(0, 1);
    run("PASTE");
    EXPECT_EQ(text(), before);
    go(1, 2);
    run("BOX SELECT");
    go(1, 3);
    run("BOX CUT");
    go(0, 2);
    run("BOX PASTE");
    EXPECT_EQ(text(), "hc\xc3\xa4user\nabd");
}

TEST_F(Commands, replace_one_some_or_all_matches) {
    EXPECT_EQ(run("REPLACE o 0"), "Replaced");
    EXPECT_EQ(text(), "one tw0\nthree\nfour five six");
    EXPECT_EQ(run("REPLACE o 0 1"), "Replaced 1");
    EXPECT_EQ(text(), "one tw0\nthree\nf0ur five six");
    EXPECT_EQ(run("REPLACE o 0"), "Replaced");  // from the top
    EXPECT_EQ(text(), "0ne tw0\nthree\nf0ur five six");
    EXPECT_EQ(run("REPLACE 0 00 all"), "Replaced 3");
    EXPECT_EQ(run("REPLACE \"five six\" \"\" ALL"), "Replaced 1");
    EXPECT_EQ(text(), "00ne tw00\nthree\nf00ur ");
    EXPECT_EQ(run("REPLACE none x"), "Not found");
    EXPECT_EQ(run("REPLACE 00 x some"), "REPLACE [old new [count or ALL]]");
    EXPECT_EQ(run("REPLACE 00 x 0"), "REPLACE [old new [count or ALL]]");
    // Overstrike mode and wrapping are for what is typed.
    main.insert_mode = false;
    EXPECT_EQ(run("REPLACE ree ousand"), "Replaced");
    EXPECT_EQ(text(), "00ne tw00\nthousand\nf00ur ");
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

TEST_F(Commands, replace_asks_for_what_is_not_said) {
    session.press("<CTRL_Z>replace<RETURN>three<RETURN>3<RETURN>");
    EXPECT_EQ(editor.message, "Replaced");
    session.press("<CTRL_Z>replace one<RETURN>1<RETURN>");
    EXPECT_EQ(text(), "1 two\n3\nfour five six");
    session.press("<CTRL_Z>replace<RETURN>two<RETURN>2<CTRL_G>");
    EXPECT_EQ(editor.message, "Cancelled");
    EXPECT_EQ(text(), "1 two\n3\nfour five six");
}

TEST_F(Commands, set_attributes) {
    EXPECT_EQ(run("SET OVERSTRIKE"), "OVERSTRIKE mode");
    EXPECT_EQ(run("set insert"), "INSERT mode");
    EXPECT_EQ(run("ins"), "Unknown command: ins");
    EXPECT_EQ(run("OVERS"), "OVERSTRIKE mode");
    run("SET LEFT MARGIN 3");
    run("SET RIGHT MARGIN 60");
    EXPECT_EQ(main.left_margin, 3u);
    EXPECT_EQ(main.right_margin, 60u);
    run("SET MARGINS 0 0");
    EXPECT_EQ(main.left_margin + main.right_margin, 0u);
    run("SET MARGINS 5 70");
    EXPECT_EQ(main.left_margin, 5u);
    EXPECT_EQ(main.right_margin, 70u);
    EXPECT_EQ(run("SET LEFT MARGIN x"), "SET LEFT MARGIN n");
    EXPECT_EQ(run("SET MARGINS 9"), "SET MARGINS left right");
    EXPECT_EQ(main.left_margin, 5u);
    EXPECT_EQ(run("SET RIGHT MARGIN"), "SET RIGHT MARGIN n");
    run("SET TAB STOPS 4");
    EXPECT_EQ(main.tab_interval, 4u);
    run("SET TAB STOPS 9 5");
    EXPECT_EQ(main.tab_stops, (std::vector<std::uint64_t>{5, 9}));
    EXPECT_EQ(run("SET LINE NUMBER ON"), "Line numbers on");
    EXPECT_EQ(run("SET LINE NUMBER"), "Line numbers off");
    EXPECT_EQ(run("SET LINE NUMBER"), "Line numbers on");
    EXPECT_EQ(run("SET LINE NUMBER off"), "Line numbers off");
    run("SET EOB TEXT  the text  of the end ");
    EXPECT_EQ(main.eob_text, "the text  of the end");
    EXPECT_EQ(run("SET GOLD KEY F6"), "Gold key set");
    EXPECT_EQ(editor.gold_key, kKeyF0 + 6);
    EXPECT_EQ(run("SET GOLD KEY F5"), "Unknown key");
    EXPECT_EQ(run("SET GOLD KEY"), "Unknown key");
    EXPECT_EQ(run("SET FOO"), "SET: unknown attribute ");
}

TEST_F(Commands, bind_keys) {
    EXPECT_EQ(run("DEFINE_KEY LEFT"), "DEFINE_KEY key procedure-text");
    EXPECT_EQ(run("DEFINE_KEY F5 TOP"), "Unknown key name");
    EXPECT_EQ(run("def left MOVE_HORIZONTAL(-2)"), "Defined key left => MOVE_HORIZONTAL(-2)");
    EXPECT_EQ(run("LOOKUP_KEY LEFT"), "Key: MOVE_HORIZONTAL(-2) User-defined key");
    EXPECT_EQ(run("LOOKUP_KEY RIGHT"), "Key:  MOVE_HORIZONTAL(1)");
    EXPECT_EQ(run("LOOKUP_KEY"), "LOOKUP_KEY key");
    EXPECT_EQ(run("CREATE_KEY_MAP"), "CREATE_KEY_MAP name");
    EXPECT_EQ(run("CREATE_KEY_MAP mine"), "Created key map mine");
    EXPECT_EQ(run("ADD_KEY_MAP TPU$KEY_MAP_LIST first"), "ADD_KEY_MAP list FIRST|LAST map");
    EXPECT_EQ(run("ADD_KEY_MAP TPU$KEY_MAP_LIST front mine"), "Position must be FIRST or LAST");
    EXPECT_EQ(run("ADD_KEY_MAP TPU$KEY_MAP_LIST first MINE"), "Unknown key map/list");
    EXPECT_EQ(run("ADD_KEY_MAP TPU$KEY_MAP_LIST first mine"), "Added key map");
    EXPECT_EQ(run("ADD_KEY_MAP TPU$KEY_MAP_LIST last mine"), "Added key map");
    run("DEFINE_KEY LEFT TOP");
    EXPECT_EQ(run("LOOKUP_KEY LEFT"), "Key: TOP User-defined key");
    EXPECT_EQ(run("UNDEFINE KEY LEFT"), "Key undefined");
    EXPECT_EQ(run("REMOVE_KEY LEFT"), "Key undefined");
    EXPECT_EQ(run("UNDEFINE_KEY F5"), "Cannot undefine key");
    EXPECT_EQ(run("UNDEFINE KEY"), "UNDEFINE_KEY key");
    EXPECT_EQ(run("LOOKUP_KEY LEFT"), "Key: MOVE_HORIZONTAL(-2) User-defined key");
    EXPECT_EQ(run("REMOVE_KEY_MAP TPU$KEY_MAP_LIST mine"), "Removed key map");
    EXPECT_EQ(editor.current_key_map_list->maps.size(), 1u);
    EXPECT_EQ(run("REMOVE_KEY_MAP TPU$KEY_MAP_LIST"), "REMOVE_KEY_MAP list map");
    EXPECT_EQ(run("CREATE_KEY_MAP_LIST empty"), "Created key map list empty");
    editor.current_key_map_list = editor.key_map_lists["empty"].get();
    EXPECT_EQ(run("DEFINE_KEY LEFT TOP"), "No active key map");
    EXPECT_EQ(run("UNDEFINE_KEY LEFT"), "Cannot undefine key");
    EXPECT_EQ(run("KEY_NAME gold_e"), "KEY_NAME = 10069");
    EXPECT_EQ(run("KEY_NAME"), "KEY_NAME key");
    editor.current_key_map_list = editor.key_map_lists["TPU$KEY_MAP_LIST"].get();
    session.press("<CTRL_Z>last_key<RETURN>");
    EXPECT_EQ(editor.message, "LAST_KEY = 26");
    session.press("<CTRL_Z>read_key<RETURN><PF4>");
    EXPECT_EQ(editor.message, "READ_KEY = 268");
    session.press("<CTRL_Z>read_key<RETURN>\xc3\xa4");
    EXPECT_EQ(editor.message, "READ_KEY = 195");
    EXPECT_FALSE(main.modified);
}

TEST_F(Commands, list_and_make_buffers) {
    EXPECT_EQ(run("BUFFER"), "BUFFER requires name");
    EXPECT_EQ(run("BUFFER other"), "Current buffer: other");
    EXPECT_EQ(run("BUFFER MAIN"), "Current buffer: MAIN");
    editor.create_buffer("a b", "");
    EXPECT_EQ(run("BUFFER \"a b\""), "Current buffer: a b");
    EXPECT_EQ(run("BUFFER MAIN"), "Current buffer: MAIN");
    EXPECT_TRUE(run("PREVIOUS BUFFER").starts_with("Buffer "));
    EXPECT_TRUE(run("NEXT BUFFER").starts_with("Buffer "));
    std::string list = run("BUFFER LIST");
    EXPECT_TRUE(list.starts_with("Buffers: MAIN*")) << list;
    EXPECT_EQ(run("WHAT BUFFER"), list);
    EXPECT_EQ(run("show buffers"), list);
}

TEST_F(Commands, compile_the_buffer) {
    editor.current_buffer->set_text(
        LineStore::from_text("PROCEDURE p\nMESSAGE(\"p ran\")\nENDPROCEDURE"));
    EXPECT_EQ(run("COMPILE"), "Compiled current buffer");
    EXPECT_EQ(run("p"), "p ran");
    editor.current_buffer->set_text(LineStore::from_text("nonsense\nmore"));
    EXPECT_TRUE(run("COMPILE").starts_with("Compiled current buffer, faults: 2; the last: "));
}

TEST_F(Commands, leave_an_unmodifiable_buffer_alone) {
    main.modifiable = false;
    select({0, 0}, {1, 0});
    for (const char* line : {"CUT", "REMOVE", "DELETE", "PASTE", "REPLACE o 0", "FILL",
                             "SHIFT RIGHT", "CASE", "MOVE_TEXT", "ERASE_LINE"}) {
        EXPECT_EQ(run(line), "Buffer MAIN is not modifiable") << line;
    }
    EXPECT_TRUE(editor.kill_ring.empty());
    EXPECT_FALSE(main.modified);
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
}

struct FileCommands : Commands {
    TempFolder folder;
};

TEST_F(FileCommands, get_and_include_files) {
    std::string file = folder.write("a file", "alpha\nbeta\n");
    EXPECT_EQ(run("GET \"" + file + "\""), "Got file " + file);
    EXPECT_EQ(current(), file);
    EXPECT_EQ(text(), "alpha\nbeta");
    editor.current_buffer->edit(0, 0, "changed ");
    run("BUFFER MAIN");
    std::string link = folder.path("link");
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    EXPECT_EQ(run("GET " + link), "Got file " + link);
    EXPECT_EQ(text(), "changed alpha\nbeta");
    std::string fresh = folder.path("fresh");
    EXPECT_EQ(run("GET " + fresh), "New file " + fresh);
    EXPECT_EQ(editor.current_buffer->file_name, fresh);
    std::size_t buffers = editor.buffers.size();
    EXPECT_EQ(run("GET " + folder.path("fresh")), "Got file " + fresh);
    EXPECT_EQ(run("GET " + folder.path("")), "Cannot read " + folder.path("") + ": Is a directory");
    EXPECT_EQ(editor.buffers.size(), buffers);
    EXPECT_EQ(current(), fresh);
    EXPECT_EQ(run("INCLUDE"), "INCLUDE file");
    EXPECT_EQ(run("INCLUDE " + folder.path("none")), "Cannot include " + folder.path("none"));
    EXPECT_EQ(run("INCLUDE " + link), "Included " + link);
    EXPECT_EQ(text(), "alpha\nbeta");
    EXPECT_EQ(run("WRITE"), "Written " + fresh);
    EXPECT_EQ(run("SAVE FILE " + folder.path("copy")), "Written " + folder.path("copy"));
    EXPECT_EQ(folder.read("copy"), "alpha\nbeta");
}

TEST_F(FileCommands, reload_what_others_have_changed) {
    EXPECT_EQ(run("RELOAD"), "No file to reload");
    EXPECT_EQ(run("CHECK DISK"), "No file");
    std::string file = folder.write("file", "one\ntwo\nthree\n");
    run("GET " + file);
    go(2, 4);
    EXPECT_EQ(run("check_disk"), "File unchanged on disk");
    editor.current_buffer->file_time -= 1000;
    EXPECT_EQ(run("CHECK DISK"), "File CHANGED on disk -- type RELOAD to discard local changes");
    folder.write("file", "1\n2\n");
    EXPECT_EQ(run("RELOAD"), "Reloaded " + file);
    EXPECT_EQ(text(), "1\n2");
    EXPECT_EQ(editor.current_buffer->cursor_row, 1u);
    EXPECT_EQ(run("UNDO"), "Undone");
    EXPECT_EQ(text(), "one\ntwo\nthree");
    run("ERASE_LINE");
    EXPECT_EQ(run("RELOAD"), "Buffer modified — save first or use UNDO");
    editor.current_buffer->modified = false;
    std::remove(file.c_str());
    EXPECT_EQ(run("RELOAD"), "Reload failed");
    EXPECT_EQ(run("CHECK_DISK"), "Cannot stat " + file);
}

TEST_F(FileCommands, complete_names_on_the_command_line) {
    auto completed = [&](const std::string& line) {
        return complete_command(editor, line).candidates;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(completed("goo"), Names{});
    EXPECT_EQ(completed("overs"), Names{"OVERSTRIKE "});
    EXPECT_EQ(completed("search"), (Names{"SEARCH", "SEARCH_QUIETLY"}));
    EXPECT_EQ(completed("set ta"), Names{"TAB "});
    EXPECT_EQ(completed("set tab "), Names{"STOPS "});
    EXPECT_EQ(completed("help wi"), Names{"WINDOWS "});
    EXPECT_EQ(completed("buffer MA"), Names{"MAIN "});
    editor.create_buffer("a b", "");
    EXPECT_EQ(completed("buffer A"), Names{"\"a b\" "});
    EXPECT_EQ(completed("buffer \"A "), Names{"\"a b\" "});
    EXPECT_EQ(completed("sho var"), Names{"VARIABLES "});
    folder.write("with blank", "");
    folder.write("other", "");
    folder.write(".hidden", "");
    std::string path = folder.path("");
    EXPECT_EQ(completed("get " + path), (Names{"\"" + path + "with blank\"", path + "other"}));
    EXPECT_EQ(completed("get " + path + ".h"), Names{path + ".hidden "});
    EXPECT_EQ(completed("write file \"" + path + "with b"), Names{"\"" + path + "with blank\" "});
}

}  // namespace
}  // namespace tpu
