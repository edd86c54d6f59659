// What keys do, through the default bindings.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>

#include "editor/process.h"
#include "keys/key_names.h"
#include "support/session.h"

namespace tpu {
namespace {

using Rows = std::vector<std::string>;

TEST(KeyNames, have_codes_in_any_case_and_none_for_the_gaps) {
    EXPECT_EQ(key_code_of("gold_pf4"), 10268);
    EXPECT_EQ(key_code_of("GOLD_GOLD_E"), 20069);
    EXPECT_EQ(key_code_of("x"), 88);
    EXPECT_EQ(key_code_of("pageup"), 339);
    EXPECT_EQ(key_code_of("CTRL_Z"), 26);
    for (const char* name : {"GOLD_", "F5", "CTRL_A", "", "LEFTX"}) {
        EXPECT_EQ(key_code_of(name), kNoKey) << name;
    }
}

TEST(Keys, only_leave_when_there_is_no_buffer) {
    Session s({"one"});
    s.editor.current_buffer = nullptr;
    s.press("<LEFT><CTRL_W>x<CTRL_S><PF4><GOLD>U");
    EXPECT_EQ(s.lines(), (Rows{"one"}));
    EXPECT_TRUE(s.editor.running);
    s.press("<CTRL_X>");
    EXPECT_FALSE(s.editor.running);
}

TEST(KeyMaps, are_searched_in_order_and_replaced_in_all_lists) {
    Session s;
    KeyMap* first = s.editor.create_key_map("MINE");
    first->define_key('x', {"TOP", {}, ""});
    s.editor.current_key_map_list->add_first(first);
    s.editor.current_key_map_list->add_first(nullptr);
    s.editor.current_key_map_list->add_last(first);
    EXPECT_EQ(s.editor.current_key_map_list->lookup('x')->text, "TOP");
    KeyMapList* outlived = s.editor.create_key_map_list("OLD", first);
    s.editor.create_key_map_list("OLD", nullptr);
    KeyMap* second = s.editor.create_key_map("MINE");
    EXPECT_EQ(s.editor.current_key_map_list->lookup('x'), nullptr);
    second->define_key('x', {"BOTTOM", {}, ""});
    EXPECT_EQ(s.editor.current_key_map_list->lookup('x')->text, "BOTTOM");
    EXPECT_EQ(outlived->lookup('x')->text, "BOTTOM");
    s.editor.current_key_map_list->remove(second);
    EXPECT_EQ(s.editor.current_key_map_list->lookup('x'), nullptr);
}

TEST(Keys, move_type_and_erase) {
    Session s({"one", "two"});
    s.press("<RIGHT><RIGHT>X<DOWN><HOME><INSERT>Y<DELETE><END><RETURN>z<BACKSPACE><UP><LEFT>");
    EXPECT_EQ(s.lines(), (Rows{"onXe", "Yo", ""}));
    EXPECT_EQ(s.cursor(), (Position{0, 4}));
    EXPECT_EQ(s.editor.message, "OVERSTRIKE mode");
    s.press("<TAB>");
    EXPECT_EQ(s.lines()[0], "onXe    ");
}

TEST(Keys, that_are_unbound_do_nothing_and_leave_no_undo_step) {
    Session s({"one"});
    s.press("<F9><CTRL_A><GOLD_F9>");
    EXPECT_TRUE(s.buffer->undo_stack.empty());
    EXPECT_EQ(s.editor.message, "");
    s.editor.undefined_key_procedure = "BOTTOM";
    s.press("<F9>");
    EXPECT_EQ(s.cursor(), (Position{0, 3}));
}

TEST(Keys, undo_what_they_have_done_themselves_first) {
    Session s({"one"});
    s.editor.parser.execute_text(
        "DEFINE_KEY(\"COPY_TEXT(7); COPY_TEXT(8); UNDO\", \"F8\"); DEFINE_KEY(\"UNDO\", \"F7\")");
    s.press("x<F8>");
    EXPECT_EQ(s.lines(), (Rows{"xone"}));
    s.press("<CTRL_Z>COPY_TEXT(7); UNDO<RETURN>");
    EXPECT_EQ(s.lines(), (Rows{"xone"}));
    // What runs before each key is no part of what the key takes back.
    s.editor.pre_key_procedure = "BOTTOM";
    s.press("<F7>");
    EXPECT_EQ(s.lines(), (Rows{"one"}));
}

TEST(Keys, type_whole_utf8_characters_as_one_step) {
    Session s({""});
    s.press("a\xc3\xa9\xff\xc3z");
    EXPECT_EQ(s.lines(), (Rows{"a\xc3\xa9\xff\xc3z"}));
    EXPECT_EQ(s.buffer->undo_stack.size(), 5u);
    s.press("<HOME><RIGHT><RIGHT><BACKSPACE>");
    EXPECT_EQ(s.lines(), (Rows{"a\xff\xc3z"}));
}

TEST(Keys, never_tear_a_character) {
    for (const char* keys : {"<RETURN>", "<TAB>", "\xff", "x", "\xc3\xa9"}) {
        for (bool insert : {true, false}) {
            Session s({"abcd", "\xe2\x82\xac."});
            s.buffer->insert_mode = insert;
            s.press(std::string("<RIGHT><DOWN>") + keys);
            std::string text = s.buffer->text().text(0, s.buffer->text().bytes());
            bool whole = text.find("\xe2\x82\xac.") != std::string::npos;
            bool gone = text.find_first_of("\xe2\x82\xac") == std::string::npos;
            EXPECT_TRUE(whole || gone) << keys << (insert ? " inserted" : " overstruck");
        }
    }
}

TEST(Keys, after_gold_run_their_text_or_insert_themselves) {
    Session s({"one", "two"});
    s.press("<GOLD>");
    EXPECT_EQ(s.editor.message, "GOLD");
    s.press("E");
    EXPECT_EQ(s.cursor(), (Position{1, 3}));
    s.press("<GOLD><GOLD>T<GOLD>e");
    EXPECT_EQ(s.lines(), (Rows{"eone", "two"}));
    s.editor.shift_key = key_code_of("F6");
    s.press("<F6>");
    EXPECT_EQ(s.editor.message, "SHIFT");
    s.press("E");
    EXPECT_EQ(s.cursor(), (Position{1, 3}));
    s.press("<GOLD>Q");
    EXPECT_FALSE(s.editor.running);
}

TEST(Keys, that_are_bound_to_texts_never_meet_an_unknown_command_but_help) {
    Session s({"one", "two"});
    for (const char* keys : {"<PF4>", "<GOLD>E", "<GOLD>T", "<GOLD>U", "<GOLD>R", "<GOLD>Q"}) {
        s.press(keys);
        EXPECT_FALSE(s.editor.message.starts_with("Unknown command")) << keys;
    }
    EXPECT_EQ(s.lines(), (Rows{"ne", "two"}));
}

TEST(Keys, use_the_list_that_their_buffer_names) {
    Session s({"one"});
    KeyMap* map = s.editor.create_key_map("M");
    map->define_key('x', {"BOTTOM", {}, ""});
    map->define_key('y', {});
    s.editor.create_key_map_list("L", map);
    s.buffer->key_map_list = "NONE";
    s.press("x");
    s.buffer->key_map_list = "L";
    s.press("xy");
    EXPECT_EQ(s.lines(), (Rows{"xoney"}));
}

TEST(Keys, run_procedures_before_and_after_and_record_texts_while_learning) {
    Session s({"one", "two"});
    s.editor.parser.learning.begin();
    s.editor.pre_key_procedure = "BOTTOM";
    s.editor.post_key_procedure = "TOP";
    s.press("!<GOLD>E");
    EXPECT_EQ(s.lines(), (Rows{"one", "two!"}));
    EXPECT_EQ(s.cursor(), (Position{0, 0}));
    EXPECT_EQ(s.editor.parser.learning.sequence()->statements, (Rows{"END"}));
}

TEST(Keys, keep_what_was_bound_to_them_before_the_defaults) {
    Session s({"one"});
    s.editor.key_maps.clear();
    s.editor.key_map_lists.clear();
    s.editor.current_key_map_list = nullptr;
    s.editor.parser.compile_text(
        "DEFINE_KEY(\"COPY_TEXT(1)\", \"LEFT\")\n"
        "DEFINE_KEY(COMPILE(\"COPY_TEXT(1 + 1)\"), 269)\n"
        "LEARN_BEGIN; COPY_TEXT(1 + 2); learned := LEARN_END; DELETE\n"
        "DEFINE_KEY(learned, KEY_NAME(\"A\", GOLD), \"three\")\n"
        "DEFINE_KEY(\"COPY_TEXT(4)\", \"GOLD_CTRL_W\", \"four\", \"none\")\n");
    EXPECT_EQ(s.editor.message, "There is no key map none");
    s.terminal.keys = {kKeyLeft, kKeyF0 + 5, kKeyF0 + 1, 'A', kKeyEnd, 'x'};
    s.editor.run();
    EXPECT_EQ(s.lines(), (Rows{"3123nex"}));
}

TEST(Keys, act_whatever_the_procedures_around_them_do) {
    Session s({"one"});
    s.editor.parser.compile_text("PROCEDURE again\nagain\nENDPROCEDURE\n");
    s.editor.pre_key_procedure = "nonsense here";
    s.editor.post_key_procedure = "again";  // without end
    s.press("a");
    EXPECT_EQ(s.lines(), (Rows{"aone"}));
    EXPECT_FALSE(s.editor.parser.error_list.empty());
    Buffer* log = s.editor.find_buffer("$MESSAGE_BUFFER");
    EXPECT_NE(log->text().find("Unknown command: nonsense here", 0), std::nullopt);

    s.editor.pre_key_procedure = "SET(PRE_KEY_PROCEDURE, \"\"); POSITION(CREATE_BUFFER(\"b\"))";
    s.editor.post_key_procedure = "DELETE(CURRENT_BUFFER)";
    s.press("x");
    EXPECT_EQ(s.editor.find_buffer("b"), nullptr);
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
    s.editor.undefined_key_procedure = "DELETE(GET_BUFFER(\"c\"))";
    s.editor.pre_key_procedure = "POSITION(CREATE_BUFFER(\"c\"))";
    s.editor.post_key_procedure = "SET(POST_KEY_PROCEDURE, \"\"); QUIT";
    s.press("<F9>");
    EXPECT_EQ(s.editor.current_buffer, s.buffer);
    EXPECT_FALSE(s.editor.running);
    EXPECT_EQ(s.editor.post_key_procedure, "");
    EXPECT_EQ(s.lines(), (Rows{"aone"}));
}

TEST(UndoSteps, are_one_for_a_key_and_none_for_undo_itself) {
    Session s({"one", "two"});
    s.press("ab<DOWN>");
    EXPECT_EQ(s.buffer->undo_stack.size(), 3u);
    s.press("<GOLD>U");
    EXPECT_EQ(s.cursor(), (Position{0, 2}));
    s.press("<GOLD>U");
    EXPECT_EQ(s.lines()[0], "aone");
    EXPECT_EQ(s.editor.message, "Undone");
    s.press("<GOLD>R<GOLD>R");
    EXPECT_EQ(s.lines()[0], "abone");
    EXPECT_EQ(s.cursor(), (Position{1, 2}));
    s.press("<GOLD>R");
    EXPECT_EQ(s.editor.message, "Nothing to redo");
    s.press("<GOLD>U<F9><CTRL_V>");  // without effect on text and cursor: redo stays
    s.press("<GOLD>R");
    EXPECT_EQ(s.editor.message, "Redone");
    s.press("<GOLD>U<UP><UP><LEFT>");
    s.press("<GOLD>R");
    EXPECT_EQ(s.editor.message, "Nothing to redo");
}

TEST(UndoSteps, cover_statements_and_commands) {
    Session s({"one", "two"});
    s.editor.parser.execute_statement("ERASE_LINE");
    s.editor.parser.execute_statement("SELECT");
    EXPECT_EQ(s.buffer->undo_stack.size(), 1u);
    s.press("<CTRL_Z>erase_line<RETURN>");
    EXPECT_EQ(s.lines(), (Rows{""}));
    s.press("<CTRL_Z>undo<RETURN>");
    EXPECT_EQ(s.lines(), (Rows{"two"}));
    s.press("<CTRL_Z>undo<RETURN>");
    EXPECT_EQ(s.lines(), (Rows{"one", "two"}));
    s.press("<CTRL_Z>redo<RETURN><CTRL_Z>redo<RETURN>");
    EXPECT_EQ(s.lines(), (Rows{""}));
}

TEST(UndoSteps, take_a_paste_as_one_change) {
    Session s({"xy"});
    s.buffer->insert_mode = false;
    s.buffer->auto_wrap = true;
    s.buffer->right_margin = 4;
    s.editor.insert_paste("\xc3\xa9z aa bb");
    EXPECT_EQ(s.lines(), (Rows{"\xc3\xa9z aa", "bb"}));
    EXPECT_EQ(s.buffer->undo_stack.size(), 1u);
    s.press("<GOLD>U");
    EXPECT_EQ(s.lines(), (Rows{"xy"}));
}

TEST(Find, moves_with_the_query_and_comes_back_when_cancelled) {
    Session s({"one two", "two three"});
    s.press("<CTRL_F>tw<RETURN>");
    EXPECT_EQ(s.cursor(), (Position{0, 4}));
    EXPECT_EQ(s.editor.message, "Found");
    s.press("<CTRL_F>two<CTRL_F><RETURN>");
    EXPECT_EQ(s.cursor(), (Position{0, 4}));  // from (1, 0) on, then from the top
    s.press("<CTRL_F>thx<RETURN>");
    EXPECT_EQ(s.cursor(), (Position{0, 4}));
    EXPECT_EQ(s.editor.message, "Not found");
    s.press("<CTRL_F>thx<BACKSPACE><RETURN>");
    EXPECT_EQ(s.cursor(), (Position{1, 4}));
    s.press("<CTRL_F>one<ESC>");
    EXPECT_EQ(s.cursor(), (Position{1, 4}));
    EXPECT_EQ(s.editor.message, "I-find cancelled");
    s.terminal.keys = {'q', 'x', 7};
    s.editor.prompt_find();
    Buffer* log = s.editor.find_buffer("$MESSAGE_BUFFER");
    EXPECT_NE(log->text().find("I-find: qx  (not found)", 0), std::nullopt);
}

TEST(CommandLine, is_edited_on_the_message_line) {
    Session s({"one", "two"}, 6, 12);
    s.press("<CTRL_Z>nonsense<CTRL_U>boty<BACKSPACE>tom");
    EXPECT_EQ(s.terminal.shown.message.row_text(0), "* bottom    ");
    EXPECT_EQ(s.terminal.shown.cursor, (ScreenPlace{5, 8}));
    s.press("<CTRL_Z>bottom<RETURN>");
    EXPECT_EQ(s.cursor(), (Position{1, 3}));
    s.press("<CTRL_Z>write file some/where/else");
    EXPECT_EQ(s.terminal.shown.message.row_text(0), "/where/else ");
    s.editor.headless = true;
    EXPECT_EQ(s.editor.read_command_line("? "), "");
}

TEST(Mouse, moves_the_cursor_of_the_current_window_wherever_it_clicks) {
    Session s({"one", "two", "three"});
    s.editor.show_line_numbers = true;
    s.screen();
    auto click = [&](int row, int col, bool clicked = true) {
        s.editor.handle_event({Event::Kind::mouse, kKeyMouse, {}, {row, col, clicked}});
    };
    click(2, 8);
    EXPECT_EQ(s.cursor(), (Position{2, 2}));
    click(0, 3);
    click(1, 7, false);
    EXPECT_EQ(s.cursor(), (Position{2, 2}));
    EXPECT_EQ(s.editor.mouse_row, 1);
    click(23, 70);
    EXPECT_EQ(s.cursor(), (Position{2, 5}));
    EXPECT_TRUE(s.buffer->undo_stack.empty());
    s.editor.position(s.editor.create_buffer("OTHER", ""));  // not drawn yet
    click(0, 7);
    EXPECT_EQ(s.cursor(), (Position{2, 5}));
}

TEST(AttachedProcess, gets_the_keys_while_it_is_attached) {
    Session s({""});
    auto process = std::make_shared<TPUProcess>();
    ASSERT_TRUE(process->start(s.system, "cat", s.buffer));
    s.editor.processes.running.push_back(process);
    s.editor.processes.attached = process;
    s.press("hi<BACKSPACE><RETURN><F9>");
    s.editor.insert_paste("pasted");
    s.press("<CTRL_D>");
    EXPECT_EQ(s.editor.message, "EOF sent; detached");
    s.editor.processes.attached = process;
    while (!s.editor.processes.running.empty()) s.editor.processes.poll();
    EXPECT_EQ(s.lines(), (Rows{"hi\b", "pasted"}));
    EXPECT_EQ(s.editor.processes.attached, nullptr);
    s.editor.processes.attached = process;
    s.press("<CTRL_Z>x");
    EXPECT_EQ(s.lines(), (Rows{"hi\b", "pastedx"}));
}

TEST(AttachedProcess, gets_characters_and_nothing_else) {
    Session s({""});
    auto process = std::make_shared<TPUProcess>();
    ASSERT_TRUE(process->start(s.system, "cat", s.buffer, Charset::utf8));
    s.editor.processes.running.push_back(process);
    s.editor.processes.attached = process;
    s.editor.pre_key_procedure = s.editor.post_key_procedure = "COPY_TEXT(\"!\")";
    s.editor.gold_pending = true;
    for (int key = 0; key < 500; ++key) {
        if (key == control('Z') || key == control('D')) continue;
        s.editor.handle_event(Event::of_key(key));
        EXPECT_EQ(s.editor.last_key, key);
    }
    EXPECT_TRUE(s.editor.gold_pending);
    std::string expected = "\b\n\n";  // Ctrl-H, and both line ends
    for (int c = 32; c < 256; ++c) expected += c == 127 ? '\b' : static_cast<char>(c);
    expected += "\b\n";  // the backspace key and Enter of the keypad
    s.editor.handle_event(Event::of_key(control('D')));
    while (!s.editor.processes.running.empty()) s.editor.processes.poll();
    EXPECT_EQ(s.buffer->text().text(), expected);
}

TEST(AttachedProcess, says_when_it_takes_no_more) {
    Session s({""});
    auto process = std::make_shared<TPUProcess>();
    ASSERT_TRUE(process->start(s.system, "sleep 1000", s.buffer));
    s.editor.processes.attached = process;
    s.editor.insert_paste(std::string((16 << 20) + 1, 'x'));
    EXPECT_TRUE(s.editor.message.starts_with("SEND: too much waits")) << s.editor.message;
}

TEST(Processes, that_are_deleted_end_and_are_reaped) {
    Session s({""});
    auto run = [&](const char* statement) { s.editor.parser.execute_statement(statement); };
    run("p := CREATE_PROCESS(\"echo up; sleep 1000\")");
    run("ATTACH(p)");
    const pid_t pid = s.editor.processes.running.front()->pid();
    while (s.buffer->text().size() < 2) s.editor.processes.poll();
    run("DELETE(p)");
    EXPECT_TRUE(s.editor.processes.running.empty());
    EXPECT_EQ(s.editor.processes.attached, nullptr);
    const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    // A dead child is there until it is reaped.
    while (kill(pid, 0) == 0 && std::chrono::steady_clock::now() < give_up) {
        s.editor.processes.poll();
    }
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST(Processes, that_are_deleted_and_will_not_end_are_killed_with_the_session) {
    pid_t pid;
    {
        Session s({""});
        auto run = [&](const char* text) { s.editor.parser.execute_statement(text); };
        run("p := CREATE_PROCESS(\"trap '' TERM PIPE; echo up; while :; do sleep 1; done\")");
        pid = s.editor.processes.running.front()->pid();
        while (s.buffer->text().size() < 2) s.editor.processes.poll();
        run("DELETE(p)");
        s.editor.processes.poll();
        EXPECT_EQ(kill(pid, 0), 0);
    }
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST(MainLoop, waits_for_processes_too_but_leaves_time_after_their_output) {
    Session s({""});
    s.editor.parser.execute_statement("CREATE_PROCESS(\"echo one; read x; echo two\")");
    auto process = s.editor.processes.running.front();
    s.terminal.before_key = [&] {
        if (process->pid() > 0) s.terminal.keys.push_front(kNoKey);
        if (s.buffer->text().size() == 2) process->send("\n");
    };
    s.editor.run();
    EXPECT_EQ(s.lines(), (Rows{"one", "two", ""}));
    std::vector<int>& waits = s.terminal.waits;
    EXPECT_EQ(waits.front(), 200);
    EXPECT_NE(std::find(waits.begin(), waits.end(), 20), waits.end());
    EXPECT_EQ(waits.back(), -1);
    EXPECT_TRUE(s.terminal.others.readable.empty());
}

TEST(MainLoop, draws_once_for_keys_that_wait) {
    Session s({"one"});
    s.terminal.keys = {'a', 'b', kKeyResize, kNoKey, 'c'};
    s.terminal.screen = {10, 40};
    s.editor.run();
    EXPECT_EQ(s.lines(), (Rows{"abcone"}));
    EXPECT_EQ(s.terminal.frames, 1);
    EXPECT_EQ(s.editor.rows, 10);
    EXPECT_EQ(s.terminal.waits.front(), -1);
}

TEST(MainLoop, runs_the_timer_when_its_period_has_gone_by_since_the_last_run) {
    Session s({"1", "2", "3", "4"});
    s.editor.timer.interval = 1500;
    s.editor.timer.action = "ERASE_LINE";
    s.terminal.before_key = [&] { s.clock.time += std::chrono::milliseconds(800); };
    s.terminal.keys = {kNoKey, kNoKey, kNoKey};  // at 800, 1600 and 2400 milliseconds
    s.editor.run();                              // and the hang-up at 3200
    EXPECT_EQ(s.lines(), (Rows{"3", "4"}));
    EXPECT_EQ(s.terminal.waits, (std::vector<int>{200, 200, 200, 200}));
}

TEST(Prompts, draw_once_for_keys_that_wait_and_drop_a_line_that_nobody_ended) {
    Session s({"one two", "three"});
    s.press("<CTRL_F>three<RETURN>");
    EXPECT_EQ(s.terminal.frames, 0);
    s.press("<CTRL_Z>erase_line");  // the terminal hangs up
    EXPECT_EQ(s.lines(), (Rows{"one two", "three"}));
    EXPECT_FALSE(s.editor.running);
    s.terminal.pasted = "erase_line\nmore";
    s.terminal.keys = {kKeyPaste, kKeyResize, '\r'};
    s.editor.command_mode();
    EXPECT_EQ(s.lines(), (Rows{"one two"}));
    s.terminal.pasted = "two";
    s.terminal.keys = {kKeyPaste, '\r'};
    s.editor.prompt_find();
    EXPECT_EQ(s.cursor(), (Position{0, 4}));
    s.terminal.keys = {'a', 0xc3, 0xa9, 127};
    s.terminal.keys.insert(s.terminal.keys.end(), 3000, 'x');
    s.terminal.keys.push_back('\r');
    std::string line = s.editor.read_command_line("? ");
    EXPECT_EQ(line.size(), 2047u);
    EXPECT_EQ(line.substr(0, 2), "ax");
}

}  // namespace
}  // namespace tpu
