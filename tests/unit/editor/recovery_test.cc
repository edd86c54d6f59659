// Unsaved work that outlives its session.
#include "editor/recovery.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <set>

#include "editor/journal_follower.h"
#include "store/buffer_file.h"
#include "store/recovery_files.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

struct RecoveryTest : testing::Test {
    // A session that keeps work in the folder, and has loaded the file.
    struct Worker : Session {
        Worker(const std::string& folder, const std::string& file) {
            editor.recovery = std::make_unique<Recovery>(editor, folder);
            EXPECT_EQ(edit_file(*buffer, file), "");
        }
        // What the main loop does in somewhat more than a second.
        void idle() {
            editor.recovery->serve();
            clock.time += Recovery::kRetry;
            editor.recovery->serve();
            while (editor.recovery->serve() == std::chrono::milliseconds(0)) {
            }
        }
        std::string text() { return buffer->text().text(); }
    };

    std::vector<LeftBehind> left() { return left_behind(state, file); }
    std::string greeting(Worker& worker) {
        return worker.editor.recovery->greeting(*worker.buffer);
    }

    TempFolder folder;
    const std::string state = folder.path("state/tpu/recovery");
    const std::string file = folder.write("file.txt", "one\ntwo\nthree\n");
};

TEST_F(RecoveryTest, work_of_a_session_that_died_is_brought_back) {
    {
        Worker dying(state, file);
        EXPECT_EQ(greeting(dying), "");
        dying.press("hello \xc3\xa4<DOWN><END>!<RETURN>x<TAB>y");
        dying.idle();
        dying.press("<CTRL_V><UP><CTRL_W>");
        dying.idle();
        EXPECT_TRUE(left().empty());  // nobody else's while it is written
    }
    ASSERT_EQ(left().size(), 1u);
    EXPECT_EQ(status_of(left()[0].path).st_mode & 0777, 0600u);
    EXPECT_EQ(status_of(state).st_mode & 0777, 0700u);
    Worker next(state, file);
    EXPECT_TRUE(greeting(next).ends_with("was left behind: RECOVER_BUFFER brings it back"));
    EXPECT_EQ(next.text(), "one\ntwo\nthree");
    next.editor.parser.execute_statement("SET(OVERSTRIKE); SET(WRAP); SET(RIGHT_MARGIN, 3)");
    std::string path = left()[0].path;
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_TRUE(next.editor.message.starts_with("RECOVER_BUFFER replayed the work of 2"));
    EXPECT_EQ(next.editor.message.find('/'), std::string::npos);
    EXPECT_EQ(next.editor.parser.error_count, 0)
        << "no record is a fault, nor is what names the base";
    EXPECT_FALSE(std::filesystem::exists(path));  // the new session keeps it by now
    EXPECT_EQ(next.text(), "hello \xc3\xa4one\ntwo!\nthree");
    next.press("<GOLD>U");
    EXPECT_EQ(next.text(), "one\ntwo\nthree");
    next.press("<GOLD>R");
    // Once it is saved, nothing is left.
    next.editor.execute_command("WRITE");
    next.editor.recovery->serve();
    EXPECT_EQ(folder.read("file.txt"), "hello \xc3\xa4one\ntwo!\nthree");
    EXPECT_TRUE(left().empty());
    EXPECT_TRUE(std::filesystem::is_empty(state));
}

TEST_F(RecoveryTest, nothing_is_left_by_a_session_that_ended_on_purpose) {
    Worker worker(state, file);
    worker.press("a");
    worker.idle();
    EXPECT_FALSE(std::filesystem::is_empty(state));
    worker.terminal.keys = {'b', control('X')};
    worker.editor.run();
    EXPECT_TRUE(std::filesystem::is_empty(state));

    Worker hung_up(state, file);
    hung_up.terminal.keys = {'b'};
    hung_up.editor.run();
    EXPECT_FALSE(std::filesystem::is_empty(state));
}

