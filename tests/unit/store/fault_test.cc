// What is left when the system fails at any one call.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "buffer/buffer.h"
#include "editor/journal_replay.h"
#include "editor/recovery.h"
#include "os/system_calls.h"
#include "store/buffer_file.h"
#include "store/journal.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

Failure why;

int calls_until_fault = 0;
int error_of_fault = 0;

int fault(sys::Call) {
    return --calls_until_fault == 0 ? error_of_fault : 0;
}

// Lets the nth call fail, for every n there is: `work` runs once for each, and `check`
// afterwards without faults. How many calls there were.
int for_each_fault(const std::function<void()>& prepare, const std::function<bool()>& work,
                   const std::function<void(int, bool)>& check) {
    int n = 0;
    for (bool reached = true; reached && n < 1000;) {
        ++n;
        prepare();
        calls_until_fault = n;
        error_of_fault = n % 2 == 0 ? EIO : ENOSPC;
        sys::set_fault(fault);
        bool done = work();
        sys::set_fault(nullptr);
        reached = calls_until_fault <= 0;
        SCOPED_TRACE("call " + std::to_string(n));
        check(n, done);
    }
    return n - 1;
}

struct Faults : testing::Test {
    const std::string old_text = "old\ntext";

    TempFolder folder;
    std::unique_ptr<Buffer> buffer;
};

TEST_F(Faults, while_loading_leave_the_text_as_it_was) {
    std::string path = folder.write("file", std::string(3'000'000, 'x') + "\nlast");
    auto prepare = [&] {
        buffer = std::make_unique<Buffer>("b", "");
        buffer->set_text(LineStore::from_text(old_text));
    };
    int calls = for_each_fault(
        prepare, [&] { return load_file(*buffer, path); },
        [&](int, bool loaded) {
            EXPECT_EQ(buffer->text().size(), 2u);
            EXPECT_EQ(buffer->text()[1], loaded ? "last" : "text");
            EXPECT_TRUE(load_file(*buffer, path));
            EXPECT_EQ(buffer->text().length(0), 3'000'000u);
        });
    EXPECT_GE(calls, 2);
}

TEST_F(Faults, of_saving_are_told_and_the_next_attempt_works) {
    Session session({"text"});
    std::string path = folder.write("file", "old");
    session.buffer->file_name = path;
    session.buffer->modified = true;
    auto save = [&] {
        session.press("<CTRL_S>");
        return session.editor.message == "Written " + path;
    };
    int calls = for_each_fault([] {}, save,
                               [&](int, bool written) {
                                   if (!written) {
                                       EXPECT_EQ(session.editor.message, "Write failed: " + path);
                                   }
                                   EXPECT_TRUE(save()) << session.editor.message;
                               });
    EXPECT_GE(calls, 8);
}

TEST_F(Faults, while_a_journal_is_kept_stop_no_statement_and_leave_no_hole) {
    std::unique_ptr<Session> session;
    std::string path = folder.path("journal");
    auto run = [&](const std::string& source) { session->editor.parser.compile_text(source); };
    int calls = for_each_fault(
        [&] {
            std::filesystem::remove(path);
            session = std::make_unique<Session>();
        },
        [&] {
            run("JOURNAL_OPEN(\"" + path + "\")");
            bool opened = session->editor.message == "Journaling (binary TPJB) to " + path;
            EXPECT_TRUE(opened || session->editor.message == "JOURNAL_OPEN: cannot write " + path);
            run("COPY_TEXT(\"a\"); COPY_TEXT(\"b\"); COPY_TEXT(\"c\")");
            return opened;
        },
        [&](int, bool opened) {
            EXPECT_EQ(session->buffer->text().text(), "abc");
            if (!opened) return;
            Session again;
            EXPECT_TRUE(replay_journal(again.editor, path, why));
            const std::string text = again.buffer->text().text();
            EXPECT_TRUE(std::string("abc").starts_with(text)) << text;
            EXPECT_EQ(text == "abc", session->buffer->journal_fault.empty());
        });
    EXPECT_GE(calls, 9);
}

TEST_F(Faults, while_a_journal_is_replayed_end_the_replay) {
    Session session;
    std::string path = folder.path("journal");
    session.editor.parser.compile_text("JOURNAL_OPEN(\"" + path + "\"); COPY_TEXT(\"a\")");
    std::unique_ptr<Session> again;
    int calls = for_each_fault(
        [&] { again = std::make_unique<Session>(); },
        [&] { return replay_journal(again->editor, path, why); },
        [&](int, bool opened) {
            bool whole = again->editor.message.ends_with("the end of the journal was reached");
            EXPECT_EQ(again->buffer->text().text(), whole ? "a" : "");
            EXPECT_TRUE(whole || !opened ||
                        again->editor.message.find("the journal cannot be read from") !=
                            std::string::npos)
                << again->editor.message;
        });
    EXPECT_GE(calls, 3);
}

