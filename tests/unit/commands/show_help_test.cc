// What SHOW and HELP put into their buffers and messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "attributes/get_info_table.h"
#include "attributes/set_table.h"
#include "builtins/table.h"
#include "commands/command_words.h"
#include "commands/help.h"
#include "commands/show.h"
#include "editor/version.h"
#include "keys/key_names.h"
#include "lang/builtin.h"
#include "store/buffer_file.h"
#include "support/session.h"
#include "text/ascii.h"

namespace tpu {
namespace {

struct ShowHelp : testing::Test {
    // Runs a command line; the text of the current buffer afterwards.
    std::string after(const std::string& line) {
        session.editor.execute_command(line);
        return session.editor.current_buffer->text().text() + '\n';
    }
    std::string message_of(const std::string& line) {
        session.editor.execute_command(line);
        return session.editor.message;
    }
    const std::string& current() { return session.editor.current_buffer->name; }

    Session session{{"one", "two"}};
    const std::string rule = std::string(60, '-') + '\n';
};

bool has(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

TEST_F(ShowHelp, show_says_what_it_can_show) {
    EXPECT_TRUE(message_of("show").starts_with("SHOW what? BUFFERS, KEYMAPS, PROCEDURES, "));
    EXPECT_EQ(message_of("SHOW nothing x"), "Unknown SHOW item: NOTHING");
    show_command(session.editor, {"SHOW", ""});
    EXPECT_EQ(session.editor.message, "Unknown SHOW item: ");
    EXPECT_EQ(current(), "MAIN");
}

TEST_F(ShowHelp, short_lists_are_messages) {
    session.editor.set_message("");
    EXPECT_EQ(message_of("SHOW BUFFERS"), "Buffers: MAIN* $MESSAGE_BUFFER");
    EXPECT_EQ(message_of("show keymaps"), "Keymaps: TPU$KEY_MAP");
    EXPECT_EQ(message_of("SHOW KEYMAPLISTS"), "Key map lists: TPU$KEY_MAP_LIST");
    EXPECT_EQ(message_of("SHOW KEY_MAP_LISTS"), "Key map lists: TPU$KEY_MAP_LIST");
    session.editor.parser.compile_text("PROCEDURE p\nENDPROCEDURE;\nPROCEDURE a\nENDPROCEDURE");
    EXPECT_EQ(message_of("SHOW PROCEDURES"), "Procedures: A P");
    EXPECT_EQ(current(), "MAIN");
}

TEST_F(ShowHelp, show_buffers_are_filled_anew_and_never_written) {
    EXPECT_EQ(after("SHOW VERSION"), "V1.00-0\nRelease date: 2026-07-17\n");
    Buffer* shown = session.editor.current_buffer;
    EXPECT_EQ(shown->eob_text, "[End of $SHOW_VERSION]");
    EXPECT_TRUE(shown->system && shown->no_write && shown->file_name.empty());
    session.press("<DOWN>scribbled<CTRL_V>");
    shown->modifiable = false;
    std::size_t buffers = session.editor.buffers.size();
    EXPECT_EQ(after("SHOW VERSION"), tpu_version_banner() + '\n');
    EXPECT_EQ(session.editor.current_buffer, shown);
    EXPECT_EQ(session.editor.buffers.size(), buffers);
    EXPECT_EQ(shown->cursor_row, 0u);
    EXPECT_FALSE(shown->modified || shown->select_anchor);
    EXPECT_EQ(message_of("WRITE /dev/null/x"), "Write failed: /dev/null/x");
    EXPECT_FALSE(write_file(*shown, testing::TempDir() + "show_help_test"));
    session.editor.open_show_buffer("$SHOW_VERSION", "");
    EXPECT_EQ(shown->text().size(), 1u);
    session.editor.previous_buffer();
    session.editor.next_buffer();
    EXPECT_EQ(current(), "$SHOW_VERSION");
}

TEST_F(ShowHelp, a_buffer_that_somebody_made_is_left_alone) {
    after("BUFFER HELP");
    session.press("mine");
    Buffer* mine = session.editor.current_buffer;
    after("HELP");
    EXPECT_NE(session.editor.current_buffer, mine);
    EXPECT_EQ(mine->text().text(), "mine");
}

TEST_F(ShowHelp, pastes_are_listed_with_their_sizes_and_beginnings) {
    std::string head = "SHOW PASTES  (named paste buffers)\n" + rule;
    EXPECT_EQ(after("SHOW PASTE"), head + "  (none)\n");
    session.editor.named_pastes["A"] = LineStore({"x", "y"});
    session.editor.named_pastes["B"] = LineStore({std::string(500, 'z') + "\xc3\xa9"});
    session.editor.named_pastes[""] = LineStore({"abc"});
    std::string text = after("SHOW PASTES");
    EXPECT_TRUE(has(text, "  [unnamed slot]  (3 chars)\n")) << text;
    EXPECT_TRUE(has(text, "  \"A\"  (3 chars)  x y\n")) << text;
    EXPECT_TRUE(has(text, "  \"B\"  (502 chars)  zzz")) << text;
    EXPECT_TRUE(text.ends_with("zz...\n")) << text;
}

TEST_F(ShowHelp, variables_are_the_global_ones_with_types_and_values) {
    EXPECT_EQ(after("SHOW VARIABLES"), "SHOW VARIABLES\n" + rule + "  (none)\n");
    // Bytes of many-byte characters at every offset: none is cut in the middle.
    std::string euros;
    for (int i = 0; i < 40; ++i) euros += "\xe2\x82\xac";
    session.editor.parser.assign_var("W", Value::make_str(euros));
    session.editor.parser.compile_text(
        "n := -5; s := \"a\"; k := REVERSE; w2 := CURRENT_BUFFER; a{1} := 2\n"
        "PROCEDURE p\nLOCAL hidden := 1, n := 7;\nSHOW(VARIABLES);\nENDPROCEDURE;\np");
    std::string text = session.editor.current_buffer->text().text();
    for (const char* line :
         {"  N (integer)  =  -5\n", "  S (string)  =  a\n", "  K (keyword)  =  REVERSE\n",
          "  W2 (buffer)  =  $SHOW_VARIABLES", "  A (array)  =  <array>\n", "\xe2\x82\xac...\n"}) {
        EXPECT_TRUE(has(text, line)) << line << text;
    }
    EXPECT_FALSE(has(text, "HIDDEN")) << text;
}

TEST_F(ShowHelp, defaults_are_those_of_the_buffer_that_was_current) {
    session.buffer->reverse = true;
    session.buffer->tab_stops = {5, 9};
    session.buffer->key_map_list = "MINE";
    EXPECT_EQ(after("SHOW DEFAULTS"), "SHOW DEFAULTS  (current buffer)\n" + rule +
                                          "  Name           MAIN\n"
                                          "  File           <none>\n"
                                          "  Modified       no\n"
                                          "  Modifiable     yes\n"
                                          "  Direction      REVERSE\n"
                                          "  Insert mode    INSERT\n"
                                          "  Margins        1 ... 80\n"
                                          "  Wrap           off\n"
                                          "  Line numbers   off\n"
                                          "  EOB text       [End of file]\n"
                                          "  Tab stops      5 9\n"
                                          "  Journaling     off\n"
                                          "  Key map list   MINE\n");
    std::string text = after("SHOW DEFAULTS");
    EXPECT_TRUE(has(text, "  Tab stops      default (every 8)\n")) << text;
    EXPECT_TRUE(has(text, "  Key map list   (default)\n")) << text;
}

TEST_F(ShowHelp, summary_and_system_have_their_rows) {
    session.editor.parser.compile_text("x := 1; ASSERT(1); ASSERT(0)\nPROCEDURE p\nENDPROCEDURE");
    session.editor.set_message("");
    EXPECT_EQ(after("SHOW SUMMARY"), "SHOW SUMMARY\n" + rule +
                                         "  Buffers           2\n"
                                         "  Windows           1\n"
                                         "  Keymaps           1\n"
                                         "  Keymap lists      1\n"
                                         "  Procedures        1\n"
                                         "  Variables         1\n"
                                         "  Processes         0\n"
                                         "  Tests passed/fail 1 / 1\n");
    session.editor.timer.interval = 500;
    session.editor.timer.action = "tick";
    session.press("<F9>");
    EXPECT_EQ(after("SHOW SYSTEM"), "SHOW SYSTEM\n" + rule +
                                        "  Screen        24 x 80\n"
                                        "  Headless      no\n"
                                        "  Bell          on\n"
                                        "  Mouse         off\n"
                                        "  Timer         500 ms  -> tick\n"
                                        "  Pre-key proc  <none>\n"
                                        "  Post-key proc <none>\n"
                                        "  Undef-key proc <none>\n"
                                        "  GOLD key      265 (PF1)\n"
                                        "  Last key      273 (F9)\n");
}

TEST_F(ShowHelp, keys_are_shown_by_name_and_one_by_one) {
    session.editor.parser.compile_text("DEFINE_KEY(\"p\", \"F8\", \"mine\")");
    std::string text = after("SHOW KEYS");
    EXPECT_TRUE(text.starts_with("SHOW KEYS  (active key map list)\n" + rule + "[TPU$KEY_MAP]\n"));
    for (const char* line : {"  LEFT  ->  <native>", "  F8  ->  p  (mine)\n", "  GOLD_U  ->  UNDO",
                             "  CTRL_O  ->  <native>", "  127  ->  <native>"}) {
        EXPECT_TRUE(has(text, line)) << line << text;
    }
    EXPECT_EQ(message_of("SHOW KEY gold_u"), "Key gold_u = UNDO");
    EXPECT_EQ(message_of("SHOW KEYS LEFT"), "Key LEFT = <native>");
    EXPECT_EQ(message_of("SHOW KEY F9"), "Key F9 is undefined");
    EXPECT_EQ(message_of("SHOW KEY F5"), "Unknown key F5");
    session.editor.current_key_map_list = nullptr;
    EXPECT_TRUE(has(after("SHOW KEY"), "  (none)\n"));
    EXPECT_EQ(message_of("SHOW KEY UP"), "Key UP is undefined");
}

TEST_F(ShowHelp, search_quietly_goes_there_without_a_message) {
    session.editor.set_message("");
    EXPECT_EQ(message_of("search_quietly two"), "");
    EXPECT_EQ(session.cursor(), (Position{1, 0}));
    EXPECT_EQ(message_of("SEARCH_QUIETLY nowhere"), "");
}

TEST_F(ShowHelp, show_is_a_statement_of_words_or_values) {
    for (const char* statement : {"SHOW(KEY, GOLD_E)", "SHOW(\"key\", \"GOLD_E\")",
                                  "SHOW(STR(\"KEY\") + \"\", \"GOLD_\" + \"E\")"}) {
        session.editor.set_message("");
        session.editor.parser.execute_statement(statement);
        EXPECT_EQ(session.editor.message, "Key GOLD_E = END") << statement;
    }
    session.editor.parser.execute_statement("SHOW");
    EXPECT_TRUE(session.editor.message.starts_with("SHOW what?"));
}

TEST(KeyNames, of_codes_lead_back_to_the_code) {
    for (int code : {26, 260, 265, 270, 10069, 10268, int{'%'}}) {
        EXPECT_EQ(key_code_of(key_name_of(code)), code);
    }
    EXPECT_EQ(key_name_of(269), "F5");
    EXPECT_EQ(key_name_of(1), "CTRL_A");
    EXPECT_EQ(key_name_of(' '), "32");
    EXPECT_EQ(key_name_of(-1), "-1");
}

TEST_F(ShowHelp, f2_opens_the_overview) {
    session.press("<PF2>");
    EXPECT_EQ(current(), "HELP");
    EXPECT_EQ(session.editor.message, "HELP buffer (Ctrl-X to exit, NEXT BUFFER to leave)");
    EXPECT_EQ(session.editor.current_buffer->eob_text, "[End of HELP]");
    std::string text = session.editor.current_buffer->text().text() + '\n';
    EXPECT_TRUE(text.starts_with("Vorlane HELP\nType  HELP <topic>  for details. Topics:\n"));
    EXPECT_TRUE(text.ends_with("Press Ctrl-X to leave the help buffer.\n"));
    EXPECT_EQ(text, help_text("overview"));
    EXPECT_EQ(session.screen()[0], "Vorlane HELP");
    session.press("<CTRL_Z>previous buffer<RETURN>");
    EXPECT_EQ(current(), "MAIN");
}

TEST(HelpTexts, stand_for_every_topic_in_lines_that_fit) {
    std::vector<std::string> topics = help_topics();
    ASSERT_EQ(topics.size(), 17u);
    EXPECT_EQ(topics.front(), "OVERVIEW");
    EXPECT_EQ(topics.back(), "WRAP");
    topics.push_back("no such topic");
    topics.push_back("GET_INFO");
    for (const std::string& topic : topics) {
        std::string text = help_text(topic);
        EXPECT_TRUE(topic == "OVERVIEW" || topic == "no such topic" ||
                    text.starts_with(topic + "\n"));
        EXPECT_GT(text.size(), 100u) << topic;
        EXPECT_TRUE(text.ends_with('\n') && !text.ends_with("\n\n")) << topic;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 78u) << topic << ": " << line;
            EXPECT_FALSE(line.ends_with(' ')) << topic << ": " << line;
        }
    }
}

TEST(HelpTexts, list_what_the_tables_have) {
    auto line_begins = [](std::string_view topic, std::string_view word) {
        std::string text = help_text(std::string(topic));
        EXPECT_TRUE(has(text, "\n  " + std::string(word))) << topic << ": " << word;
    };
    for (const Command* command : all_commands()) {
        // A long form goes on in the next line.
        line_begins("COMMANDS", command->form.substr(0, 50));
    }
    for (std::span<const Builtin> family : all_builtins().families()) {
        for (const Builtin& row : family) line_begins("builtins", row.name);
    }
    for (const SetKeyword& row : set_keywords()) line_begins("SET", "SET(" + std::string(row.name));
    for (const InfoItem& row : info_items()) line_begins("SET", row.names[0]);
    line_begins("COMMANDS", "SEARCH_QUIETLY <pat>      Search without status message.\n");
    line_begins("KEYS", "GOLD_T                    GOLD-T top of buffer\n");
    line_begins("EVE", "NEXT BUFFER               Go to the next buffer.\n");
    line_begins("EVE", "GET file                  Go");
}

TEST(HelpTexts, name_the_commands_that_cannot_be_shortened) {
    std::string text = help_text("COMMANDS");
    std::size_t begin = text.find("typed in full"), end = text.find("\n\n", begin);
    text = text.substr(begin, end - begin);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == ',' || c == '.'; }, ' ');
    std::set<std::string> named, expected;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word == ascii::upper(word)) named.insert(word);
    }
    for (const Command* command : all_commands()) {
        if (command->in_full) expected.emplace(command->first_word());
    }
    EXPECT_EQ(named, expected);
}