TEST_F(RecoveryTest, keeps_each_change_within_a_second) {
    Worker worker(state, file);
    auto is_kept = [&] { return std::filesystem::exists(state); };
    auto& recovery = *worker.editor.recovery;
    const auto nearly = Recovery::kLongestWait - std::chrono::milliseconds(1);
    EXPECT_LT(recovery.serve().count(), 0);
    worker.editor.insert_paste("pasted");
    EXPECT_EQ(recovery.serve(), Recovery::kLongestWait);
    worker.clock.time += nearly;
    worker.press("typed");  // does not put it off
    EXPECT_EQ(recovery.serve().count(), 1);
    EXPECT_FALSE(is_kept());
    worker.clock.time += std::chrono::milliseconds(1);
    recovery.serve();
    EXPECT_TRUE(is_kept());
}

TEST_F(RecoveryTest, keeps_work_while_a_prompt_is_open) {
    for (const char* prompt : {"<CTRL_Z>", "<CTRL_F>", "<CTRL_Z>READ_KEY<RETURN>"}) {
        SCOPED_TRACE(prompt);
        std::filesystem::remove_all(state);
        Worker worker(state, file);
        std::vector<int> codes = key_codes(std::string("abcdef").append(prompt));
        worker.terminal.keys.assign(codes.begin(), codes.end());
        for (int i = 0; i < 4; ++i) worker.terminal.keys.push_back(kNoKey);
        bool kept_while_open = false;
        worker.terminal.before_key = [&] {
            if (worker.terminal.keys.empty() || worker.terminal.keys.front() != kNoKey) return;
            kept_while_open = std::filesystem::exists(state);
            worker.clock.time += std::chrono::milliseconds(400);
        };
        worker.editor.run();
        EXPECT_TRUE(kept_while_open);
    }
}

// Keys and commands; what the buffer holds then is what comes back, whatever was saved
// meanwhile and whatever loading makes of it.
TEST_F(RecoveryTest, begins_with_what_loading_the_saved_file_gives) {
    const std::vector<std::vector<std::string>> sessions = {
        {"<END><RETURN>", "WRITE", "new"},
        {"<END>", "COPY_TEXT(FAO(\"!%C\", 13))", "WRITE", "new"},
        {"<END><RETURN><RETURN>x<UP>", "COPY_TEXT(FAO(\"!%C!%C\", 13, 13))", "WRITE", "<DOWN>new"},
        {"new", "WRITE", "UNDO"},
        {"new", "WRITE", "more", "WRITE", "UNDO", "UNDO", "UNDO"},
        {"<DOWN><DOWN><END><RETURN>", "WRITE", "RELOAD", "<END>new"},
    };
    for (const auto& session : sessions) {
        SCOPED_TRACE(session[0] + session.back());
        for (bool keeps_journal : {false, true}) {
            folder.write("file.txt", "one\ntwo\nthree\n");
            std::filesystem::remove_all(state);
            const std::string journal = folder.path("journal");
            std::filesystem::remove(journal);
            std::string text;
            {
                Worker dying(state, file);
                for (std::size_t i = 0; i < session.size(); ++i) {
                    const std::string& step = session[i];
                    if (keeps_journal && i + 1 == session.size()) {
                        dying.editor.execute_command("JOURNAL_OPEN(\"" + journal + "\")");
                    }
                    const bool is_command = step.size() > 3 && step[0] >= 'A' && step[0] <= 'Z';
                    is_command ? dying.editor.execute_command(step) : dying.press(step);
                    if (i % 2 == 0) dying.idle();
                }
                dying.idle();
                flush_journals(dying.editor, true);
                text = dying.text();
            }
            Worker next(state, file);
            next.editor.execute_command(keeps_journal ? "RECOVER_BUFFER(\"" + journal + "\")"
                                                      : "RECOVER_BUFFER");
            // A journal has no steps of undo from before it was opened.
            if (keeps_journal && session.back() == "UNDO") continue;
            EXPECT_EQ(next.text(), text);
        }
    }
}

