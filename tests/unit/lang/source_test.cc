#include "lang/source.h"

#include <gtest/gtest.h>

namespace tpu::source {
namespace {

using Texts = std::vector<std::string>;

TEST(Source, loses_comments_but_not_those_in_strings) {
    EXPECT_EQ(strip_comments("a := \"x!y\" ! note \"\nb!"), "a := \"x!y\" \nb");
    EXPECT_EQ(strip_comments("'!'\n!\n"), "'\n\n");
    EXPECT_EQ(strip_comments("\"open ! string\n! too"), "\"open ! string\n! too");
}

TEST(Source, joins_lines_that_end_with_a_hyphen) {
    EXPECT_EQ(join_continuations("a + - \t\n b - c -\n- \nd"), "a +  b - c d");
    EXPECT_EQ(join_continuations("\"x -\n\" -x -"), "\"x -\n\" -x -");
}

TEST(Source, is_split_into_statements_with_their_lines) {
    std::vector<int> lines;
    Texts statements =
        split_statements("a := 1; b := 2\n;;\n  MESSAGE(\"x;\ny\") ; c ! end\n\nd -\n e\nf", lines);
    EXPECT_EQ(statements, (Texts{"a := 1", "b := 2", "MESSAGE(\"x;\ny\")", "c", "d  e", "f"}));
    EXPECT_EQ(lines,
              (std::vector<int>{1, 1, 3, 3, 5, 6}));  // of joined and quoted lines one counts
    EXPECT_TRUE(split_statements(" ;\n ; ! nothing\n").empty());
    EXPECT_EQ(split_statements("a; \"b;\nc"), (Texts{"a", "\"b;\nc"}));
}

TEST(Source, gives_quotes_arguments_and_assignments) {
    EXPECT_EQ(strip_quotes("  \"a \"\"b\" "), "a \"\"b");
    EXPECT_EQ(strip_quotes(" 'a' "), "'a'");
    EXPECT_EQ(strip_quotes("\""), "\"");
    EXPECT_EQ(first_call_argument("F( a(b), c ) + d"), "a(b), c");
    EXPECT_EQ(first_call_argument(")("), "");
    EXPECT_EQ(first_call_argument("F"), "");
    EXPECT_EQ(find_assignment("a := \":=\""), 2u);
    EXPECT_EQ(find_assignment("f(a := 1) \":=\" := 2"), 15u);
    EXPECT_EQ(find_assignment("f(\":=\", (x := 1)"), std::string_view::npos);
}

}  // namespace
}  // namespace tpu::source