// The lines of a topic that begin with blanks, without them and without explanations.
// Several lines with a procedure in them are one example.
std::vector<std::string> examples_of(const HelpTopic& topic) {
    std::vector<std::string> examples;
    std::istringstream lines{std::string(*topic.text)};
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("  ")) continue;
        line.erase(0, 2);
        bool continues = line.starts_with(' ') || line.starts_with("END");
        std::string code = line.substr(0, line.find("   ", line.find_first_not_of(' ')));
        if (continues) {
            examples.back() += '\n' + code;
        } else {
            examples.push_back(code);
        }
    }
    return examples;
}

TEST_F(ShowHelp, examples_in_the_help_texts_run) {
    int count = 0;
    for (const HelpTopic& topic : help_topic_rows()) {
        bool has_tables = topic.name == "TYPES" || topic.name == "WINDOWS";
        if (!topic.text || has_tables) continue;
        for (const std::string& example : examples_of(topic)) {
            ++count;
            session.editor.set_message("");
            bool is_procedure = example.starts_with("PROCEDURE");
            is_procedure ? session.editor.parser.compile_text(example)
                         : session.editor.execute_command(example);
            EXPECT_FALSE(session.editor.message.starts_with("Unknown")) << example;
            EXPECT_EQ(session.editor.parser.error_count, 0) << topic.name << ": " << example;
        }
    }
    EXPECT_GT(count, 40);
    session.editor.execute_command("MESSAGE(STR(sum(4)))");
    EXPECT_EQ(session.editor.message, "10");
}

