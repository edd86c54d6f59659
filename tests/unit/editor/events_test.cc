// What comes from the terminal, and what goes on while somebody is asked something.
#include <gtest/gtest.h>

#include "editor/process.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

using Rows = std::vector<std::string>;

struct Waiting : Session {
    explicit Waiting(std::vector<std::string> lines = {"one two"}) : Session(std::move(lines)) {
        terminal.before_key = [this] { pass_time(); };
    }
    // Time passes while nothing is typed.
    void pass_time() {
        const bool typed = !terminal.keys.empty() && terminal.keys.front() != kNoKey;
        if (!typed) clock.time += std::chrono::milliseconds(50);
    }
    void run(const std::string& source) { editor.parser.compile_text(source); }
    void set_timer(const std::string& action) {
        run("SET(TIMER, 100)");
        editor.timer.action = action;
    }
    // Presses keys; "~" is a pause in which nothing comes.
    void wait_and_press(std::string_view keys) {
        std::vector<int> codes = key_codes(keys);
        std::replace(codes.begin(), codes.end(), static_cast<int>('~'), kNoKey);
        terminal.keys.assign(codes.begin(), codes.end());
        for (Event event; (event = terminal.read(0, {})).kind != Event::Kind::hang_up;) {
            editor.handle_event(event);
        }
    }
    std::string shown(int row) const {
        std::string text = terminal.shown.visible().row_text(row);
        return text.erase(text.find_last_not_of(' ') + 1);
    }
};

TEST(Prompts, let_processes_and_the_timer_go_on) {
    struct {
        const char* open;
        const char* prompt;
        bool runs_timer;
    } const prompts[] = {
        {"<CTRL_Z>typed", "* typed", true},
        {"<CTRL_F>two", "I-find: two", true},
        {"<CTRL_Z>MESSAGE(READ_LINE)<RETURN>typed", "Input: typed", false},
        {"<CTRL_Z>READ_KEY<RETURN>", "Press key...", false},
        {"<CTRL_Z>REPLACE<RETURN>typed", "Old: typed", false},
    };
    for (const auto& [open, prompt, runs_timer] : prompts) {
        SCOPED_TRACE(open);
        Waiting s;
        s.run("ticks := 0; p := CREATE_PROCESS(\"read x; echo output\")");
        s.set_timer("ticks := ticks + 1; MESSAGE(\"tick\")");
        const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        bool is_open = false, is_shown = false;
        s.terminal.before_key = [&] {
            s.pass_time();
            if (!s.terminal.keys.empty() || std::chrono::steady_clock::now() > give_up) return;
            if (!is_open) s.run("ticks := 0; SEND(\"\", p)");
            is_open = true;
            is_shown = s.shown(0) == "output" && s.shown(23) == prompt;
            if (!is_shown) s.terminal.keys = {kNoKey};
        };
        s.press(open);
        EXPECT_TRUE(is_shown) << s.shown(0) << '\n' << s.shown(23);
        EXPECT_EQ(s.lines(), (Rows{"output", "one two"}));
        EXPECT_EQ(variable(s.editor, "TICKS")->as_int() > 0, runs_timer);
    }
}

TEST(Prompts, keep_what_the_timer_does_out_of_what_is_done_with_their_answer) {
    TempFolder folder;
    Waiting s;
    const std::string journal = folder.path("journal");
    s.run("JOURNAL_OPEN(\"" + journal + "\")");
    s.set_timer("COPY_TEXT(\"t\"); SET(TIMER, 0)");
    s.run("LEARN_BEGIN");
    s.wait_and_press("<CTRL_Z>COPY_TEXT(\"~~~~x~~\")<RETURN>");
    s.editor.parser.learning.end();
    EXPECT_EQ(s.lines(), Rows{"txone two"});
    EXPECT_EQ(s.editor.parser.learning.sequence()->statements, Rows{"COPY_TEXT(\"x\")"});
    s.press("y<GOLD>U");
    EXPECT_EQ(s.lines(), Rows{"txone two"});
    s.press("<GOLD>U");
    EXPECT_EQ(s.lines(), Rows{"tone two"});
    s.press("<GOLD>U");
    EXPECT_EQ(s.lines(), Rows{"one two"});
    s.press("<GOLD>R");
    s.run("JOURNAL_CLOSE");
    Session replayed({"one two"});
    replayed.editor.parser.compile_text("RECOVER_BUFFER(\"" + journal + "\")");
    EXPECT_EQ(replayed.lines(), Rows{"tone two"});
}

