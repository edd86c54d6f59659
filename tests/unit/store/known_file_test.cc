// What saving must not destroy, and loading must not wait for.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "actions/actions.h"
#include "os/system_calls.h"
#include "store/buffer_file.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

struct KnownFiles : testing::Test {
    TempFolder folder;
};

// The ways to save the current buffer to its own file.
std::vector<std::string> saving_doors(const std::string& file) {
    std::vector<std::string> doors = {"<CTRL_S>", "<GOLD>W"};
    for (const std::string& line :
         {std::string("WRITE"), "SAVE " + file, std::string("SAVE FILE"), "WRITE FILE " + file,
          std::string("WRITE_FILE"), "WRITE_FILE(CURRENT_BUFFER, \"" + file + "\")"}) {
        doors.push_back("<CTRL_Z>" + line + "<RETURN>");
    }
    return doors;
}

int error_of_reading = 0;

int fail_to_read(sys::Call call) {
    return call == (error_of_reading == EIO ? sys::Call::read : sys::Call::open) ? error_of_reading
                                                                                 : 0;
}

TEST_F(KnownFiles, never_write_over_a_file_that_could_not_be_read) {
    const std::string file = folder.write("file", "what is there"), other = folder.path("other");
    for (int error : {EACCES, EIO}) {
        Session s;
        error_of_reading = error;
        sys::set_fault(fail_to_read);
        const std::string reason = std::string(": ") + std::strerror(error);
        EXPECT_EQ(edit_file(*s.buffer, file), "Cannot read " + file + reason);
        sys::set_fault(nullptr);
        s.press("typed");
        for (const std::string& keys : saving_doors(file)) {
            s.press(keys);
            EXPECT_EQ(s.editor.message,
                      "Write failed: " + file + " (it could not be read" + reason + ")");
            EXPECT_EQ(s.buffer->file_name, file);
            EXPECT_TRUE(s.buffer->modified);
        }
        EXPECT_EQ(folder.read("file"), "what is there");
        EXPECT_EQ(folder.files(), std::set<std::string>{"file"});
        actions::save_as(s.editor, other);
        s.press("<CTRL_S>");
        EXPECT_EQ(s.editor.message, "Written " + other);
        std::filesystem::remove(other);
        std::filesystem::remove(other + ".bak");
    }
}

TEST_F(KnownFiles, save_again_to_a_name_that_can_be_read_or_is_free_by_now) {
    const std::string file = folder.path("name");
    std::filesystem::create_directory(file);
    Session s;
    auto run = [&](const std::string& line) {
        s.editor.execute_command(line);
        return s.editor.message;
    };
    EXPECT_EQ(edit_file(*s.buffer, file), "Cannot read " + file + ": Is a directory");
    EXPECT_EQ(run("GET " + file), "Cannot read " + file + ": Is a directory");
    std::filesystem::remove(file);
    folder.write("name", "text");
    EXPECT_EQ(run("GET " + file), "Got file " + file);
    EXPECT_EQ(s.lines(), std::vector<std::string>{"text"});
    EXPECT_EQ(run("WRITE"), "Written " + file);
    // The text is still that of the file when reading it once more fails.
    error_of_reading = EIO;
    sys::set_fault(fail_to_read);
    EXPECT_EQ(run("RELOAD"), "Reload failed");
    sys::set_fault(nullptr);
    EXPECT_EQ(run("WRITE"), "Written " + file);
    ASSERT_FALSE(load_file(*s.buffer, folder.path("none")));
    EXPECT_EQ(run("WRITE"), "Written " + folder.path("none"));
}

TEST_F(KnownFiles, save_over_what_somebody_else_has_written_only_when_asked_again) {
    const std::string file = folder.write("file", "ours\n"), fresh = folder.path("fresh");
    struct Case {
        std::string name, doubt;
    };
    for (const Case& c : {Case{file, "changed"}, Case{fresh, "new"}}) {
        Session s;
        const std::string refused =
            "Write failed: " + c.name + " (" + c.doubt + " on disk; save again to overwrite)";
        auto theirs = [&](const std::string& text) {
            std::ofstream(c.name, std::ios::binary) << text;
        };
        auto save = [&](const std::string& keys) {
            s.press(keys);
            return s.editor.message;
        };
        ASSERT_EQ(edit_file(*s.buffer, c.name), "");
        s.press("typed ");
        theirs("theirs");
        EXPECT_EQ(save("<CTRL_S>"), refused);
        s.press("more ");  // no save in a row
        EXPECT_EQ(save("<GOLD>W"), refused);
        theirs("theirs again");
        EXPECT_EQ(save("<CTRL_S>"), refused);
        EXPECT_EQ(save("<CTRL_Z>GET " + c.name + "<RETURN>"), "Got file " + c.name);
        EXPECT_EQ(save("<CTRL_Z>WRITE " + c.name + "<RETURN>"), refused);
        EXPECT_EQ(status_of(c.name).st_size, 12);
        EXPECT_EQ(save("<CTRL_S>"), "Written " + c.name);
        std::string bak = std::filesystem::path(c.name).filename().string() + ".bak";
        EXPECT_EQ(folder.read(bak), "theirs again");
        // What we have written ourselves is no news, nor is a file that has gone, and a
        // program knows what it does.
        EXPECT_EQ(save("x<CTRL_S>"), "Written " + c.name);
        std::filesystem::remove(c.name);
        EXPECT_EQ(save("<CTRL_S>"), "Written " + c.name);
        theirs("theirs once more");
        EXPECT_EQ(save("<CTRL_Z>WRITE_FILE<RETURN>"), "Wrote " + c.name);
        // A file of another name is not ours to compare.
        EXPECT_EQ(save("<CTRL_Z>WRITE " + folder.write("third", "x") + "<RETURN>"),
                  "Written " + folder.path("third"));
    }
}

TEST_F(KnownFiles, wait_for_a_pipe_only_until_ctrl_c) {
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string why = ": Interrupted";
    for (bool has_writer : {false, true}) {
        const int writer = has_writer ? open(pipe.c_str(), O_RDWR | O_CLOEXEC) : -1;
        const std::pair<std::string, std::string> cases[] = {
            {"GET " + pipe, "Cannot read " + pipe + why},
            {"INCLUDE " + pipe, "Cannot include " + pipe},
            {"READ_FILE(\"" + pipe + "\")", "READ_FILE: cannot open " + pipe},
            {"b := CREATE_BUFFER(\"b\", \"" + pipe + "\")", "Cannot read " + pipe + why},
            {"RESTORE(\"" + pipe + "\")", "RESTORE: cannot open " + pipe},
        };
        for (const auto& [line, message] : cases) {
            Session s;
            s.terminal.keys = {'x', control('C')};
            s.editor.execute_command(line);
            EXPECT_EQ(s.editor.message, message);
            EXPECT_TRUE(s.terminal.keys.empty());
        }
        close(writer);
    }
}

}  // namespace
}  // namespace tpu
