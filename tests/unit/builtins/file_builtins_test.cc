// Built-ins for files and the names of files.
#include <gtest/gtest.h>

#include <filesystem>

#include "app/startup.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;
using Files = std::set<std::string>;

// What scripts name without a folder is in a folder of the test's own.
class FileBuiltins : public testing::Test {
  protected:
    void SetUp() override { std::filesystem::current_path(folder.path("")); }
    void TearDown() override { std::filesystem::current_path(before); }
    // What the last of the statements told.
    std::string told(const std::string& source) {
        session.editor.message.clear();
        session.editor.parser.compile_text(source);
        return session.editor.message;
    }
    std::string value(const std::string& expression) {
        return session.editor.parser.eval_expression(expression).as_string();
    }

    std::filesystem::path before = std::filesystem::current_path();
    TempFolder folder;
    Session session{{"one", "two"}};
};

TEST_F(FileBuiltins, write_a_buffer_to_its_file_or_to_another) {
    EXPECT_EQ(told("WRITE_FILE(CURRENT_BUFFER)"), "Write failed");
    EXPECT_EQ(told("WRITE_FILE(CURRENT_BUFFER, \"a\")"), "Wrote a");
    EXPECT_EQ(folder.read("a"), "one\ntwo");
    EXPECT_EQ(told("ERASE_LINE; WRITE_FILE"), "Wrote a");
    EXPECT_EQ(folder.read("a") + folder.read("a.bak"), "twoone\ntwo");
    EXPECT_EQ(told("WRITE_FILE(CURRENT_BUFFER, \"none/a\")"), "Write failed");
    EXPECT_EQ(told("WRITE_FILE(\"a\")"), "WRITE_FILE needs a buffer or a range");
    EXPECT_EQ(session.editor.parser.error_code, "TPU$_INVPARAM");
}

TEST_F(FileBuiltins, write_a_range_without_touching_its_buffer) {
    told("SET(BACKUP, OFF); r := CREATE_RANGE(BEGINNING_OF(CURRENT_BUFFER), MARK)");
    told("MOVE_VERTICAL(1); r := MODIFY_RANGE(r, BEGINNING_OF(r), MARK)");
    EXPECT_EQ(told("WRITE_FILE(r); WRITE_FILE(r)"), "Wrote tpu_range_out.txt");
    EXPECT_EQ(folder.read("tpu_range_out.txt"), "one\n");
    EXPECT_EQ(told("WRITE_FILE(r, \"part\")"), "Wrote part");
    EXPECT_EQ(folder.files(), (Files{"part", "tpu_range_out.txt"}));
    EXPECT_EQ(session.buffer->file_name, "");
    told("DELETE(CREATE_BUFFER(\"other\")); gone := CREATE_RANGE(MARK, MARK); DELETE(gone)");
    EXPECT_EQ(told("WRITE_FILE(gone)"), "WRITE_FILE needs a buffer or a range");
}

TEST_F(FileBuiltins, never_write_a_buffer_that_is_not_to_be_written) {
    folder.write("a", "old");
    session.buffer->file_name = "a";
    told("SET(NO_WRITE, ON)");
    EXPECT_EQ(told("WRITE_FILE"), "Write failed");
    EXPECT_EQ(told("WRITE_FILE(CURRENT_BUFFER, \"b\")"), "Write failed");
    session.press("<CTRL_S>");
    EXPECT_EQ(session.editor.message, "Write failed: a");
    session.editor.save_as("b");
    EXPECT_EQ(session.editor.message, "Write failed: b");
    EXPECT_EQ(folder.files(), Files{"a"});
    EXPECT_EQ(folder.read("a"), "old");
    told("SET(NO_WRITE, OFF)");
    session.press("<CTRL_S>");
    EXPECT_EQ(folder.read("a"), "one\ntwo");
}

TEST_F(FileBuiltins, read_a_file_at_the_cursor) {
    folder.write("a", "x\r\ny\n");
    EXPECT_EQ(told("MOVE_HORIZONTAL(2); READ_FILE(\"a\")"), "");
    EXPECT_EQ(session.lines(), (Lines{"onx", "ye", "two"}));
    EXPECT_EQ(session.buffer->file_name, "");
    for (const char* name : {"none", ".", ""}) {
        std::string call = std::string("READ_FILE(\"").append(name).append("\")");
        EXPECT_EQ(told(call), std::string("READ_FILE: cannot open ").append(name));
    }
    EXPECT_EQ(told("READ_FILE"), "READ_FILE: cannot open ");
    EXPECT_EQ(session.lines().size(), 3u);
}

