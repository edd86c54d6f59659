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

TEST(Keys, only_leave_when_there_is_no_buffer) {
    Session s({"one"});
    s.editor.current_buffer = nullptr;
    s.press("<LEFT><CTRL_W>x<CTRL_S><PF4><GOLD>U");
    EXPECT_EQ(s.lines(), (Rows{"one"}));
    EXPECT_TRUE(s.editor.running);
    for (const char* keys : {"<CTRL_X>", "<GOLD>Q", "<CTRL_Z>q<RETURN>"}) {
        Session other;
        other.press(keys);
        EXPECT_FALSE(other.editor.running) << keys;
    }
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

TEST(AttachedProcess, gets_the_keys_while_it_is_attached) {
    Session s({""});
    auto run = [&](const char* text) { s.editor.parser.execute_statement(text); };
    run("p := CREATE_PROCESS(\"cat\")");
    EXPECT_TRUE(s.editor.message.starts_with("Process started (pid ")) << s.editor.message;
    run("SEND(\"sent\")");
    run("ATTACH");
    s.press("hi<BACKSPACE><RETURN><F9>");
    s.editor.insert_paste("pasted");
    s.press("<CTRL_Z>x");
    EXPECT_EQ(s.lines(), Rows{"x"}) << "detached";
    s.press("<BACKSPACE>");
    run("ATTACH(p)");
    s.press("!<CTRL_D>");
    EXPECT_EQ(s.editor.message, "EOF sent; detached");
    s.editor.processes.attached = s.editor.processes.running.front();
    while (!s.editor.processes.running.empty()) s.editor.processes.poll();
    EXPECT_EQ(s.lines(), (Rows{"sent", "hi\b", "pasted!"}));
    EXPECT_EQ(s.editor.processes.attached, nullptr);
}

TEST(AttachedProcess, gets_characters_and_nothing_else) {
    Session s({""});
    auto process = std::make_shared<TPUProcess>();
    Failure why;
    ASSERT_TRUE(process->start(s.system, "cat", s.buffer, why, Charset::utf8));
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
    Failure why;
    ASSERT_TRUE(process->start(s.system, "sleep 1000", s.buffer, why));
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
