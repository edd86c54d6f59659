// Journals: what is recorded, what a replay makes of it, and what becomes of damage.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "editor/journal_follower.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;

std::string record(const std::string& text) {
    std::string bytes(4, '\0');
    for (int i = 0; i < 4; ++i)
        bytes[static_cast<std::size_t>(i)] = static_cast<char>(text.size() >> 8 * i);
    return bytes + text;
}

const std::string kHeader("TPJB\1\0\0\0", 8);

// A session that runs statements, and what it said.
struct Journaled : Session {
    using Session::Session;
    void run(const std::string& source) { editor.parser.compile_text(source); }
    void open(const std::string& path, const std::string& format = "BINARY") {
        run("JOURNAL_OPEN(\"" + path + "\", \"" + format + "\")");
    }
    // The message that was shown and the one before it.
    Lines recover(const std::string& path) {
        run("RECOVER_BUFFER(\"" + path + "\")");
        Lines all = editor.find_buffer("$MESSAGE_BUFFER")->text().lines();
        return {all.size() < 2 ? "" : all[all.size() - 2], all.back()};
    }
};

class Journals : public testing::Test {
  protected:
    TempFolder folder;
    const std::string path = folder.path("j");
};

TEST_F(Journals, have_both_formats_to_the_byte) {
    Journaled s;
    s.open(path);
    EXPECT_EQ(s.editor.message, "Journaling (binary TPJB) to " + path);
    EXPECT_EQ(folder.read("j"), kHeader);
    EXPECT_EQ(status_of(path).st_mode & 0777, 0600u);
    s.run("COPY_TEXT(\"a\"); x:=1");
    EXPECT_EQ(folder.read("j"), kHeader + record("COPY_TEXT(\"a\")") + record("x := 1"));
    s.run("JOURNAL_CLOSE; SPLIT_LINE");
    EXPECT_TRUE(folder.read("j").ends_with(record("JOURNAL_CLOSE")));
    EXPECT_EQ(s.buffer->journal_file, "");

    s.open(folder.path("t"), "text");
    EXPECT_EQ(s.editor.message, "Journaling (text) to " + folder.path("t"));
    s.run("COPY_TEXT(\"b\"); SET(JOURNALING, OFF); x := 2");
    s.buffer->journaling = true;
    s.buffer->journal_file.clear();
    s.run("x := 3");
    EXPECT_EQ(folder.read("t"), "COPY_TEXT(\"b\")\nSET(JOURNALING, OFF)\n");
    s.open(path, "other");
    EXPECT_EQ(s.editor.message, "JOURNAL_OPEN: the format is TEXT or BINARY");
}

TEST_F(Journals, in_text_are_never_taken_for_binary_ones) {
    Journaled s, again;
    s.open(path, "TEXT");
    s.run("tpjb := 1");
    std::filesystem::remove(path);
    s.run("TPJB := 2");
    s.run("COPY_TEXT(TPJB)");
    EXPECT_EQ(folder.read("j"), " TPJB := 2\nCOPY_TEXT(TPJB)\n");
    again.recover(path);
    EXPECT_EQ(again.lines(), Lines{"2"});
}

TEST_F(Journals, have_the_outermost_statements_alone) {
    Journaled s;
    s.open(path, "TEXT");
    s.run(
        "PROCEDURE p(n); COPY_TEXT(n); IF 1 THEN COPY_TEXT(n); ENDIF; ENDPROCEDURE\np(1); e := "
        "p(2)");
    s.run(
        "IF x=1 THEN p(3)\nELSE IF NOT x THEN p(4); ENDIF; ENDIF; LOOP; EXITIF(1); BREAK; ENDLOOP");
    s.run("ON_ERROR; p(5); p(6); ENDON_ERROR\np(7); ABORT; p(8)");
    s.editor.run_key_text("p(9)");
    s.run("COPY_TEXT(\"a\n!b\" & \"c\")");
    EXPECT_EQ(folder.read("j"),
              "p(1)\ne := p(2)\nIF x=1 THEN; p(3); ELSE; IF NOT x THEN; p(4); ENDIF; ENDIF\n"
              "LOOP; EXITIF (1); BREAK; ENDLOOP\np(7)\nABORT\np(5)\np(6)\np(9)\n"
              "COPY_TEXT(FAO(\"a!/!!b\") & \"c\")\n");
}

