// A person who presses anything: the session stays whole, undo leads back, and whoever follows
// the text comes to the same one: by the log of changes, a journal and the unsaved work.
#include <gtest/gtest.h>

#include <random>

#include "editor/journal_follower.h"
#include "editor/recovery.h"
#include "store/buffer_file.h"
#include "support/session.h"
#include "text/differences.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

constexpr const char* kPresses[] = {
    "a",
    "\xc3\xa9",
    " ",
    "<RETURN>",
    "<TAB>",
    "<LEFT>",
    "<RIGHT>",
    "<UP>",
    "<DOWN>",
    "<HOME>",
    "<END>",
    "<DELETE>",
    "word ",
    "<INSERT>",
    "<CTRL_V>",
    "<CTRL_W>",
    "<CTRL_Y>",
    "<CTRL_O>",
    "<CTRL_N>",
    "<GOLD>U",
    "<GOLD>R",
    "<PAGEUP>",
    "<PAGEDOWN>",
    "<PF4>",
    "<GOLD>E",
    "<GOLD>T",
    "<F9>",
    "\xff",
    "\"!",
    "<BACKSPACE>",
    "<GOLD>U",
    "<BACKSPACE>",
    "<F8>",
    "<CTRL_F>o<RETURN>",
    "<CTRL_Z>ERASE_LINE; SET(WRAP)<RETURN>",
    "<CTRL_Z>TOP<RETURN>",
    "<CTRL_Z>n := n + 1; COPY_TEXT(n & \"\")<RETURN>",
    "<CTRL_Z>SET(NO_WRAP)<RETURN>",
    "<CTRL_Z>FILL<RETURN>",
    "<CTRL_Z>replace o 0 all<RETURN>",
    "<CTRL_Z>SHIFT(1)<RETURN>",
};

class RandomKeys : public testing::TestWithParam<unsigned> {
  protected:
    struct Person : Session {
        Person(const std::string& file, const std::string& state, unsigned seed)
            : Session({}, 12, 20), random(seed) {
            editor.recovery = std::make_unique<Recovery>(editor, state);
            EXPECT_EQ(edit_file(*buffer, file), "");
            buffer->right_margin = 15;
            buffer->free_cursor = seed % 2 == 0;
        }
        void act() {
            auto chance = [&](unsigned n) { return random() % n == 0; };
            press(kPresses[random() % std::size(kPresses)]);
            if (chance(50)) editor.insert_paste("pasted\ttext\nand more");
            if (chance(100)) {
                terminal.screen = {static_cast<int>(1 + random() % 30),
                                   static_cast<int>(1 + random() % 60)};
                editor.resize_screen();
            }
            if (chance(100))
                editor.parser.compile_text(
                    "IF SEARCH_QUIETLY(\"e\") THEN; COPY_TEXT(\"x\ty\"); ENDIF");
            // The output of a process comes from no statement at all, and not at the cursor.
            if (chance(100)) some_output();
            if (chance(100)) buffer->go_to(random() % (buffer->text().bytes() + 1));
            if (chance(100)) idle();
            editor.draw();
        }
        void some_output() {
            const std::uint64_t from = random() % (buffer->text().bytes() + 1);
            const std::uint64_t to = std::min(from + random() % 100, buffer->text().bytes());
            const std::uint64_t at = random() % (from + 1);
            buffer->edit(at, at + std::min<std::uint64_t>(3, from - at),
                         buffer->text().part(from, to));
            if (random() % 4 == 0) buffer->edit(at, at, "a line\nand\tmore of it");
        }
        // What the main loop does in somewhat more than a second.
        void idle() {
            editor.recovery->serve();
            clock.time += Recovery::kRetry;
            editor.recovery->serve();
            flush_journals(editor, false);
        }

        std::mt19937 random;
    };

    void follow_by_log(const Buffer& buffer) {
        LineStore text = picture;
        for (const Difference& d :
             differences(picture, buffer.text(), buffer.changes().since(version))) {
            text.replace(d.new_begin, d.new_begin + d.old_end - d.old_begin,
                         buffer.text().part(d.new_begin, d.new_end));
        }
        ASSERT_EQ(text, buffer.text());
        ASSERT_TRUE(buffer.changes().since(version)) << "the log is too short";
        picture = buffer.text();
        version = buffer.changes().version();
    }

    TempFolder folder;
    LineStore picture;
    std::uint64_t version = 0;
};

TEST_P(RandomKeys, lead_all_who_follow_to_the_same_text) {
    std::string start = "one two\n\n\xe4\xb8\xad\xff\tthree\ntab\t\"quoted\"!";
    for (int i = 0; i < 300; ++i) start += "\n\xc3\xa4 tab\tline " + std::to_string(i);
    const std::string file = folder.write("file.txt", start), state = folder.path("state"),
                      journal = folder.path("journal");
    LineStore text;
    Position cursor;
    {
        Person person(file, state, GetParam());
        Buffer& buffer = *person.buffer;
        buffer.undo_limit = 1'000'000;
        person.editor.parser.compile_text(
            "DEFINE_KEY(\"COPY_TEXT(9); UNDO; MOVE_HORIZONTAL(-1)\", \"F8\")");
        person.editor.execute_command("JOURNAL_OPEN(\"" + journal + "\", \"" +
                                      (GetParam() % 4 < 2 ? "TEXT" : "BINARY") + "\")");
        picture = buffer.text();
        version = buffer.changes().version();
#ifdef TPU_SANITIZE
        constexpr int kMost = 2'000;
#else
        constexpr int kMost = 10'000;
#endif
        for (int i = 0; i < (GetParam() == 1 ? kMost : 2'000); ++i) {
            person.act();
            if (person.random() % 20 == 0) follow_by_log(buffer);
            buffer.text().check_invariants();
            ASSERT_LT(buffer.cursor_row, buffer.text().size());
            ASSERT_TRUE(buffer.free_cursor || buffer.cursor_column <= buffer.line_length());
        }
        flush_journals(person.editor, true);
        person.editor.recovery->write();
        text = buffer.text();
        cursor = person.cursor();
        // Only now, since no journal records it.
        while (buffer.redo()) {
        }
        const LineStore newest = buffer.text();
        while (buffer.undo()) {
        }
        EXPECT_EQ(buffer.text().text(), start);
        follow_by_log(buffer);
        while (buffer.redo()) {
        }
        EXPECT_EQ(buffer.text(), newest);
    }
    Person recovered(file, state, GetParam());
    recovered.editor.execute_command("RECOVER_BUFFER");
    EXPECT_EQ(recovered.buffer->text(), text);
    Person replayed(file, folder.path("other"), GetParam());
    replayed.editor.execute_command("RECOVER_BUFFER(\"" + journal + "\")");
    EXPECT_EQ(replayed.buffer->text(), text);
    EXPECT_EQ(replayed.cursor(), cursor);
    EXPECT_TRUE(replayed.editor.parser.error_list.empty())
        << replayed.editor.parser.error_list.front();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomKeys, testing::Range(1u, 5u));

}  // namespace
}  // namespace tpu