TEST(Prompts, that_were_cancelled_leave_no_step_of_undo_for_what_came_meanwhile) {
    for (const char* keys : {"<CTRL_Z>~~~~~~<CTRL_G>", "<CTRL_F>two~~~~~~<CTRL_G>"}) {
        Waiting s;
        s.set_timer("MOVE_HORIZONTAL(1); COPY_TEXT(\"t\"); SET(TIMER, 0)");
        s.wait_and_press(keys);
        EXPECT_EQ(s.lines(), Rows{"otne two"});
        EXPECT_EQ(s.cursor(), (Position{0, 2}));
        s.press("<GOLD>U<GOLD>U");
        EXPECT_EQ(s.lines(), Rows{"one two"});
        EXPECT_TRUE(s.buffer->undo_stack.empty());
    }
}

TEST(Prompts, for_a_text_stay_where_they_have_found_it) {
    Waiting s({"one two two two"});
    s.set_timer("COPY_TEXT(\"new\"); SPLIT_LINE");
    s.wait_and_press("<CTRL_F>two<CTRL_F>~~~~~<RETURN>");
    EXPECT_EQ(s.lines(), (Rows{"new", "new", "one two two two"}));
    EXPECT_EQ(s.cursor(), (Position{2, 8}));
    const std::string told = s.editor.find_buffer("$MESSAGE_BUFFER")->text().text();
    EXPECT_EQ(told, "I-find: \nI-find: t\nI-find: tw\nI-find: two\nI-find: two\nFound");
    s.press("<GOLD>U");
    EXPECT_EQ(s.cursor(), (Position{2, 0}));
}

TEST(Prompts, survive_whatever_the_timer_does) {
    struct {
        const char* action;
        const char* keys;
        const char* message;
    } const cases[] = {
        // Nothing is searched in another buffer, nor in one that is gone.
        {"DELETE(CURRENT_BUFFER)", "<CTRL_F>tw~~~~", "I-find cancelled"},
        {"DELETE(CURRENT_BUFFER); POSITION(CREATE_BUFFER(\"NEW\"))", "<CTRL_F>t~~~~",
         "I-find cancelled"},
        {"POSITION(other)", "<CTRL_F>tw~~~~", "I-find cancelled"},
        {"ERASE_LINE", "<CTRL_F>tw~~~~o<RETURN>", "Not found"},
        {"DELETE(CURRENT_BUFFER)", "<CTRL_Z>~~~~MESSAGE(\"done\")<RETURN>", "done"},
        {"l := READ_LINE(\"? \")", "<CTRL_Z>MESSA~~~~answer<RETURN>GE(l)<RETURN>", "answer"},
        {"QUIT", "<CTRL_Z>MESSAGE(\"not done\")~~~~<RETURN>", ""},
        {"QUIT", "<CTRL_F>two~~~~<RETURN>", ""},
    };
    for (const auto& [action, keys, message] : cases) {
        SCOPED_TRACE(std::string(action) + ' ' + keys);
        Waiting s;
        s.run("other := CREATE_BUFFER(\"OTHER\"); POSITION(other); COPY_TEXT(\"kept two\")");
        s.editor.position(s.buffer);
        s.set_timer(std::string("SET(TIMER, 0); ") + action);
        s.wait_and_press(keys);
        EXPECT_EQ(s.editor.running, action != std::string("QUIT"));
        if (s.editor.running) {
            EXPECT_EQ(s.editor.message, message);
        }
        EXPECT_NE(s.editor.message, "not done");
        if (action == std::string("POSITION(other)")) {
            EXPECT_EQ(s.cursor(), (Position{0, 0}));
        }
        EXPECT_EQ(s.editor.find_buffer("OTHER")->text().text(), "kept two");
        EXPECT_EQ(s.editor.input_mode, nullptr);
        EXPECT_EQ(s.editor.undo_step, nullptr);
    }
}

// What is bound to a byte takes just that.
TEST(Events, hold_whole_characters_and_bindings_take_their_first_byte) {
    Waiting s({""});
    s.run("seen := \"\"");
    s.editor.pre_key_procedure = "seen := seen + STR(LAST_KEY) + \" \"";
    s.press("\xc3\xa9\xe2\x82x\xff");
    EXPECT_EQ(s.lines(), Rows{"\xc3\xa9\xe2\x82x\xff"});
    EXPECT_EQ(variable(s.editor, "SEEN")->as_string(), "195 226 120 255 ");
    s.press("<GOLD>U<GOLD>U<GOLD>U<GOLD>U");
    EXPECT_EQ(s.lines(), Rows{""});
    s.run("seen := \"\"");
    s.editor.current_key_map_list->maps.front()->define_key(0xe2,
                                                            {"COPY_TEXT(\"!\")", nullptr, ""});
    s.press("\xe2\x82\xac");
    EXPECT_EQ(s.lines(), Rows{"!\x82\xac"});
    EXPECT_EQ(variable(s.editor, "SEEN")->as_string(), "226 130 172 ");
}

}  // namespace
}  // namespace tpu
