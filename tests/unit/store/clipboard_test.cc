#include "store/clipboard.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

#include "app/this_system.h"
#include "buffer/buffer.h"
#include "editor/process.h"
#include "os/child.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

ThisSystem this_system;
Failure why;

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLong{20000};  // far more than any command here needs

class Environment {
  public:
    Environment(const char* name, const std::string& value) : name_(name) {
        if (const char* old = getenv(name)) old_ = old;
        setenv(name, value.c_str(), 1);
    }
    ~Environment() {
        if (old_) {
            setenv(name_, old_->c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    const char* name_;
    std::optional<std::string> old_;
};

// Only the commands that a test makes are to be found.
class Clipboard : public testing::Test {
  protected:
    // A command that notes how it was called, then runs `script` in the folder.
    void command(const std::string& name, const std::string& script) {
        std::string file = folder.write(name, "#!/bin/sh\ncd '" + folder.path("") + "'\necho " +
                                                  name + " $@ >>calls\n" + script);
        chmod(file.c_str(), 0700);
    }
    std::string calls() const { return folder.read("calls"); }
    std::string read(milliseconds wait = kLong) {
        std::string text = "old";
        bool success = clipboard_read_system(this_system, text, why, wait);
        EXPECT_EQ(success, !text.empty());
        EXPECT_TRUE(success || why);
        return text;
    }

    TempFolder folder;
    Environment path{"PATH", folder.path("")};
};

TEST_F(Clipboard, writes_with_the_first_command_that_succeeds) {
    command("pbcopy", "/bin/cat >refused; exit 1\n");
    command("xclip", "/bin/cat >taken\n");
    command("xsel", "/bin/cat >taken\n");
    const std::string text("a\n\0z", 4);
    EXPECT_TRUE(clipboard_write_system(this_system, text, kLong));
    EXPECT_EQ(calls(), "pbcopy\nxclip -selection clipboard\n");
    EXPECT_EQ(folder.read("refused"), text);
    EXPECT_EQ(folder.read("taken"), text);

    command("xclip", "exit 1\n");
    EXPECT_TRUE(clipboard_write_system(this_system, "", kLong));
    EXPECT_EQ(folder.read("taken"), "");
    EXPECT_NE(calls().find("xsel --clipboard --input\n"), std::string::npos);
}

TEST_F(Clipboard, reads_from_the_first_command_that_gives_a_text) {
    command("pbpaste", "printf part; exit 1\n");
    command("wl-paste", "exit 0\n");
    command("xclip", "printf 'a\\n\\0z'\n");
    command("xsel", "printf other\n");
    EXPECT_EQ(read(), std::string("a\n\0z", 4));
    EXPECT_EQ(calls(), "pbpaste\nwl-paste --no-newline\nxclip -selection clipboard -o\n");

    command("xclip", "exit 0\n");
    EXPECT_EQ(read(), "other");
    EXPECT_NE(calls().find("xsel --clipboard --output\n"), std::string::npos);
    command("xsel", "printf part; exit 3\n");
    EXPECT_EQ(read(), "");
}

TEST_F(Clipboard, missing_and_complaining_commands_show_nothing) {
    command("xsel", "echo no display >&2; echo and more; exit 1\n");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(clipboard_write_system(this_system, "text", kLong));
    EXPECT_EQ(read(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Clipboard, large_texts_pass_and_commands_that_do_not_read_them_are_harmless) {
    auto old_handler = signal(SIGPIPE, SIG_DFL);  // would end this test
    const std::string text(3'000'000, 'x');
    command("wl-copy", "exit 0\n");
    command("xclip", "/bin/cat >taken\n");
    EXPECT_TRUE(clipboard_write_system(this_system, text, kLong));
    EXPECT_TRUE(folder.read("taken") == text);
    command("pbpaste", "/bin/cat taken\n");
    EXPECT_TRUE(read() == text);
    signal(SIGPIPE, old_handler);
}

TEST_F(Clipboard, commands_that_hang_are_ended_with_all_that_they_started) {
    const std::string hang = "/bin/sleep 60 & /bin/sleep 60\n";
    for (const char* name : {"pbcopy", "pbpaste", "wl-copy", "wl-paste"}) command(name, hang);
    int ends[2];  // inherited by the commands: at its end when none of them is left
    ASSERT_EQ(pipe(ends), 0);
    Descriptor alive_read(ends[0]), alive_write(ends[1]);
    const auto start = steady_clock::now();
    EXPECT_FALSE(clipboard_write_system(this_system, "text", milliseconds(300)));
    EXPECT_FALSE(
        clipboard_write_system(this_system, std::string(3'000'000, 'x'), milliseconds(300)));
    EXPECT_EQ(read(milliseconds(300)), "");
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(20));
    alive_write.close();
    char byte;
    EXPECT_EQ(::read(alive_read.get(), &byte, 1), 0);
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(Clipboard, holder_of_the_selection_is_left_alone_and_not_waited_for) {
    command("pbcopy", "/bin/cat >taken; exec 3<&0; /bin/sleep 60 <&3 & echo $! >holder\n");
    EXPECT_TRUE(clipboard_write_system(this_system, "text", kLong));
    const pid_t holder = static_cast<pid_t>(std::stol(folder.read("holder")));
    EXPECT_EQ(kill(holder, SIGKILL), 0);
}

TEST_F(Clipboard, builtins_move_texts_between_it_and_the_paste_text) {
    command("xsel", "case $* in *input) /bin/cat >taken;; *) /bin/cat taken;; esac\n");
    Session session;
    auto run = [&](const char* statement) { session.editor.parser.execute_statement(statement); };
    session.buffer->paste_text = LineStore::from_text("cut\nhere");
    run("WRITE_CLIPBOARD");
    EXPECT_EQ(folder.read("taken"), "cut\nhere");
    run("WRITE_CLIPBOARD(\"a, b\")");
    EXPECT_EQ(folder.read("taken"), "a, b");
    EXPECT_EQ(session.editor.message, "");

    run("x := READ_CLIPBOARD + \"!\" + GET_CLIPBOARD()");
    run("MESSAGE(x)");
    EXPECT_EQ(session.editor.message, "a, b!a, b");
    EXPECT_EQ(session.buffer->paste_text.text(), "cut\nhere");
    run("READ_CLIPBOARD");
    EXPECT_EQ(session.editor.message, "Read 4 chars from clipboard");
    EXPECT_EQ(session.buffer->paste_text.text(), "a, b");

    command("xsel", "exit 1\n");
    run("GET_CLIPBOARD");
    EXPECT_EQ(session.editor.message, "Clipboard read failed (install pbpaste/xclip/wl-paste)");
    EXPECT_EQ(session.buffer->paste_text.text(), "a, b");
    run("MESSAGE(GET_CLIPBOARD())");
    EXPECT_EQ(session.editor.message, "UNSPECIFIED");
}

// The file that a command is, or nothing when PATH has none.
std::string find_command(const std::string& name) {
    std::string folders = getenv("PATH") ? getenv("PATH") : "";
    for (std::size_t start = 0; start < folders.size();) {
        std::size_t end = std::min(folders.find(':', start), folders.size());
        std::string file = folders.substr(start, end - start) + "/" + name;
        if (access(file.c_str(), X_OK) == 0) return file;
        start = end + 1;
    }
    return {};
}

// An X server without a screen that anybody sees.
class XServer {
  public:
    // Its display, or nothing when it does not start.
    std::string start(const std::string& program) {
        if (!server_.start(this_system,
                           "exec '" + program + "' -displayfd 1 -nolisten tcp 2>/dev/null",
                           &output_, why)) {
            return {};
        }
        const auto give_up = steady_clock::now() + kLong;
        while (output_.text().size() < 2 && server_.poll_output()) {
            if (steady_clock::now() > give_up) return {};
            usleep(1000);
        }
        return output_.text().size() < 2 ? std::string() : ":" + output_.text()[0];
    }

  private:
    Buffer output_{"DISPLAY", ""};
    TPUProcess server_;
};

TEST(SystemClipboard, keeps_a_text_by_way_of_the_real_command) {
    const std::string xclip = find_command("xclip"), program = find_command("Xvfb");
    if (xclip.empty()) GTEST_SKIP() << "there is no xclip";
    if (program.empty()) GTEST_SKIP() << "there is no Xvfb";
    XServer server;
    const std::string display = server.start(program);
    if (display.empty()) GTEST_SKIP() << "Xvfb does not start";

    TempFolder folder;
    ASSERT_EQ(symlink(xclip.c_str(), folder.path("xclip").c_str()), 0);
    Environment path("PATH", folder.path("")), screen("DISPLAY", display);
    std::string got;
    EXPECT_FALSE(clipboard_read_system(this_system, got, why, kLong));  // nothing is there yet
    for (const std::string& text : {std::string("one\nGr\xc3\xbc\xc3\x9f"
                                                "e\n"),
                                    std::string(1'000'000, 'x') + "end"}) {
        EXPECT_TRUE(clipboard_write_system(this_system, text, kLong));
        EXPECT_TRUE(clipboard_read_system(this_system, got, why, kLong));
        EXPECT_TRUE(got == text);
    }
}

}  // namespace
}  // namespace tpu