TEST_F(FileBuiltins, make_buffers_for_files_that_are_there_and_for_new_ones) {
    folder.write("a", "x\ny\n");
    EXPECT_EQ(value("GET_INFO(CREATE_BUFFER(\"A\", \"a\"), \"LINES\")"), "2");
    EXPECT_EQ(value("GET_INFO(CREATE_BUFFER(\"A\", \"none\"), \"FILE_NAME\")"), "a");
    EXPECT_EQ(told("new := CREATE_BUFFER(\"new\", \"b\")"), "");
    EXPECT_EQ(value("GET_INFO(new, \"FILE_NAME\") + GET_INFO(new, \"LINES\")"), "b1");
    EXPECT_EQ(value("CREATE_BUFFER()"), "untitled");
    EXPECT_EQ(value("CURRENT_BUFFER"), "MAIN");
    EXPECT_EQ(told("d := CREATE_BUFFER(\"d\", \".\")"), "Cannot read .: Is a directory");
    EXPECT_EQ(value("d"), "d");
}

TEST_F(FileBuiltins, take_names_of_files_apart_and_complete_them) {
    const std::string here = std::filesystem::current_path().string() + "/";
    EXPECT_EQ(value("FILE_PARSE(\"a.txt\")"), here + "a.txt");
    EXPECT_EQ(value("FILE_PARSE(\"x/../a\", \"/tmp/b.c\")"), here + "a.c");
    EXPECT_EQ(value("FILE_PARSE(\"a\", \"/tmp/b.c\")"), "/tmp/a.c");
    EXPECT_EQ(value("FILE_PARSE(\"/usr/lib/a.tar.gz\", DIRECTORY)"), "/usr/lib/");
    EXPECT_EQ(value("FILE_PARSE(\"/usr/lib/a.tar.gz\", NAME, \"type\")"), "a.tar.gz");
    EXPECT_EQ(value("FILE_PARSE(\"/a.b\", TYPE)"), ".b");
    EXPECT_EQ(value("FILE_PARSE(\"/a.b\", DIRECTORY, NAME)"), "/a");
    EXPECT_EQ(value("FILE_PARSE(\"a\", NODE, DEVICE, VERSION)"), "");
}

TEST_F(FileBuiltins, find_the_files_that_a_pattern_names_one_after_the_other) {
    for (const char* name : {"b.c", "a.c", "a.h"}) folder.write(name, "");
    EXPECT_EQ(value("FILE_SEARCH(\"*.c\")"), "a.c");
    EXPECT_EQ(value("FILE_SEARCH(\"*.c\")"), "b.c");
    EXPECT_EQ(value("FILE_SEARCH(\"*.c\")"), "");
    EXPECT_EQ(value("FILE_SEARCH(\"*.c\")"), "a.c");
    EXPECT_EQ(value("FILE_SEARCH(\"*.h\")"), "a.h");
    EXPECT_EQ(value("FILE_SEARCH(\"*.c\")"), "a.c");
    EXPECT_EQ(told("FILE_SEARCH(\"*.none\")"), "*.none: (no match)");
    EXPECT_EQ(told("EXPAND_NAME(\"none_such\")"), "none_such: (no match)");
    EXPECT_EQ(told("PROCEDURE my_own\nENDPROCEDURE\nmy_value := 1\nEXPAND_NAME(\"my_\")"),
              "MY_OWN MY_VALUE");
    EXPECT_EQ(value("EXPAND_NAME(\"my_\", PROCEDURES)"), "MY_OWN");
    EXPECT_EQ(value("EXPAND_NAME(\"unanc\", BUILTINS) + EXPAND_NAME(\"FREE\", KEYWORDS)"),
              "UNANCHORFREE_CURSOR");
}

TEST_F(FileBuiltins, know_what_the_program_was_started_with) {
    Options options;
    options.file = "a";
    options.line = 2;
    folder.write("a", "x\ny\n");
    StartFiles files;
    files.source = folder.write("start.tpu",
                                "COPY_TEXT(GET_INFO(COMMAND_LINE, \"FILE_NAME\") + \":\" + "
                                "GET_INFO(COMMAND_LINE, \"ROW\"))\n"
                                "POSITION(CREATE_BUFFER(\"other\"))\n");
    FakeTerminal terminal;
    FakeClock clock;
    ThisSystem system;
    terminal.keys = {control('Z'), 'b', 'u', 'f', 'f', 'e', 'r', ' ', 'a', '\r', 'z'};
    run_session(options, files, {terminal, clock, system}, Charset::utf8);
    EXPECT_TRUE(terminal.shown.text.row_text(1).starts_with("a:2zy"));
}

}  // namespace
}  // namespace tpu
