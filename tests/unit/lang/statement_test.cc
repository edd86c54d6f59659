// What running statements tells the user, and what ends it.
#include <gtest/gtest.h>

#include "support/session.h"

namespace tpu {
namespace {

using Lines = std::vector<std::string>;

std::string value_of(Session& s, const std::string& name) {
    const Value* value = s.editor.parser.lookup_var(name);
    return value ? value->as_string() : "no variable";
}

TEST(Statements, tell_what_they_did) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"nonsense", "Unknown command: nonsense  (line 1)"},
        {"x := 1\n\nnonsense \"a;b\" (1) ! twice",
         "Unknown command: nonsense \"a;b\" (1)  (line 3)"},
        {"FILL(5)", "FILL needs a range"},
        {"SEARCH", "SEARCH requires a string or pattern"},
        {"SEARCH_QUIETLY()", "SEARCH requires a string or pattern"},
        {"SEARCH(\"two\")", "Found"},
        {"SEARCH(two, REVERSE)", "Not found"},
        {"MESSAGE(\"kept\"); SEARCH_QUIETLY(\"two\")", "kept"},
        {"MATCH(\"one\" & ANY(\" \"))", "MATCH succeeded"},
        {"MATCH(any(\"xo\") & \"ne\" & line_end)", "MATCH failed"},
        {"MOVE_HORIZONTAL(4); MATCH(two | line_end)", "MATCH succeeded"},
        {"MARK", "MARK set"},
        {"SELECT; SELECT_RANGE", "SELECT_RANGE active"},
        {"SELECT_RANGE", "No SELECT active"},
        {"UNDO", "Nothing to undo"},
        {"COPY_TEXT(\"a\"); UNDO", "Undone"},
        {"COPY_TEXT(\"a\"); UNDO; REDO", "Redone"},
        {"EXECUTE(\" a \" + 1)", "No such procedure: a 1"},
        {"SPAWN(\"\")", "SPAWN requires a command"},
        {"CREATE_PROCESS", "CREATE_PROCESS needs a command"},
        {"MESSAGE(\"kept\"); SEND; SEND(\"x\"); SEND_EOF", "kept"},
        {"ATTACH", "ATTACH: no process"},
        {"p := CREATE_PROCESS(\"cat\"); ATTACH",
         "ATTACHED \xe2\x80\x94 type to process; Ctrl-Z detach, Ctrl-D EOF"},
        {"create_widget(1, 2)", "CREATE_WIDGET: accepted (no-op in ncurses build)"},
        {"END_OF; CURRENT_COLUMN", "8"},
        {"MOVE_HORIZONTAL(1); CURRENT_CHARACTER", "n"},
        {"MESSAGE(\"TPU$\")", "TPU$"},
        {"ABORT; MESSAGE(\"never\")", "ABORT"},
        {"LENGTH(\"four\")", "4"},
        {"KEY_NAME(\"F5\")", "269"},
        {"EXPAND_LEARN(5)", "EXPAND_LEARN needs a learn sequence"},
        {"MAP(CURRENT_WINDOW, 1)", "MAP needs a buffer"},
        {"MESSAGE(\"kept\"); x := CREATE_RANGE(1, 2)", "kept"},
        {"DELETE(\"text\")", "DELETE needs a buffer, window, array, marker, range or process"},
        {"LEARN_BEGIN; LEARN_BEGIN", "A learn sequence is being recorded already"},
        {"LEARN_END; MESSAGE(ERROR)", "successful completion"},
        {"CREATE_WIDGET(1, 2)", "CREATE_WIDGET: accepted (no-op in ncurses build)"},
        {"LOCATE_MOUSE", "Mouse: row=-1 col=-1"},
        {"SET(VIDEO, GREEN)",
         "SET(VIDEO) needs BOLD, REVERSE, UNDERLINE, DIM, BLINK, STANDOUT, NORMAL or OFF"},
        {"SET(STATUS_LINE, CURRENT_WINDOW, 5)", "SET(STATUS_LINE) needs ON, TEXT, OFF or NONE"},
        {"SET(PRE_KEY_PROCEDURE, CURRENT_BUFFER)", "SET needs the text of a statement"},
    };
    for (const auto& c : cases) {
        Session s({"one two"});
        s.editor.parser.compile_text(c.text);
        EXPECT_EQ(s.editor.message, c.message) << c.text;
    }
    Session s;
    s.buffer->free_cursor = true;
    s.editor.parser.execute_statement("  mark  ");
    EXPECT_EQ(s.editor.message, "MARK (FREE_CURSOR) set");
    s.editor.parser.execute_statement("x y");
    EXPECT_EQ(s.editor.message, "Unknown command: x y");
}

