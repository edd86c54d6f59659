// What saving must not destroy, and loading must not wait for.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "core/system_calls.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

struct KnownFiles : testing::Test {
    TempFolder folder;
};

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