TEST_F(Journals, have_blocks_of_any_depth) {
    Journaled s;
    s.open(path);
    std::string source = "COPY_TEXT(\"deep\")";
    for (int i = 0; i < 3'000; ++i) source = "IF 1 THEN\n" + source;
    s.run(source);
    Journaled again;
    again.recover(path);
    EXPECT_EQ(again.lines(), Lines{"deep"});
}

TEST_F(Journals, rebuild_text_cursor_variables_and_undo) {
    const char* const source = R"(
        PROCEDURE type(text); COPY_TEXT(text); SPLIT_LINE; RETURN LENGTH(text); ENDPROCEDURE
        LOOP; EXITIF type("looped") > 5; ENDLOOP
        IF SEARCH("start", REVERSE) THEN COPY_TEXT("found "); ENDIF
        other := CREATE_BUFFER("quote "); POSITION(other); COPY_TEXT("unrecorded")
        POSITION(GET_BUFFER("MAIN"))
        COPY_TEXT("undone"); UNDO; a{1} := type("line
break " & 'x'); UNDO; REDO
        LEARN_BEGIN; COPY_TEXT("learned "); again := LEARN_END; EXECUTE(again)
        ON_ERROR; COPY_TEXT("handled"); ENDON_ERROR
        SET(JOURNALING, OFF); SET(JOURNALING, ON); RECOVER_BUFFER("nowhere"); ABORT; COPY_TEXT("never"))";
    for (const char* format : {"BINARY", "TEXT"}) {
        const std::string file = folder.path(format);
        Journaled s({"start", "end"}), again({"start", "end"});
        s.open(file, format);
        s.run(source);
        again.run(
            "PROCEDURE type(text); COPY_TEXT(text); SPLIT_LINE; RETURN LENGTH(text); ENDPROCEDURE");
        again.press("x<BACKSPACE>");
        again.open(folder.path("live"));
        Lines said = again.recover(file);
        EXPECT_EQ(said[1], "RECOVER_BUFFER replayed " + file);
        EXPECT_TRUE(said[0].ends_with("the end of the journal was reached")) << said[0];
        EXPECT_EQ(again.editor.current_buffer, again.buffer);
        EXPECT_TRUE(again.buffer->journaling) << "what was replayed closed the live journal";
        EXPECT_EQ(again.cursor(), s.cursor());
        EXPECT_EQ(again.lines(), s.lines()) << format;
        // It is one step, and the steps before it are still there.
        again.run("UNDO");
        EXPECT_EQ(again.lines(), (Lines{"start", "end"}));
        again.run("UNDO");
        EXPECT_EQ(again.lines(), (Lines{"xstart", "end"}));
        again.run("REDO; REDO");
        EXPECT_EQ(again.lines(), s.lines());
        EXPECT_EQ(learned_of(*variable(again.editor, "AGAIN"))->statements.size(), 1u);
    }
}

TEST_F(Journals, replay_what_several_statements_on_a_line_undo) {
    Journaled s({"one"}), again({"one"});
    s.open(path);
    for (const char* line : {"COPY_TEXT(\"a\"); COPY_TEXT(\"b\"); UNDO",
                             "COPY_TEXT(\"c\"); COPY_TEXT(\"d\")", "UNDO", "COPY_TEXT(\"e\")"}) {
        s.editor.execute_command(line);
    }
    s.press("<CTRL_Z>SET MARGINS 0 0<RETURN>f");
    flush_journals(s.editor, true);
    again.recover(path);
    EXPECT_EQ(s.lines(), Lines{"efone"});
    EXPECT_EQ(again.lines(), s.lines());
    EXPECT_EQ(again.buffer->left_margin + again.buffer->right_margin, 0u);
}

TEST_F(Journals, are_replayed_up_to_what_is_wrong_with_them) {
    const std::string good = record("COPY_TEXT(\"a\")"), more = record("COPY_TEXT(\"z\")");
    const struct {
        std::string bytes;
        std::string text;
        std::string message;
    } cases[] = {
        {"", "", "0 statements replayed; the end of the journal was reached"},
        {kHeader, "", "0 statements replayed; the end of the journal was reached"},
        {"TPJB\1", "", "0 statements replayed; the end of the journal was reached"},
        {kHeader + good, "a", "1 statement replayed; the end of the journal was reached"},
        {kHeader + good + record("") + more, "a",
         "1 statement replayed; the record at byte 26 is empty"},
        {kHeader + good + more.substr(0, 3), "a",
         "1 statement replayed; the record at byte 26 is cut short"},
        {kHeader + good + more.substr(0, 9), "a",
         "1 statement replayed; the record at byte 26 is cut short"},
        {kHeader + good + std::string("\1\0\0\1", 4) + more, "a",
         "1 statement replayed; the record at byte 26 is too long"},
        {kHeader + good + record("garbage \xff\0") + more, "az",
         "3 statements replayed; the end of the journal was reached"},
        {"TPJ", "", "1 statement replayed; the end of the journal was reached"},
        {"COPY_TEXT(\"a\")\r\n\r\n\nCOPY_TEXT(\"z\")", "az",
         "2 statements replayed; the end of the journal was reached"},
        {"ABORT\nCOPY_TEXT(\"a\")\nQUIT(3)\nIF 1 THEN; COPY_TEXT(\"b\"); ENDIF\n", "ab",
         "4 statements replayed; the end of the journal was reached"},
        {"COPY_TEXT(\"a\")\n" + std::string((1 << 24) + 1, '\0'), "a",
         "1 statement replayed; the record at byte 15 is too long"},
    };
    for (const auto& c : cases) {
        Journaled s;
        folder.write("j", c.bytes);
        EXPECT_EQ(s.recover(path), (Lines{c.message, "RECOVER_BUFFER replayed " + path}));
        EXPECT_EQ(s.lines(), Lines{c.text}) << c.message;
        EXPECT_TRUE(s.editor.running);
    }
    Journaled s;
    for (const std::string& bad :
         {folder.path("none"), folder.path(""), std::string("/dev/null")}) {
        EXPECT_EQ(s.recover(bad)[0], "RECOVER_BUFFER: cannot open " + bad);
    }
    folder.write("j", std::string("TPJB\2\0\0\0", 8) + good);
    EXPECT_EQ(s.recover(path)[1],
              "RECOVER_BUFFER: " + path +
                  ": the journal is of a version that this program does not know");
    EXPECT_EQ(s.lines(), Lines{""});
}

TEST_F(Journals, cannot_feed_themselves) {
    const std::string other =
        folder.write("other", "COPY_TEXT(\"o\")\nRECOVER_BUFFER(\"" + path + "\")\n");
    Journaled s;
    s.open(path);
    s.run("COPY_TEXT(\"a\")");
    EXPECT_EQ(s.recover(path)[1], "RECOVER_BUFFER replayed " + path);
    EXPECT_EQ(s.lines(), Lines{"aa"});
    s.recover(other);
    EXPECT_EQ(s.lines(), Lines{"aaoa"})
        << "the other one replays this one, which does not replay the other again";
    const std::string bytes = folder.read("j");
    EXPECT_TRUE(bytes.ends_with(record("RECOVER_BUFFER(\"" + other + "\")"))) << bytes;
}

TEST_F(Journals, are_continued_but_never_harmed) {
    const std::string good = record("COPY_TEXT(\"a\")"), more = record("COPY_TEXT(\"z\")");
    const struct {
        std::string format;
        std::string before;
        std::string after;  // one more statement was recorded; empty: refused and unchanged
    } cases[] = {
        {"BINARY", kHeader + good, kHeader + good + more},
        {"BINARY", kHeader + good + good.substr(0, 7), kHeader + good + more},
        {"BINARY", kHeader.substr(0, 6), kHeader + more},
        {"BINARY", kHeader + record("") + good, ""},
        {"BINARY", "a letter to somebody", ""},
        {"BINARY", std::string("TPJB\0\0\0\1", 8) + good, ""},
        {"TEXT", kHeader + good, ""},
        {"TEXT", "x := 1\ny :=", "x := 1\ny :=\nCOPY_TEXT(\"z\")\n"},
        {"TEXT", "x := 1\n", "x := 1\nCOPY_TEXT(\"z\")\n"},
    };
    for (const auto& c : cases) {
        Journaled s;
        folder.write("j", c.before);
        s.open(path, c.format);
        s.run("COPY_TEXT(\"z\")");
        EXPECT_EQ(folder.read("j"), c.after.empty() ? c.before : c.after);
        const bool refused = s.editor.message == "JOURNAL_OPEN: cannot write " + path;
        EXPECT_EQ(refused, c.after.empty());
    }
}

TEST_F(Journals, are_regular_files_that_can_be_written) {
    const std::string target = folder.write("target", "");
    ASSERT_EQ(symlink(target.c_str(), folder.path("link").c_str()), 0);
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    Journaled s;
    s.open(path);
    for (const std::string& bad :
         {folder.path("link"), folder.path("pipe"), folder.path(""), folder.path("none/j"),
          std::string(), std::string("/dev/null")}) {
        s.open(bad);
        EXPECT_EQ(s.editor.message, "JOURNAL_OPEN: cannot write " + bad);
        EXPECT_EQ(s.buffer->journal_file, path) << "the journal that there was is kept";
    }
    EXPECT_EQ(folder.read("target"), "");
}

TEST_F(Journals, that_cannot_grow_end_before_the_hole) {
    Journaled s;
    s.open(path);
    s.run("COPY_TEXT(\"a\")");
    const std::string before = folder.read("j");
    {
        FileSizeLimit limit(before.size() + 10);
        s.run("COPY_TEXT(\"b\")");
    }
    flush_journals(s.editor, false);
    const std::string fault = path + ": File too large";
    EXPECT_EQ(s.editor.message, "Journaling has stopped: " + fault);
    s.run("SET(JOURNALING, ON); x := 1");
    EXPECT_EQ(folder.read("j"), before);
    s.run("JOURNAL_OPEN(\"" + path + "\"); x := 2");
    EXPECT_EQ(s.editor.message, "JOURNAL_OPEN: cannot write " + path);
    EXPECT_EQ(folder.read("j"), before);
    EXPECT_EQ(s.lines(), Lines{"ab"});
    std::filesystem::remove(path);
    s.run("JOURNAL_OPEN(\"" + path + "\")");
    s.run("x := 3");
    EXPECT_EQ(folder.read("j"), kHeader + record("x := 3"));
}

// ---- Keys

TEST_F(Journals, have_keys_as_statements) {
    Journaled s({"one two", "three"});
    s.open(path, "TEXT");
    s.press(
        "ab\"c<RIGHT><RIGHT><BACKSPACE><DELETE><RETURN>\xc3\xa9<LEFT><LEFT><DOWN><END>z<UP><INSERT>"
        "xy<HOME>");
    s.editor.insert_paste("pasted\ttext\nline");
    s.press("<CTRL_V><RIGHT><RIGHT><CTRL_W><GOLD>U<CTRL_Z>y := 1<RETURN>");
    EXPECT_EQ(folder.read("j"), R"(COPY_TEXT(FAO("ab!%Cc", 34))
REPLACE_TEXT(5, 1, "")
REPLACE_TEXT(5, 1, "")
COPY_TEXT(FAO("!/é"))
MOVE_HORIZONTAL(4)
COPY_TEXT("z")
SET(OVERSTRIKE)
REPLACE_TEXT(5, 0, "xy")
REPLACE_TEXT(0, 7, FAO("pasted  text!/line"))
SELECT
MOVE_VERTICAL(1)
MOVE_HORIZONTAL(-2)
MOVE_TEXT
REPLACE_TEXT(17, 0, FAO("!/é"))
y := 1
)");
}

TEST_F(Journals, rebuild_what_a_process_wrote_within_a_character) {
    Journaled s({"\xc3\xa9"}), again({"\xc3\xa9"});
    s.open(path);
    s.buffer->edit(1, 1, "x");
    s.press("<END>");
    again.recover(path);
    EXPECT_EQ(again.lines(), Lines{"\xc3x\xa9"});
}

TEST_F(Journals, write_what_was_typed_after_a_second_or_32_characters) {
    Journaled s({""});
    s.open(path, "TEXT");
    s.press(std::string(31, 'a'));
    EXPECT_FALSE(flush_journals(s.editor, false) && folder.read("j") != "");
    s.press("bc");
    EXPECT_EQ(folder.read("j"), "COPY_TEXT(\"" + std::string(31, 'a') + "b\")\n");
    s.clock.time += std::chrono::milliseconds(900);
    EXPECT_TRUE(flush_journals(s.editor, false));
    s.clock.time += std::chrono::milliseconds(200);
    EXPECT_FALSE(flush_journals(s.editor, false));
    EXPECT_TRUE(folder.read("j").ends_with("b\")\nCOPY_TEXT(\"c\")\n"));
    // An idle editor wakes up to write, and one that ends writes too.
    s.terminal.keys = {'d'};
    s.terminal.waits.clear();
    s.editor.run();
    EXPECT_EQ(s.terminal.waits, (std::vector<int>{-1, 200}));
    EXPECT_TRUE(folder.read("j").ends_with("COPY_TEXT(\"d\")\n"));
}

}  // namespace
}  // namespace tpu
