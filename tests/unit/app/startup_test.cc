#include "app/startup.h"

#include <gtest/gtest.h>

#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

TEST(Startup, tells_scripts_what_the_program_was_started_with) {
    TempFolder folder;
    Options options;
    options.file = folder.write("a", "x\ny\n");
    options.line = 2;
    StartFiles files;
    files.source = folder.write("start.tpu",
                                "COPY_TEXT(FILE_PARSE(GET_INFO(COMMAND_LINE, \"FILE_NAME\"), NAME)"
                                " + \":\" + GET_INFO(COMMAND_LINE, \"ROW\"))\n"
                                "b := CURRENT_BUFFER; POSITION(CREATE_BUFFER(\"other\"))\n");
    FakeTerminal terminal;
    FakeClock clock;
    ThisSystem system;
    const std::vector<int> keys = key_codes("<CTRL_Z>POSITION(b)<RETURN>z");
    terminal.keys.assign(keys.begin(), keys.end());
    run_session(options, files, {terminal, clock, system}, Charset::utf8);
    EXPECT_TRUE(terminal.shown.text.row_text(1).starts_with("a:2zy"));
}

}  // namespace
}  // namespace tpu