TEST(Statements, that_are_wrong_are_counted_and_listed) {
    Session s;
    MiniTPUParser& parser = s.editor.parser;
    parser.compile_text("a := 1\nnonsense\n\nPROCEDURE Open (x)\n  y := x\n  z := 2\n\n");
    EXPECT_EQ(parser.error_count, 2);
    EXPECT_EQ(parser.error_list, (Lines{"Unknown command: nonsense  (line 2)",
                                        "error: missing ENDPROCEDURE for Open (near line 6)"}));
    EXPECT_TRUE(parser.execute_procedure_with_args("open", {Value::make_int(5)}));
    EXPECT_EQ(value_of(s, "Y") + value_of(s, "Z"), "52");
    EXPECT_FALSE(parser.execute_procedure("nonsense"));
    EXPECT_EQ(parser.error_count, 2);
    // A program may go wrong without end.
    parser.compile_text("i := 0\nLOOP; EXITIF i = 50000; i := i + 1; x y; ENDLOOP\n");
    EXPECT_EQ(parser.diagnostics.back().times, 50'000);
    parser.compile_text("i := 0\nLOOP; EXITIF i = 50000; i := i + 1; x y; x z; ENDLOOP\n");
    EXPECT_EQ(parser.error_count, 150'002);
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

TEST(Statements, that_are_outermost_are_one_undo_step_each) {
    const std::string procedure =
        "PROCEDURE p; COPY_TEXT(\"a\"); COPY_TEXT(\"b\"); RETURN 1; ENDPROCEDURE\n";
    for (const char* text :
         {"p", "x := p() + p()", "IF p() THEN p; ELSE p; ENDIF", "LOOP; p; EXITIF p(); ENDLOOP",
          "a{p()} := p()", "LOCAL x := p()", "EXECUTE(COMPILE(\"p; p\"))", "MESSAGE(p())",
          "ON_ERROR; COPY_TEXT(\"c\"); ENDON_ERROR; ABORT"}) {
        Session s;
        s.editor.parser.compile_text(procedure + text);
        EXPECT_EQ(s.buffer->undo_stack.size(), 1u) << text;
        s.editor.parser.compile_text("UNDO");
        EXPECT_EQ(s.lines(), Lines{""}) << text;
        EXPECT_EQ(s.buffer->undo_stack.size(), 0u) << text;
    }
    Session s;
    s.editor.parser.compile_text(procedure + "p; p; MESSAGE(\"nothing\")");
    EXPECT_EQ(s.buffer->undo_stack.size(), 2u);
}

TEST(Statements, of_a_key_are_one_undo_step_together) {
    Session s;
    KeyMap* map = s.editor.create_key_map("M");
    map->define_key('x', {"a := 1; LOOP; a := a + 1; EXITIF a = 5; ENDLOOP ! five\n"
                          "COPY_TEXT(STR(a)); COPY_TEXT(\"!\")",
                          {},
                          ""});
    map->define_key('y', {"IF a THEN COPY_TEXT(\"y\"); ENDIF", {}, ""});
    s.editor.current_key_map_list->add_first(map);
    s.press("xy");
    EXPECT_EQ(s.lines(), Lines{"5!y"});
    EXPECT_EQ(s.buffer->undo_stack.size(), 2u);
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
        EXPECT_EQ(value_of(s, "Y"), "no variable") << runaway;
        EXPECT_EQ(s.editor.message, "ABORT");
        EXPECT_EQ(parser.error_code, "TPU$_CONTROLC");
        parser.compile_text("x := \"ready\"");
        EXPECT_EQ(value_of(s, "X"), "ready");
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
    EXPECT_EQ(value_of(s, "X"), "Ada,n,q");
    EXPECT_EQ(shown, "Press a k");
    EXPECT_TRUE(s.editor.running);
    s.terminal.keys = {0xe2, 0x82, 0xac, '.'};
    s.editor.parser.compile_text("x := READ_CHAR + READ_CHAR");
    EXPECT_EQ(value_of(s, "X"), "\xe2\x82\xac.");
}

}  // namespace
}  // namespace tpu
