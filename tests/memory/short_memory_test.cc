// Hosts are told when memory is short: whichever allocation fails, no exception comes out
// of the interface, and the session goes on.
#include <gtest/gtest.h>
#include <tpu.h>

#include <cstdlib>
#include <new>
#include <string>

namespace {

// Allocations until one fails; 0: none does.
unsigned long until_failure = 0;

void* allocate(std::size_t size) {
    if (until_failure > 0 && --until_failure == 0) throw std::bad_alloc();
    if (void* place = std::malloc(size ? size : 1)) return place;
    throw std::bad_alloc();
}

}  // namespace

// Values that are just being computed are lost with their statement.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* place) noexcept {
    std::free(place);
}
void operator delete[](void* place) noexcept {
    std::free(place);
}
void operator delete(void* place, std::size_t) noexcept {
    std::free(place);
}
void operator delete[](void* place, std::size_t) noexcept {
    std::free(place);
}

namespace {

std::string answer(TPU_Context* context, const char* command) {
    char text[200] = "";
    EXPECT_EQ(TPU_ExecuteCommand(context, command), 0) << command;
    TPU_GetMessage(context, text, sizeof text);
    return text;
}

TEST(ShortMemory, lets_no_session_begin) {
    TPU_Context* context = nullptr;
    unsigned long failing = 0;
    while (!context) {
        until_failure = ++failing;
        context = TPU_Initialize();
        ASSERT_TRUE(until_failure == 0 || context) << failing;
    }
    until_failure = 0;
    EXPECT_GT(failing, 3u);
    EXPECT_EQ(answer(context, "MESSAGE(STR(6 * 7))"), "42");
    TPU_Cleanup(context);
}

const char* const kStatements[] = {
    "x := \"a string of more than a few bytes\" + STR(a{1}) + \"and another one behind it\"",
    "SPLIT_LINE",
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

// Fails its first, second, third ... allocation until it needs no more.
void run_with_each_allocation_failing(const char* statement) {
    bool failed = true;
    for (unsigned long nth = 1; failed; ++nth) {
        SCOPED_TRACE(nth);
        TPU_Context* context = TPU_Initialize();
        answer(context, "a := CREATE_ARRAY(3)");
        answer(context, "COPY_TEXT(\"one two\")");
        answer(context, "COPY_TEXT(\" three\")");
        answer(context, "MOVE_HORIZONTAL(-6)");
        until_failure = nth;
        int result = TPU_ExecuteCommand(context, statement);
        failed = until_failure == 0;
        until_failure = 0;
        ASSERT_TRUE(result == 0 || (failed && result == -1));
        ASSERT_NO_FATAL_FAILURE(expect_to_work(context));
        TPU_Cleanup(context);
        ASSERT_TRUE(failed || nth > 3) << "the statement needs no memory";
    }
}

TEST(ShortMemory, leaves_a_session_that_goes_on) {
    for (const char* statement : kStatements) {
        SCOPED_TRACE(statement);
        run_with_each_allocation_failing(statement);
    }
}

TEST(ShortMemory, is_reported_by_calls_that_nest_deeply) {
    TPU_Context* context = TPU_Initialize();
    answer(
        context,
        "x := COMPILE(\"PROCEDURE f(n)\nIF n > 0 THEN f(n - 1); ELSE x := STR(text_that_needs) + "
        "STR(memory_of_its_own); ENDIF; ENDPROCEDURE\")");
    answer(context, "f(5000)");
    until_failure = 2000;
    EXPECT_EQ(TPU_ExecuteCommand(context, "f(5000)"), -1);
    until_failure = 0;
    EXPECT_EQ(answer(context, "MESSAGE(STR(6 * 7))"), "42");
    TPU_Cleanup(context);
}

}  // namespace