TEST_F(RecoveryTest, of_a_second_crash_leaves_nothing_of_the_first) {
    for (const char* more : {"b", "c", "d"}) {
        Worker dying(state, file);
        dying.editor.execute_command("RECOVER_BUFFER");
        dying.press(more);
        dying.idle();
    }
    ASSERT_EQ(left().size(), 1u);
    Worker next(state, file);
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(next.text(), "bcdone\ntwo\nthree");
    next.editor.execute_command("WRITE");
    next.editor.recovery->serve();
    EXPECT_TRUE(std::filesystem::is_empty(state));
}

TEST_F(RecoveryTest, on_a_file_that_has_changed_gets_a_buffer_of_its_own) {
    {
        Worker dying(state, file);
        dying.press("<DOWN>typed ");
        dying.idle();
    }
    // A new time alone is no change.
    struct timespec times[2] = {{1'000'000, 0}, {1'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    {
        Worker same(state, file);
        same.editor.execute_command("RECOVER_BUFFER");
        EXPECT_EQ(same.text(), "one\ntyped two\nthree");
    }
    folder.write("file.txt", "something else");
    {
        Worker next(state, file);
        EXPECT_NE(greeting(next), "");
        next.editor.execute_command("RECOVER_BUFFER");
        EXPECT_EQ(next.text(), "something else");
        Buffer& work = *next.editor.current_buffer;
        EXPECT_EQ(work.name, "RECOVERED " + file);
        EXPECT_EQ(work.text().text(), "one\ntyped two\nthree");
        EXPECT_TRUE(work.modified);
        EXPECT_EQ(work.file_name, "");  // not to be written over the other text
        EXPECT_EQ(greeting(next), "");
        next.idle();
    }
    // It is kept on from there, as text without a file.
    Session unnamed;
    unnamed.editor.recovery = std::make_unique<Recovery>(unnamed.editor, state);
    unnamed.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(unnamed.buffer->text().text(), "one\ntyped two\nthree");
}

TEST_F(RecoveryTest, on_a_text_that_nobody_has_any_more_is_shown_on_that_of_now) {
    {
        Worker dying(state, file);
        dying.press("typed ");
        dying.idle();
    }
    for (const auto& entry : std::filesystem::directory_iterator(state)) {
        if (entry.path().extension() == ".base") std::filesystem::remove(entry.path());
    }
    folder.write("file.txt", "something else");
    Worker next(state, file);
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(next.editor.message,
              "The file has changed: look over what the work made of the text of now");
    EXPECT_EQ(next.editor.current_buffer->text().text(), "typed something else");
    EXPECT_EQ(next.text(), "something else");
}

TEST_F(RecoveryTest, keeps_texts_without_a_file) {
    {
        Session dying;
        dying.editor.recovery = std::make_unique<Recovery>(dying.editor, state);
        dying.press("first");
        dying.editor.execute_command("BUFFER other");
        dying.press("second");
        dying.editor.recovery->write();
    }
    EXPECT_EQ(left_behind(state, "").size(), 2u);
    EXPECT_TRUE(left().empty());
    Session next;
    next.editor.recovery = std::make_unique<Recovery>(next.editor, state);
    EXPECT_NE(next.editor.recovery->greeting(*next.buffer), "");
    std::set<std::string> texts;
    for (int i = 0; i < 2; ++i) {
        next.editor.execute_command("RECOVER_BUFFER");
        texts.insert(next.editor.current_buffer->text().text());
    }
    EXPECT_EQ(texts, (std::set<std::string>{"first", "second"}));
    next.editor.execute_command("WRITE " + folder.path("saved"));
    next.editor.recovery->serve();
    next.editor.recovery->discard();
    EXPECT_TRUE(std::filesystem::is_empty(state));
}

TEST_F(RecoveryTest, believes_only_what_is_the_users_own) {
    {
        Worker dying(state, file);
        dying.press("a");
        dying.idle();
    }
    const std::string path = left()[0].path;
    auto is_offered = [&] { return !left_behind(state, file).empty(); };
    for (const std::string& place : {state, path}) {
        const auto before = std::filesystem::status(place).permissions();
        std::filesystem::permissions(place, std::filesystem::perms::others_write,
                                     std::filesystem::perm_options::add);
        EXPECT_FALSE(is_offered()) << place;
        std::filesystem::permissions(place, before);
        EXPECT_TRUE(is_offered()) << place;
        if (geteuid() != 0) continue;
        ASSERT_EQ(chown(place.c_str(), 12345, 12345), 0);
        EXPECT_FALSE(is_offered()) << place;
        ASSERT_EQ(chown(place.c_str(), 0, 0), 0);
    }
    // Whoever comes to plant records all the same cannot run a program with them.
    const std::string plants[] = {"SPAWN(\"touch " + folder.path("pwned") + "\")",
                                  "COPY_TEXT(GET_CLIPBOARD)", "x := 1",
                                  "COPY_TEXT(\"a\"); WRITE_FILE(\"" + file + "\")"};
    const std::string good =
        folder.read("state/tpu/recovery/" + std::filesystem::path(path).filename().string());
    for (const std::string& plant : plants) {
        const std::string record = {static_cast<char>(plant.size()), 0, 0, 0};
        std::ofstream(path, std::ios::binary) << good << record << plant;
        Worker next(state, file);
        next.editor.execute_command("RECOVER_BUFFER");
        EXPECT_TRUE(next.editor.message.starts_with("RECOVER_BUFFER: cannot read ")) << plant;
        EXPECT_EQ(next.text(), "one\ntwo\nthree");
    }
}

TEST_F(RecoveryTest, makes_no_folders_in_the_home_of_another_user) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give folders away";
    std::filesystem::create_directory(folder.path("home"));
    ASSERT_EQ(chown(folder.path("home").c_str(), 12345, 12345), 0);
    Worker worker(folder.path("home/.local/state/tpu/recovery"), file);
    worker.press("a");
    worker.idle();
    EXPECT_TRUE(std::filesystem::is_empty(folder.path("home")));
    EXPECT_EQ(worker.editor.message,
              "Unsaved work is not kept: " + folder.path("home") + " belongs to another user");
}

