// Unsaved work that outlives its session.
#include "editor/recovery.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <random>

#include "editor/journal_mirror.h"
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
            EXPECT_EQ(buffer->edit_file(file), "");
        }
        // What happens between keys once the keyboard has been idle for a while.
        void idle() {
            editor.recovery->note_key();
            clock.time += Recovery::kIdle;
            editor.recovery->serve();
        }
        std::string text() { return buffer->lines.text(); }
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
    EXPECT_EQ(next.editor.message, "RECOVER_BUFFER replayed " + path);
    EXPECT_EQ(next.text(), "hello \xc3\xa4one\ntwo!\nthree");
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

TEST_F(RecoveryTest, two_hundred_keys_are_reason_enough) {
    Worker worker(state, file);
    for (int i = 0; i < Recovery::kMostKeys; ++i) {
        worker.press("a");
        EXPECT_FALSE(std::filesystem::exists(state));
        worker.editor.recovery->note_key();
        worker.editor.recovery->serve();
    }
    EXPECT_FALSE(std::filesystem::is_empty(state));
}

TEST_F(RecoveryTest, a_file_that_has_changed_since_is_not_mixed_up) {
    {
        Worker dying(state, file);
        dying.press("a");
        dying.idle();
    }
    folder.write("file.txt", "something else");
    struct timespec times[2] = {{1'000'000, 0}, {1'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    Worker next(state, file);
    EXPECT_NE(greeting(next), "");
    std::string refusal = next.editor.recovery->recover(*next.buffer);
    EXPECT_TRUE(refusal.starts_with("The file has changed since; RECOVER_BUFFER(\"")) << refusal;
    EXPECT_EQ(next.text(), "something else");
    next.press("x");
    next.idle();
    next.editor.recovery->discard();
    EXPECT_EQ(left().size(), 1u);  // what was never brought back stays
}

TEST_F(RecoveryTest, knows_a_file_that_is_still_to_be_made_by_any_of_its_names) {
    const auto here = std::filesystem::current_path();
    ASSERT_TRUE(RecoveryFile::create(state, "not-there-yet", 0).has_value());
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
        EXPECT_EQ(dying.editor.message, "");  // nobody is told
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
        EXPECT_EQ(worker.editor.message, "");
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

TEST_F(RecoveryTest, brings_back_changes_at_any_places) {
    std::string text;
    for (int i = 0; i < 3000; ++i) text += "\xc3\xa4 tab\tline " + std::to_string(i) + "\n\n";
    folder.write("file.txt", text);
    const char* keys[] = {"a",        "\xe4\xb8\xad", "<RETURN>", "<TAB>",    "<DELETE>",
                          "<INSERT>", "<BACKSPACE>",  "<END>",    "word ",    "<GOLD>U",
                          "<GOLD>R",  "<CTRL_V>",     "<CTRL_W>", "<CTRL_Y>", "<PF4>",
                          "\"",       "<UP>"};
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::string changed;
        {
            Worker dying(state, file);
            Buffer& buffer = *dying.buffer;
            buffer.free_cursor = seed % 3 == 0;
            for (int i = 0; i < 60; ++i) {
                buffer.cursor_row = random() % buffer.lines.size();
                buffer.cursor_column = random() % 8;
                for (int n = 0; n < 5; ++n) dying.press(keys[random() % std::size(keys)]);
                if (random() % 10 == 0) {
                    std::uint64_t from = random() % (buffer.lines.bytes() / 2);
                    buffer.lines.insert(random() % from, buffer.lines.part(from, from + 10'000));
                }
                if (random() % 20 == 0) dying.idle();
            }
            dying.idle();
            changed = dying.text();
        }
        Worker next(state, file);
        next.editor.execute_command("RECOVER_BUFFER");
        EXPECT_TRUE(next.text() == changed) << next.editor.message;
        next.editor.recovery->discard();
        std::filesystem::remove_all(state);
    }
}

TEST_F(RecoveryTest, brings_back_any_bytes) {
    std::mt19937 random(7);
    auto bytes = [&] {
        std::string some;
        while (some.size() < 100'000) some += static_cast<char>(random());
        return some;
    };
    folder.write("file.txt", bytes());
    std::string changed;
    {
        Worker dying(state, file);
        dying.press("x");
        dying.buffer->lines.replace(50'000, 60'000, LineStore::from_text(bytes()));
        dying.idle();
        // Line feeds that are text have no line of their own.
        dying.buffer->lines.insert(20'000, "a\nb\tc");
        dying.idle();
        dying.buffer->end_of_buffer();
        dying.press("y");
        dying.idle();
        changed = dying.text();
    }
    Worker next(state, file);
    next.editor.execute_command("RECOVER_BUFFER");
    EXPECT_TRUE(next.text() == changed) << next.editor.message;
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
    EXPECT_EQ(worker.editor.recovery->recover(*worker.buffer),
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
