// What running statements tells the user, and what ends it.
#include <gtest/gtest.h>

#include "support/session.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;

std::string text_of(Session& s, const std::string& name) {
    const Value* value = variable(s.editor, name);
    return value ? value->as_string() : "no variable";
}

TEST(Statements, that_are_wrong_are_counted_and_listed) {
    Session s;
    MiniTPUParser& parser = s.editor.parser;
    parser.compile_text("a := 1\nnonsense\n\nPROCEDURE Open (x)\n  y := x\n  z := 2\n\n");
    EXPECT_EQ(parser.error_count, 2);
    EXPECT_EQ(parser.error_list, (Lines{"Unknown command: nonsense  (line 2)",
                                        "error: missing ENDPROCEDURE for Open (near line 6)"}));
    parser.execute_statement("open(5)");
    EXPECT_EQ(text_of(s, "Y") + text_of(s, "Z"), "52");
    EXPECT_FALSE(parser.execute_procedure("nonsense"));
    EXPECT_EQ(parser.error_count, 2);
    // A program may go wrong without end.
    parser.compile_text("i := 0\nLOOP; EXITIF i = 2000; i := i + 1; x y; ENDLOOP\n");
    EXPECT_EQ(parser.diagnostics.back().times, 2'000);
    parser.compile_text("i := 0\nLOOP; EXITIF i = 2000; i := i + 1; x y; x z; ENDLOOP\n");
    EXPECT_EQ(parser.error_count, 6'002);
    EXPECT_EQ(parser.diagnostics.size(), MiniTPUParser::kMostFaults);
    EXPECT_EQ(parser.error_list.size(), MiniTPUParser::kMostFaults);
    EXPECT_EQ(parser.error_list.back(), "Unknown command: x z  (line 2)");
}

TEST(Statements, leave_no_arrays_behind_when_their_session_ends) {
    const std::size_t before = tpu_array_list().size();
    {
        Session s;
        s.editor.parser.compile_text("a := CREATE_ARRAY; a{1} := a; a{2} := CREATE_ARRAY; b := a");
        EXPECT_EQ(tpu_array_list().size(), before + 2);
    }
    EXPECT_EQ(tpu_array_list().size(), before);
}

TEST(Statements, report_as_much_as_people_may_read) {
    TestReport report;
    for (int i = 0; i < 100'002; ++i) report.add(TestReport::Line::passed, "PASS");
    for (int i = 0; i < 100'001; ++i) report.add(TestReport::Line::failed, "FAIL");
    EXPECT_EQ(report.lines().size(), 200'000u);
    EXPECT_EQ(report.lines().back(), "FAIL");
    EXPECT_EQ(report.left_out(), 3);
    TestReport wide;
    for (int i = 0; i < 100; ++i) wide.add(TestReport::Line::failed, std::string(4'000'000, 'f'));
    EXPECT_EQ(wide.left_out(), 67);
}

TEST(Statements, report_assertions) {
    Session s;
    s.editor.parser.compile_text(
        "TEST(\"t\"); ASSERT(1 + 1); ASSERT_TRUE(\"\"); ASSERT_FALSE(0)\n"
        "ASSERT_EQ(1, \"1\"); ASSERT_EQ(1, 02, \"label\"); ASSERT_EQ(5)");
    EXPECT_EQ(
        s.editor.test_report.lines(),
        (Lines{"---- \"t\"", "PASS  1 + 1", "FAIL  \"\"", "PASS  0", "PASS  1, \"1\"",
               "FAIL  label  (got=\"1\" expected=\"2\")", "FAIL  5  (got=\"5\" expected=\"\")"}));
    EXPECT_EQ(s.editor.assertions_passed, 3);
    EXPECT_EQ(s.editor.assertions_failed, 3);
}

TEST(Statements, without_end_are_ended_by_control_c_whatever_handlers_there_are) {
    const std::string handler = "ON_ERROR; y := \"handled\"; ENDON_ERROR; ";
    for (const std::string& runaway :
         {"x := 0\n" + handler + "LOOP; LOOP; LOOP; x := x + 1; ENDLOOP; ENDLOOP; ENDLOOP",
          "PROCEDURE p; " + handler + "p; p; ENDPROCEDURE\nx := 1\nLOOP; p; ENDLOOP"}) {
        Session s;
        MiniTPUParser& parser = s.editor.parser;
        s.clock.step = std::chrono::milliseconds(1);
        s.terminal.keys = {'x', control('C')};
        parser.compile_text(runaway + "\ny := \"went on\"");
        EXPECT_EQ(text_of(s, "Y"), "no variable") << runaway;
        EXPECT_EQ(s.editor.message, "ABORT");
        EXPECT_EQ(parser.error_code, "TPU$_CONTROLC");
        parser.compile_text("x := \"ready\"");
        EXPECT_EQ(text_of(s, "X"), "ready");
    }
}

TEST(Statements, read_what_is_typed) {
    Session s;
    std::string shown;
    s.terminal.before_key = [&] { shown = s.terminal.shown.visible().row_text(23).substr(0, 9); };
    std::vector<int> keys = key_codes("Adx<BACKSPACE>a<RETURN>n<RETURN>q");
    s.terminal.keys.assign(keys.begin(), keys.end());
    s.editor.parser.compile_text(
        "x := READ_LINE(\"Name: \") + \",\" + READ_LINE + \",\" + READ_CHAR");
    EXPECT_EQ(text_of(s, "X"), "Ada,n,q");
    EXPECT_EQ(shown, "Press a k");
    EXPECT_TRUE(s.editor.running);
    s.terminal.keys = {0xe2, 0x82, 0xac, '.'};
    s.editor.parser.compile_text("x := READ_CHAR + READ_CHAR");
    EXPECT_EQ(text_of(s, "X"), "\xe2\x82\xac.");
}

}  // namespace
}  // namespace tpu