TEST_F(RecoveryTest, knows_a_file_that_is_still_to_be_made_by_any_of_its_names) {
    const auto here = std::filesystem::current_path();
    std::string reason;
    std::optional<RecoveryFile> made =
        RecoveryFile::create(state, "not-there-yet", 0, LineStore(), reason);
    ASSERT_TRUE(made && made->append({"SPLIT_LINE"}, reason)) << reason;
    made.reset();
    EXPECT_EQ(left_behind(state, (here / "not-there-yet").string()).size(), 1u);
    EXPECT_EQ(left_behind(state, (here / "x" / ".." / "not-there-yet").string()).size(), 1u);
    EXPECT_TRUE(left_behind(state, folder.path("not-there-yet")).empty());
}

TEST_F(RecoveryTest, that_finds_no_room_goes_on_once_there_is_some) {
    const std::string long_text(20'000, 'x');
    {
        Worker dying(state, file);
        dying.press("a");
        dying.idle();
        dying.editor.insert_paste(long_text);
        {
            FileSizeLimit limit(10'000);
            dying.idle();
        }
        EXPECT_EQ(dying.editor.message, "Unsaved work is not kept: File too large");
        dying.editor.execute_command("SHOW SYSTEM");
        EXPECT_NE(dying.editor.current_buffer->text().text().find("not kept: File too large"),
                  std::string::npos);
        dying.editor.execute_command("BUFFER MAIN");
        dying.editor.set_message("");
        dying.press("b");
        dying.idle();
    }
    Worker next(state, file);
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(next.text(), "a" + long_text + "bone\ntwo\nthree");
}

TEST_F(RecoveryTest, does_without_a_folder_that_cannot_be_made) {
    std::filesystem::create_symlink("loop", folder.path("loop"));
    const std::string hopeless[] = {file + "/tpu", folder.path("loop/tpu"),
                                    folder.path(std::string(300, 'x'))};
    for (const std::string& place : hopeless) {
        Worker worker(place, file);
        EXPECT_EQ(greeting(worker), "");
        worker.press("a");
        worker.idle();
        EXPECT_EQ(worker.text(), "aone\ntwo\nthree");
        EXPECT_TRUE(worker.editor.message.starts_with("Unsaved work is not kept: "));
        worker.editor.set_message("");
        worker.idle();
        EXPECT_EQ(worker.editor.message, "");  // it is told once
    }
}

TEST_F(RecoveryTest, keeps_what_has_changed_and_not_what_lies_between) {
    std::string text;
    while (text.size() < 4'000'000) text += "a line of a text that is rather long\n";
    folder.write("file.txt", text);
    std::string changed;
    {
        Worker dying(state, file);
        dying.press("first");
        dying.buffer->move_vertical(50'000);
        dying.press("middle<RETURN>");
        dying.buffer->end_of_buffer();
        dying.press("last");
        dying.idle();
        changed = dying.text();
    }
    ASSERT_EQ(left().size(), 1u);
    EXPECT_LT(std::filesystem::file_size(left()[0].path), 1000u);
    Worker next(state, file);
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(next.text(), changed);
}

TEST_F(RecoveryTest, brings_back_any_bytes) {
    std::mt19937 random(7);
    auto bytes = [&] {
        std::string some;
        while (some.size() < 100'000) some += static_cast<char>(random());
        return some;
    };
    folder.write("file.txt", bytes());
    LineStore changed;
    {
        Worker dying(state, file);
        dying.press("x");
        dying.buffer->edit(50'000, 60'000, LineStore::from_text(bytes()));
        dying.idle();
        // Line feeds that are text have no line of their own.
        dying.buffer->edit(20'000, 20'000, "a\nb\tc");
        dying.idle();
        dying.buffer->end_of_buffer();
        dying.press("y");
        dying.idle();
        changed = dying.buffer->text();
    }
    Worker next(state, file);
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_TRUE(next.buffer->text() == changed) << next.editor.message;
}

TEST_F(RecoveryTest, is_in_a_journal_with_all_that_it_brought_back) {
    {
        Worker dying(state, file);
        dying.press("a<DOWN>b<TAB>c");
        dying.idle();
    }
    Worker next(state, file);
    const std::string journal = folder.path("journal");
    next.editor.execute_command("JOURNAL_OPEN(\"" + journal + "\")");
    next.editor.execute_command("RECOVER_BUFFER");
    next.press("d");
    flush_journals(next.editor, true);
    next.editor.recovery->discard();
    Worker again(state, file);
    again.editor.execute_command("RECOVER_BUFFER(\"" + journal + "\")");
    EXPECT_NE(again.text(), "one\ntwo\nthree");
    EXPECT_EQ(again.text(), next.text());
}

TEST_F(RecoveryTest, is_told_of_whichever_way_the_file_is_opened) {
    {
        Worker dying(state, file);
        dying.press("a");
        dying.idle();
    }
    Worker next(state, folder.path("other"));
    for (std::string opening : {"CREATE_BUFFER(\"b\", \"" + file + "\")", "GET " + file}) {
        next.editor.set_message("");
        next.editor.execute_command(opening);
        EXPECT_TRUE(next.editor.message.starts_with("Unsaved work of ")) << next.editor.message;
    }
}

TEST_F(RecoveryTest, is_refused_where_it_makes_no_sense) {
    Worker worker(state, file);
    std::string reason;
    EXPECT_EQ(worker.editor.recovery->recover(*worker.buffer, reason),
              "RECOVER_BUFFER: there is no unsaved work on this buffer's file");
    worker.press("a");
    worker.idle();
    {
        Worker other(state, file);
        EXPECT_EQ(greeting(other), "");
    }
    Session plain;
    plain.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(plain.editor.message, "RECOVER_BUFFER(file)");
}

}  // namespace
}  // namespace tpu
