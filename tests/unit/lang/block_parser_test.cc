#include "lang/block_parser.h"

#include <gtest/gtest.h>

#include "lang/source.h"

namespace tpu {
namespace {

std::string show(const std::vector<Stmt>& block);

// A statement on one line: IF c {then} {else}, LOOP {body}, target = expression, ...
std::string show(const Stmt& stmt) {
    switch (stmt.kind) {
        case Stmt::kPlain: return stmt.text;
        case Stmt::kAssignment: return stmt.text + " = " + stmt.expression;
        case Stmt::kIf:
            return "IF " + stmt.text + " " + show(stmt.body) +
                   (stmt.else_body.empty() ? "" : " " + show(stmt.else_body));
        case Stmt::kLoop: return "LOOP " + show(stmt.body);
        case Stmt::kExitIf: return "EXITIF " + stmt.text;
        case Stmt::kReturn: return "RETURN <" + stmt.text + ">";
        case Stmt::kAbort: return "ABORT";
        case Stmt::kBreak: return "BREAK";
        case Stmt::kOnError: return "ON_ERROR " + show(stmt.body);
    }
    return "?";
}

std::string show(const std::vector<Stmt>& block) {
    std::string text;
    for (const Stmt& stmt : block) text += (text.empty() ? "" : "; ") + show(stmt);
    return "{" + text + "}";
}

// A source text, parsed as one block.
std::string parse(const std::string& text, std::vector<std::string_view> terminators = {}) {
    std::vector<int> lines;
    std::vector<std::string> statements = source::split_statements(text, lines);
    std::size_t index = 0;
    std::string shown = show(parse_block(statements, lines, index, terminators));
    if (index < statements.size()) shown += " before " + statements[index];
    return shown;
}

TEST(BlockParser, nests_blocks) {
    EXPECT_EQ(parse("if a then\n b\nelse\n c; loop; exitif d; break; endloop\nendif; e"),
              "{IF a {b} {c; LOOP {EXITIF d; BREAK}}; e}");
    EXPECT_EQ(parse("ON_ERROR [X]; a; ENDON_ERROR; ON_ERRORX; ON_ERROR; ABORT; ENDON_ERROR"),
              "{ON_ERROR {a}; ON_ERRORX; ON_ERROR {ABORT}}");
    EXPECT_EQ(parse("IF a THEN IF b THEN c; ELSE d; ENDIF; ELSE e; ENDIF"),
              "{IF a {IF b {c} {d}} {e}}");
}

TEST(BlockParser, takes_statements_after_then_and_else) {
    EXPECT_EQ(parse("IF a THEN x := 1; ELSE IF b THEN y; ENDIF; ENDIF; z"),
              "{IF a {x = 1} {IF b {y}}; z}");
    EXPECT_EQ(parse("IF a\nTHEN b\nENDIF"), "{IF a {b}}");
    EXPECT_EQ(parse("IF a\nTHEN\nb\nENDIF"), "{IF a {b}}");
    EXPECT_EQ(parse("IF(a) THEN EXITIF(b); ENDIF"), "{IF (a) {EXITIF (b)}}");
    EXPECT_EQ(parse("IF a THEN LOOP; b; ENDLOOP; ENDIF"), "{IF a {LOOP {b}}}");
}

TEST(BlockParser, knows_the_simple_statements) {
    EXPECT_EQ(parse("return; RETURN x; Return(x); RETURNS; abort; BREAKS"),
              "{RETURN <>; RETURN <x>; RETURN <(x)>; RETURNS; ABORT; BREAKS}");
    EXPECT_EQ(parse("LOCAL a := 1; constant b := 2; variable c; loops; a{1} := f(x := 2)"),
              "{LOCAL a := 1; constant b := 2; variable c; loops; a{1} = f(x := 2)}");
}

TEST(BlockParser, closes_what_is_left_open_where_the_block_around_it_ends) {
    EXPECT_EQ(parse("IF a THEN b; LOOP; c"), "{IF a {b; LOOP {c}}}");
    EXPECT_EQ(parse("LOOP; IF a THEN b; ENDLOOP; c"), "{LOOP {IF a {b}}; c}");
    EXPECT_EQ(parse("LOOP; a; ENDPROCEDURE x; b", {"ENDPROCEDURE"}),
              "{LOOP {a}} before ENDPROCEDURE x");
    EXPECT_EQ(parse("a; endprocedures; b", {"ENDPROCEDURE"}), "{a; endprocedures; b}");
    EXPECT_EQ(parse("ENDIF; ELSE; ENDLOOP; a"), "{ENDIF; ELSE; ENDLOOP; a}");
    EXPECT_EQ(parse("IF a THEN b; ELSE c; ELSE d; ENDIF"), "{IF a {b} {c; ELSE d}}");
}

TEST(BlockParser, gives_statements_their_lines) {
    std::vector<std::string> statements{"LOOP", "a", "IF b THEN c", "ENDIF"};
    std::size_t index = 1;
    std::vector<Stmt> block = parse_block(statements, {1, 2, 5}, index, {});
    ASSERT_EQ(block.size(), 2u);
    EXPECT_EQ(block[0].line, 2);
    EXPECT_EQ(block[1].line, 5);
    EXPECT_EQ(block[1].body[0].line, 5);
    EXPECT_EQ(index, 4u);
}

TEST(BlockParser, cuts_off_what_is_nested_too_deeply) {
    std::vector<std::string> statements(kDeepestBlock + 5, "LOOP");
    statements.push_back("lost");
    statements.insert(statements.end(), 5, "ENDLOOP");
    statements.push_back("kept");
    statements.insert(statements.end(), kDeepestBlock, "ENDLOOP");
    statements.push_back("last");
    std::size_t index = 0;
    bool too_deep = false;
    std::vector<Stmt> block = parse_block(statements, {}, index, {}, &too_deep);
    EXPECT_TRUE(too_deep);
    ASSERT_EQ(block.size(), 2u);
    EXPECT_EQ(block[1].text, "last");
    const Stmt* innermost = &block[0];
    std::size_t depth = 1;
    for (; innermost->body[0].kind == Stmt::kLoop; ++depth) innermost = &innermost->body[0];
    EXPECT_EQ(depth, kDeepestBlock);
    EXPECT_EQ(innermost->body[0].text, "kept");
}

}  // namespace
}  // namespace tpu
