#include "app/options.h"

#include <gtest/gtest.h>

namespace tpu {
namespace {

TEST(Options, are_found_in_any_case_and_spelling) {
    Options options =
        Options::parse({"/command=Start.TPU", "--SECTION", "a.sect", "a.txt", "b.txt"});
    EXPECT_EQ(options.command_file, "Start.TPU");
    EXPECT_EQ(options.section_file, "a.sect");
    EXPECT_EQ(options.file, "a.txt");
    EXPECT_EQ(Options::parse({"--Command", "x=y"}).command_file, "x=y");
    EXPECT_EQ(Options::parse({"--command=a=b"}).command_file, "a=b");
}

TEST(Options, may_come_last_without_a_value_and_may_be_unknown) {
    Options options = Options::parse({"", "-x", "/unknown", "--what", "a.txt", "/COMMAND"});
    EXPECT_EQ(options.command_file, "");
    EXPECT_EQ(options.file, "a.txt");
    EXPECT_EQ(Options::parse({"--test"}).file, "");
    EXPECT_EQ(Options::parse({"--TEST", "a.txt"}).file, "a.txt");
}

TEST(Options, let_a_later_section_count) {
    EXPECT_EQ(Options::parse({"/SECTION=a", "/NOSECTION"}).section_file, "");
    EXPECT_EQ(Options::parse({"--nosection", "/section=a"}).section_file, "a");
}

TEST(Options, tell_absolute_paths_from_options) {
    EXPECT_EQ(Options::parse({"/no/such/file"}).file, "/no/such/file");
    EXPECT_EQ(Options::parse({"/tmp"}).file, "/tmp");
    EXPECT_EQ(Options::parse({"/nosuchfile"}).file, "");
    EXPECT_EQ(Options::parse({"/command=/a/b"}).file, "");
}

TEST(Options, end_where_asked_and_name_a_line) {
    Options options = Options::parse({"+12", "--", "--help", "x"});
    EXPECT_EQ(options.mode, Options::Mode::edit);
    EXPECT_EQ(options.file, "--help");
    EXPECT_EQ(options.line, 12u);
    EXPECT_EQ(Options::parse({"--", "+3"}).file, "+3");
    EXPECT_EQ(Options::parse({"+x"}).file, "+x");
    EXPECT_EQ(Options::parse({"--version"}).mode, Options::Mode::version);
    EXPECT_EQ(Options::parse({"a", "--help"}).mode, Options::Mode::help);
}

}  // namespace
}  // namespace tpu
