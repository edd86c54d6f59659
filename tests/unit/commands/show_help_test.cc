// What SHOW and HELP put into their buffers and messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "attributes/attribute.h"
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

TEST_F(ShowHelp, long_texts_are_shown_by_their_beginnings) {
    EXPECT_TRUE(has(after("SHOW PASTE"), rule + "  (none)\n"));
    session.editor.named_pastes["A"] = LineStore({"x", "y"});
    session.editor.named_pastes["B"] = LineStore({std::string(500, 'z') + "\xc3\xa9"});
    session.editor.named_pastes[""] = LineStore({"abc"});
    std::string text = after("SHOW PASTES");
    EXPECT_TRUE(has(text, "  [unnamed slot]  (3 chars)\n")) << text;
    EXPECT_TRUE(has(text, "  \"A\"  (3 chars)  x y\n")) << text;
    EXPECT_TRUE(has(text, "  \"B\"  (502 chars)  zzz") && text.ends_with("zz...\n")) << text;
    // A character of several bytes is not cut in the middle.
    session.editor.parser.compile_text(
        "w := \"\"; LOOP; w := w + \"\xe2\x82\xac\"; EXITIF LENGTH(w) = 120; ENDLOOP");
    EXPECT_TRUE(has(after("SHOW VARIABLES"), "\xe2\x82\xac...\n"));
}

TEST_F(ShowHelp, defaults_are_those_of_the_buffer_that_was_current) {
    session.buffer->reverse = true;
    session.buffer->tab_stops = {5, 9};
    session.buffer->key_map_list = "MINE";
    EXPECT_EQ(after("SHOW DEFAULTS"), "SHOW DEFAULTS  (current buffer)\n" + rule +
                                          "  Name           MAIN\n  File           <none>\n"
                                          "  Modified       no\n  Modifiable     yes\n"
                                          "  Direction      REVERSE\n  Insert mode    INSERT\n"
                                          "  Margins        1 ... 80\n  Wrap           off\n"
                                          "  Line numbers   off\n  EOB text       [End of file]\n"
                                          "  Tab stops      5 9\n  Journaling     off\n"
                                          "  Key map list   MINE\n");
    std::string text = after("SHOW DEFAULTS");
    EXPECT_TRUE(has(text, "  Tab stops      default (every 8)\n")) << text;
    EXPECT_TRUE(has(text, "  Key map list   (default)\n")) << text;
}

TEST_F(ShowHelp, summary_and_system_have_their_rows) {
    session.editor.parser.compile_text("x := 1; ASSERT(1); ASSERT(0)\nPROCEDURE p\nENDPROCEDURE");
    session.editor.set_message("");
    EXPECT_EQ(after("SHOW SUMMARY"), "SHOW SUMMARY\n" + rule +
                                         "  Buffers           2\n  Windows           1\n"
                                         "  Keymaps           1\n  Keymap lists      1\n"
                                         "  Procedures        1\n  Variables         1\n"
                                         "  Processes         0\n  Tests passed/fail 1 / 1\n");
    session.editor.timer.interval = 500;
    session.editor.timer.action = "tick";
    session.press("<F9>");
    EXPECT_EQ(after("SHOW SYSTEM"), "SHOW SYSTEM\n" + rule +
                                        "  Screen        24 x 80\n  Headless      no\n"
                                        "  Bell          on\n  Mouse         off\n"
                                        "  Timer         500 ms  -> tick\n  Pre-key proc  <none>\n"
                                        "  Post-key proc <none>\n  Undef-key proc <none>\n"
                                        "  GOLD key      265 (PF1)\n  Last key      273 (F9)\n");
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
    for (const Attribute* row : all_attributes()) {
        line_begins("SET", row->items[0]);
        for (const Keyword& keyword : row->keywords) {
            if (!keyword.name.empty()) line_begins("SET", "SET(" + std::string(keyword.name));
        }
    }
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

}  // namespace
}  // namespace tpu
