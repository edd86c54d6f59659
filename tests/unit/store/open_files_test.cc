// Sessions that learn of each other's files.
#include "store/open_files.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

struct OpenFilesTest : testing::Test {
    // Another session, in a process of its own, that has opened the files.
    class Other {
      public:
        Other(const std::string& shared, const std::vector<std::string>& files) {
            int ends[2];
            if (pipe(ends) != 0) return;
            child_ = fork();
            if (child_ == 0) {
                OpenFiles open(shared);
                for (const std::string& name : files) open.news(name);
                [[maybe_unused]] ssize_t told = write(ends[1], "x", 1);
                pause();
            }
            char ready;
            EXPECT_EQ(read(ends[0], &ready, 1), 1);
            close(ends[0]);
            close(ends[1]);
        }
        ~Other() { die(); }
        void die() {
            if (child_ > 0) kill(child_, SIGKILL);
            if (child_ > 0) waitpid(std::exchange(child_, -1), nullptr, 0);
        }
        std::string has(const std::string& name) const {
            return name + " is open in another session (process " + std::to_string(child_) + ")";
        }

      private:
        pid_t child_ = -1;
    };

    TempFolder folder;
    const std::string shared = folder.path("state/tpu/open-files");
    const std::string file = folder.write("file", "text"), fresh = folder.path("fresh");
};

TEST_F(OpenFilesTest, are_told_once_for_as_long_as_the_other_session_lives) {
    Other other(shared, {file, fresh});
    EXPECT_EQ(status_of(shared).st_mode & 0777, 0600u);
    EXPECT_EQ(status_of(folder.path("state")).st_mode & 0777, 0700u);
    const std::string link = folder.path("link");
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    OpenFiles open(shared);
    EXPECT_EQ(open.news(link), other.has(link));
    EXPECT_EQ(open.news(link), "");
    EXPECT_EQ(open.news(fresh), other.has(fresh));
    EXPECT_EQ(open.news(folder.path("third")), "");
    EXPECT_EQ(open.news("/dev/null"), "");
    open.follow({});
    EXPECT_EQ(open.news(link), other.has(link));
    other.die();
    open.follow({});
    EXPECT_EQ(open.news(link), "");
}

TEST_F(OpenFilesTest, are_those_of_the_buffers_that_there_are) {
    std::vector<std::unique_ptr<Buffer>> buffers;
    buffers.push_back(std::make_unique<Buffer>("a", file));
    OpenFiles open(shared);
    auto seen_by_another = [&](const std::string& name) {
        pid_t child = fork();
        if (child == 0) _exit(OpenFiles(shared).news(name).empty() ? 0 : 1);
        int status = -1;
        waitpid(child, &status, 0);
        return status != 0;
    };
    open.follow(buffers);
    EXPECT_TRUE(seen_by_another(file));
    buffers[0]->file_name = fresh;
    open.follow(buffers);
    EXPECT_TRUE(seen_by_another(fresh));
    EXPECT_FALSE(seen_by_another(file));
}

TEST_F(OpenFilesTest, are_told_of_whichever_way_they_are_opened_but_hide_no_trouble) {
    const std::string second = folder.write("second", "");
    Other other(shared, {file, second});
    Session s;
    s.editor.open_files = std::make_unique<OpenFiles>(shared);
    s.editor.execute_command("GET " + file);
    EXPECT_EQ(s.editor.message, other.has(file));
    s.editor.execute_command("b := CREATE_BUFFER(\"b\", \"" + second + "\")");
    EXPECT_EQ(s.editor.message, other.has(second));
    s.editor.open_files = std::make_unique<OpenFiles>(shared);
    s.editor.tell_of_file(Buffer("c", file), "Cannot read it");
    EXPECT_EQ(s.editor.message, "Cannot read it");
}

}  // namespace
}  // namespace tpu
