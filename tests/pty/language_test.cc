// Start-up files, keys bound to source text, and test scripts, seen from outside.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pty/pty_session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

class Language : public testing::Test {
  protected:
    PtySession tty;
};

TEST_F(Language, the_named_start_up_file_wins_when_it_can_be_read) {
    tty.write(".tpurc", "COPY_TEXT(\"home\")");
    tty.write("named.tpu", "COPY_TEXT(\"named\")");
    tty.environment["TPU_STARTUP"] = "named.tpu";
    tty.start({});
    EXPECT_TRUE(tty.shows(0, "named")) << tty.screen();
    tty.type("\030");
    EXPECT_EQ(tty.exit_status(), 0);
    PtySession other;
    other.write(".tpurc", "COPY_TEXT(\"home\")\nbad(");
    other.environment["TPU_STARTUP"] = "missing.tpu";
    other.start({});
    EXPECT_TRUE(other.shows(0, "home")) << other.screen();
    EXPECT_TRUE(other.shows(23, "Unknown command: bad(  (line 2)")) << other.screen();
}

TEST_F(Language, control_c_ends_waiting_for_a_pipe_as_a_start_up_file) {
    TempFolder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    // With a writer, so that the wait does not end by itself.
    const int writer = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    tty.environment["TPU_STARTUP"] = pipe;
    tty.start({});
    ASSERT_TRUE(tty.eventually([&] { return !tty.output().empty(); }));
    tty.type("\003");
    EXPECT_TRUE(tty.shows("INSERT")) << tty.screen();
    close(writer);
}

TEST_F(Language, what_others_can_write_does_not_run_at_the_start) {
    tty.write(".tpurc", "COPY_TEXT(\"home\")");
    tty.write("s.sect", "#ZKSECT 1\nBEGIN PROCEDURES\nCOPY_TEXT(\"section\")\nEND PROCEDURES\n");
    for (const char* name : {".tpurc", "s.sect"}) {
        ASSERT_EQ(chmod((tty.home() + "/" + name).c_str(), 0666), 0);
    }
    tty.start({"--section=s.sect"});
    EXPECT_TRUE(tty.shows(".tpurc is not run: other users can write it")) << tty.screen();
    EXPECT_TRUE(tty.shows(0, "")) << tty.screen();
    EXPECT_EQ(tty.errors(), "tpu: /SECTION=s.sect failed to load: other users can write it\n");
}

TEST_F(Language, a_section_file_then_start_up_files_are_run_before_the_first_key) {
    tty.write(".tpurc", "greet(\"home\")\nDEFINE_KEY(\"COPY_TEXT(1 + 1); TOP\", \"F7\")\n");
    tty.write("commands.tpu", "COPY_TEXT(\" command\")");
    tty.write("s.sect",
              "#ZKSECT 1\nIDENT=test\nBEGIN PROCEDURES\n"
              "PROCEDURE greet(whom)\nCOPY_TEXT(\"hello \" + whom)\nENDPROCEDURE;\nEND PROCEDURES\n"
              "BEGIN KEYMAPS\nKEYMAP TPU$KEY_MAP\nKEY 272|greet(\" key\")|\nEND KEYMAPS\n#END\n");
    tty.start({"/SECTION=s.sect", "--command=commands.tpu", "a.txt"});
    EXPECT_TRUE(tty.shows(0, "hello home command")) << tty.screen();
    EXPECT_TRUE(tty.shows("Ctrl-Z command")) << tty.screen();
    tty.type("\033[19~\033[18~");  // F8, F7
    EXPECT_TRUE(tty.shows(0, "hello home commandhello  key2")) << tty.screen();
    EXPECT_TRUE(tty.has_cursor_at(0, 0));
    PtySession other;
    other.start({"--section=none.sect"});
    EXPECT_TRUE(other.shows("Ctrl-Z command"));
    EXPECT_EQ(other.errors(), "tpu: /SECTION=none.sect failed to load\n");
}

TEST_F(Language, control_c_stops_a_program_and_undo_takes_it_back) {
    tty.write(".tpurc",
              "PROCEDURE spin\nCOPY_TEXT(\"spun\")\nLOOP\nLOOP\nspin_on\nENDLOOP\nENDLOOP\n"
              "ENDPROCEDURE\nPROCEDURE spin_on\nx := x + 1\nENDPROCEDURE\n");
    tty.edit("a.txt", "one");
    tty.type("\032spin\rtyped ahead\003");
    EXPECT_TRUE(tty.shows(23, "ABORT")) << tty.screen();
    EXPECT_TRUE(tty.shows(0, "spunone")) << tty.screen();
    tty.type("\032UNDO\r");
    EXPECT_TRUE(tty.shows(0, "one")) << tty.screen();
    tty.type("\032EXIT(7)\r");
    EXPECT_EQ(tty.exit_status(), 7);
}

TEST_F(Language, a_test_script_reports_and_its_faults_can_be_jumped_to) {
    tty.write("t.tpu",
              "TEST(\"title\")\nASSERT(1)\n\nnonsense here\nASSERT_EQ(2, 3, \"two\")\n"
              "PROCEDURE unfinished\nx := 1\n");
    tty.start({"--test", "t.tpu"});
    EXPECT_EQ(tty.exit_status(), 1);
    EXPECT_EQ(tty.output(),
              "---- \"title\"\r\nPASS  1\r\nFAIL  two  (got=\"2\" expected=\"3\")\r\n"
              "----------------------------------------\r\n1 passed, 1 failed\r\n");
    EXPECT_EQ(
        tty.errors(),
        "t.tpu:4: Unknown command: nonsense here\nt.tpu:7: missing ENDPROCEDURE for unfinished\n");
    PtySession other;
    other.start({"--test", "missing.tpu"});
    EXPECT_EQ(other.exit_status(), 2);
    EXPECT_EQ(other.errors(), "tpu --test: cannot open missing.tpu\n");
}

}  // namespace
}  // namespace tpu
