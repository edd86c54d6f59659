// Hosts are told when memory is short: whichever allocation fails, no exception comes out
// of the interface, and the session goes on.
#include <gtest/gtest.h>
#include <tpu.h>

#include <string>

#include "memory/failing_allocations.h"
#include "unit/store/temp_folder.h"

namespace {

std::string answer(TPU_Context* context, const char* command) {
    char text[4000] = "";
    EXPECT_EQ(TPU_ExecuteCommand(context, command), 0) << command;
    TPU_GetMessage(context, text, sizeof text);
    return text;
}

TEST(ShortMemory, lets_no_session_begin) {
    TPU_Context* context = nullptr;
    unsigned long nth = 0;
    while (!context) {
        failing::nth(++nth);
        context = TPU_Initialize();
        ASSERT_TRUE(failing::any() || context) << nth;
    }
    failing::none();
    EXPECT_GT(nth, 3u);
    EXPECT_EQ(answer(context, "MESSAGE(STR(6 * 7))"), "42");
    TPU_Cleanup(context);
}

const char* const kStatements[] = {
    "x := \"a string of more than a few bytes\" + STR(a{1}) + \"and another one behind it\"",
    "SPLIT_LINE",
    "SET(TAB_STOPS, 4, 8, 12)",
    "EXECUTE(COMPILE(\"CHANGE_CASE(GET_BUFFER('OTHER'), UPPER); COPY_TEXT(some_text)\"))",
    "COPY_TEXT(\"a line of text that is long enough to be kept elsewhere\")",
    "COPY_TEXT(FAO(\"!40*a!/!40*b!/!40*c\"))",
    "UNDO",
    "MESSAGE(FAO(\"!SL of !AS\", 3, \"words, and then quite a few more of them\"))",
    "b := CREATE_BUFFER(\"SECOND\")",
    "a{\"key that is a long text\"} := CREATE_ARRAY(3)",
    "UNKNOWN STATEMENT OF SOME LENGTH",
    "p := SPAN(\"abcdefghijklmnopqrstuvwxyz\") & ANY(\" \")",
    "SHOW(BUFFERS)",
    "EXECUTE(COMPILE(\"n := 0; LOOP\nCOPY_TEXT(word); SPLIT_LINE; n := n + 1; EXITIF n > 20; "
    "ENDLOOP; LOOP\nAPPEND_LINE; MOVE_VERTICAL(-2); n := n - 2; EXITIF n < 0; ENDLOOP\"))",
    "EXECUTE(COMPILE(\"PROCEDURE f(n)\nLOCAL t; IF n = 0 THEN RETURN STR(the_end_of_it_all); "
    "ENDIF; t := f(n - 1); RETURN t + STR(n); ENDPROCEDURE;\nON_ERROR\nMESSAGE(no_no_no_no);\n"
    "ENDON_ERROR;\nMESSAGE(f(9)); DELETE(CREATE_BUFFER(another)); COPY_TEXT(f(1)); ABORT\"))",
};

void expect_to_work(TPU_Context* context) {
    ASSERT_EQ(answer(context, "MESSAGE(STR(6 * 7))"), "42");
    ASSERT_EQ(answer(context,
                     "EXECUTE(COMPILE(\"x := 1; LOOP\nx := x + x; EXITIF x > 99; ENDLOOP; "
                     "MESSAGE(STR(x))\"))"),
              "128");
    answer(context, "x := CREATE_RANGE(BEGINNING_OF(CURRENT_BUFFER), END_OF(CURRENT_BUFFER))");
    ASSERT_EQ(answer(context, "MESSAGE(SUBSTR(STR(x), LENGTH(x) - 4, 5))"), "three");
}

struct Host {
    Host() {
        answer(context, "a := CREATE_ARRAY(3)");
        make_other_buffer(context);
        answer(context, ("JOURNAL_OPEN(\"" + journal + "\")").c_str());
        answer(context, "COPY_TEXT(\"one two\")");
        answer(context, "COPY_TEXT(\" three\")");
        answer(context, "MOVE_HORIZONTAL(-6)");
    }
    ~Host() { TPU_Cleanup(context); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    static void make_other_buffer(TPU_Context* of) {
        answer(of, "POSITION(CREATE_BUFFER(\"OTHER\"))");
        answer(of, "COPY_TEXT(\"other\")");
        answer(of, "POSITION(GET_BUFFER(\"MAIN\"))");
    }
    static std::string text(TPU_Context* of) {
        std::string texts;
        for (const std::string name : {"MAIN", "OTHER"}) {
            answer(of, ("shown := GET_BUFFER(\"" + name + "\")").c_str());
            answer(of, "shown := CREATE_RANGE(BEGINNING_OF(shown), END_OF(shown))");
            texts += answer(of, "MESSAGE(STR(shown))") + '/';
        }
        return texts;
    }
    std::string replayed() const {
        TPU_Context* other = TPU_Initialize();
        make_other_buffer(other);
        answer(other, ("RECOVER_BUFFER(\"" + journal + "\")").c_str());
        std::string result = text(other);
        TPU_Cleanup(other);
        return result;
    }

    tpu::TempFolder folder;
    const std::string journal = folder.path("journal");
    TPU_Context* context = TPU_Initialize();
};

// Fails its first, second, third ... allocation until it needs no more. It has all of its
// effect or none, and so has its record.
void run_with_each_allocation_failing(const char* statement, bool journals) {
    std::string without;
    bool failed = true;
    for (unsigned long nth = 1; failed; nth += journals ? 5 : 1) {
        SCOPED_TRACE(nth);
        Host host;
        if (nth == 1) without = Host::text(host.context);
        if (!journals) answer(host.context, "JOURNAL_CLOSE");
        failing::nth(nth);
        int result = TPU_ExecuteCommand(host.context, statement);
        failed = failing::any();
        failing::none();
        ASSERT_TRUE(result == 0 || (failed && result == -1));
        std::string text = Host::text(host.context);
        ASSERT_TRUE(result == 0 || text == without) << text;
        answer(host.context, "COPY_TEXT(FAO(\"<!_x>\"))");
        ASSERT_TRUE(!journals || host.replayed() == Host::text(host.context))
            << host.replayed() << "\n for\n"
            << Host::text(host.context);
        answer(host.context, "UNDO");
        ASSERT_EQ(Host::text(host.context), text);
        ASSERT_NO_FATAL_FAILURE(expect_to_work(host.context));
        ASSERT_TRUE(failed || nth > 3) << "the statement needs no memory";
    }
}

TEST(ShortMemory, leaves_a_session_that_goes_on) {
    for (const char* statement : kStatements) {
        SCOPED_TRACE(statement);
        run_with_each_allocation_failing(statement, false);
        run_with_each_allocation_failing(statement, true);
    }
}

TEST(ShortMemory, is_reported_by_calls_that_nest_deeply) {
    TPU_Context* context = TPU_Initialize();
    answer(
        context,
        "x := COMPILE(\"PROCEDURE f(n)\nIF n > 0 THEN f(n - 1); ELSE x := STR(text_that_needs) + "
        "STR(memory_of_its_own); ENDIF; ENDPROCEDURE\")");
    answer(context, "f(5000)");
    failing::nth(2000);
    EXPECT_EQ(TPU_ExecuteCommand(context, "f(5000)"), -1);
    failing::none();
    EXPECT_EQ(answer(context, "MESSAGE(STR(6 * 7))"), "42");
    TPU_Cleanup(context);
}

}  // namespace