TEST_F(ShowHelp, help_knows_names_that_are_no_topics) {
    std::string text = after("HELP right_margin");
    EXPECT_TRUE(text.starts_with("RIGHT_MARGIN\n\n  SET(RIGHT_MARGIN [, buffer], column)\n"));
    EXPECT_TRUE(has(text, "  GET_INFO, RIGHT_MARGIN (buffer)\n")) << text;
    text = after("HELP Find");
    EXPECT_TRUE(has(text, "  FIND [text or pattern]    Command: Search")) << text;
    EXPECT_TRUE(has(after("HELP substr"), "  SUBSTR(text, start, length)\n")) << text;
    EXPECT_TRUE(has(after("HELP gold_u"), "  Key GOLD_U                GOLD-U undo")) << text;
    EXPECT_TRUE(has(after("HELP pastes"), "  SHOW PASTES               The")) << text;
    EXPECT_TRUE(has(after("HELP pad"), "  SET(PAD, ...)             Accepted")) << text;
}

TEST_F(ShowHelp, help_on_the_unknown_offers_what_comes_close) {
    std::string text = after("HELP Serch");
    EXPECT_EQ(current(), "HELP");
    EXPECT_TRUE(text.starts_with("There is no help on SERCH.\n")) << text;
    EXPECT_TRUE(has(text, "come close:\n\n  FETCH SEARCH\n")) << text;
    EXPECT_TRUE(has(text, "\n  KEYMAPS     ")) << text;
    text = after("HELP qqqqqq");
    EXPECT_FALSE(has(text, "come close")) << text;
    EXPECT_TRUE(has(text, "\n  WRAP        ")) << text;
    after("HELP " + std::string(100'000, 'x'));
    EXPECT_EQ(current(), "HELP");
}

}  // namespace
}  // namespace tpu