TEST_F(Faults, while_unsaved_work_is_kept_are_told_and_lose_nothing) {
    std::string path = folder.write("file", old_text), state = folder.path("state/tpu");
    std::unique_ptr<Session> session;
    auto idle = [&] {
        session->editor.recovery->serve();
        session->clock.time += Recovery::kRetry;
        while (session->editor.recovery->serve() == std::chrono::milliseconds(0)) {
        }
    };
    auto begin = [&] {
        session = std::make_unique<Session>();
        session->editor.recovery = std::make_unique<Recovery>(session->editor, state);
        ASSERT_TRUE(load_file(*session->buffer, path));
    };
    int calls = for_each_fault(
        [&] {
            std::filesystem::remove_all(folder.path("state"));
            begin();
        },
        [&] {
            for (const char* keys : {"a", "b", "c"}) {
                session->press(keys);
                idle();
            }
            return true;
        },
        [&](int, bool) {
            const std::string& told = session->editor.message;
            EXPECT_TRUE(told.empty() || told.starts_with("Unsaved work is not kept: ")) << told;
            session->press("d");
            idle();
            begin();
            std::string reason;
            session->editor.recovery->recover(*session->buffer, reason);
            EXPECT_EQ(session->buffer->text().text(), "abcd" + old_text) << session->editor.message;
        });
    EXPECT_GE(calls, 7);
}

sys::Call failing_call;

// What is to be done (a command behind a star), what is said, and why. A slash stands for the
// folder of the test.
struct Said {
    const char *work, *message, *why;
    std::optional<sys::Call> call = {};  // fails
};

TEST_F(Faults, are_told_with_the_reason_in_the_next_line_and_in_ERROR_TEXT) {
    const char* const no_space = "No space left on device";
    const std::string long_name(300, 'n');
    const Said cases[] = {
        {"*WRITE FILE /file", "Write failed: /file", no_space, sys::Call::write},
        {"WRITE_FILE(CURRENT_BUFFER, \"/new\")", "Write failed", no_space, sys::Call::sync},
        {"SAVE(\"/new\")", "SAVE: cannot write /new", no_space, sys::Call::write},
        {"JOURNAL_OPEN(\"/new\")", "JOURNAL_OPEN: cannot write /new", no_space, sys::Call::write},
        {"READ_FILE(\"/file\")", "READ_FILE: cannot open /file", no_space, sys::Call::open},
        {"*INCLUDE /file", "Cannot include /file", no_space, sys::Call::read},
        {"RECOVER_BUFFER(\"/none\")", "RECOVER_BUFFER: cannot open /none",
         "No such file or directory"},
        {"*INCLUDE /folder", "Cannot include /folder", "Is a directory"},
        {"*GET /folder", "Cannot read /folder: Is a directory", "Is a directory"},
        {"*WRITE FILE /folder", "Write failed: /folder", "Is a directory"},
        {"SAVE(\"/folder\")", "SAVE: cannot write /folder", "Is a directory"},
        {"SAVE(\"/file\")", "SAVE: cannot write /file (it is no section file)",
         "it is no section file"},
        {"*WRITE FILE /long", "Write failed: /long", "File name too long"},
        {"SAVE(\"/long\")", "SAVE: cannot write /long", "File name too long"},
        {"RESTORE(\"/long\")", "RESTORE: cannot open /long", "File name too long"},
        {"JOURNAL_OPEN(\"/long\")", "JOURNAL_OPEN: cannot write /long", "File name too long"},
    };
    std::filesystem::create_directory(folder.path("folder"));
    folder.write("file", old_text);
    for (const Said& c : cases) {
        SCOPED_TRACE(c.work);
        auto filled = [&](std::string text) {
            const std::size_t at = text.find('/');
            if (at == std::string::npos) return text;
            text.replace(at, 1, folder.path(""));
            const std::size_t name = text.find("long", at + folder.path("").size());
            return name == std::string::npos ? text : text.replace(name, 4, long_name);
        };
        Session session({"text"});
        if (c.call) failing_call = *c.call;
        if (c.call) {
            sys::set_fault([](sys::Call call) { return call == failing_call ? ENOSPC : 0; });
        }
        const std::string work = filled(c.work), message = filled(c.message);
        work[0] == '*' ? session.editor.execute_command(work.substr(1))
                       : session.editor.parser.compile_text(work);
        sys::set_fault(nullptr);
        EXPECT_EQ(session.editor.message, message);
        EXPECT_EQ(session.editor.parser.error_text, c.why);
        EXPECT_NE(session.editor.parser.error_code, "");
        const std::string told = session.editor.find_buffer("$MESSAGE_BUFFER")->text().text();
        const bool is_said = message.find(c.why) != std::string::npos;
        EXPECT_TRUE(told.ends_with(is_said ? message : message + "\n" + c.why)) << told;
    }
}

}  // namespace
}  // namespace tpu
