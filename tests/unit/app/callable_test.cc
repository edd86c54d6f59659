// The interface as hosts see it.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <tpu.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <string>
#include <thread>
#include <vector>

namespace {

class Host {
  public:
    Host() : context(TPU_Initialize()) {}
    ~Host() { end(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void end() { TPU_Cleanup(std::exchange(context, nullptr)); }
    void run(const std::string& statement) {
        EXPECT_EQ(TPU_ExecuteCommand(context, statement.c_str()), 0) << statement;
    }
    std::string message() {
        std::vector<char> room(3 << 20);
        int size = TPU_GetMessage(context, room.data(), static_cast<int>(room.size()));
        return size < 0 ? "(none)" : std::string(room.data(), static_cast<std::size_t>(size));
    }
    std::string value(const std::string& expression) {
        run("MESSAGE(\" \" + (" + expression + "))");
        return message().substr(1);
    }

    TPU_Context* context;
};

constexpr const char* kAllText =
    "STR(CREATE_RANGE(BEGINNING_OF(CURRENT_BUFFER), END_OF(CURRENT_BUFFER)))";

TEST(Callable, begins_with_an_empty_buffer_a_window_and_no_message) {
    Host host;
    ASSERT_NE(host.context, nullptr);
    EXPECT_EQ(host.message(), "");
    EXPECT_EQ(host.value("GET_INFO(CURRENT_BUFFER, \"NAME\")"), "MAIN");
    EXPECT_EQ(host.value("GET_INFO(CURRENT_BUFFER, \"FILE_NAME\")"), "");
    EXPECT_EQ(host.value(kAllText), "");
    EXPECT_EQ(host.value("GET_INFO(SCREEN, \"SCREEN_ROWS\")"), "24");
    EXPECT_EQ(host.value("GET_INFO(SCREEN, \"SCREEN_COLS\")"), "80");
}

TEST(Callable, refuses_null_and_no_room) {
    Host host;
    char room[8] = "as was";
    EXPECT_EQ(TPU_ExecuteCommand(nullptr, "x := 1"), -1);
    EXPECT_EQ(TPU_ExecuteCommand(host.context, nullptr), -1);
    EXPECT_EQ(TPU_GetMessage(nullptr, room, 8), -1);
    EXPECT_EQ(TPU_GetMessage(host.context, nullptr, 8), -1);
    for (int size : {0, -1, -2147483647 - 1}) {
        EXPECT_EQ(TPU_GetMessage(host.context, room, size), -1);
    }
    EXPECT_STREQ(room, "as was");
    TPU_Cleanup(nullptr);
}

TEST(Callable, cuts_a_message_to_the_room_there_is) {
    Host host;
    host.run("MESSAGE(\"abcdef\")");
    char room[9];
    const std::pair<int, std::string> cases[] = {
        {1, ""}, {2, "a"}, {6, "abcde"}, {7, "abcdef"}, {8, "abcdef"}};
    for (const auto& [size, expected] : cases) {
        std::fill(std::begin(room), std::end(room), '#');
        EXPECT_EQ(TPU_GetMessage(host.context, room, size), static_cast<int>(expected.size()));
        EXPECT_EQ(std::string(room, expected.size() + 2), expected + '\0' + '#') << size;
    }
}

TEST(Callable, leaves_failures_of_statements_to_the_language) {
    Host host;
    host.run("frobnicate the text");
    EXPECT_EQ(host.message(), "Unknown command: frobnicate the text");
    host.run("");
    host.run("ABORT");
    EXPECT_EQ(host.value("ERROR"), "TPU$_CONTROLC");
    host.run("QUIT(3)");
    EXPECT_EQ(host.value("6 * 7"), "42");
    EXPECT_EQ(host.value("READ_LINE(\"Name? \")"), "");
}

TEST(Callable, has_the_dollar_names_too) {
    TPU_Context* context = TPU$INITIALIZE();
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(TPU$EXECUTE_COMMAND(context, "MESSAGE(\"here\")"), 0);
    EXPECT_EQ(TPU$EXECUTE_COMMAND(context, nullptr), -1);
    char room[8];
    EXPECT_EQ(TPU_GetMessage(context, room, 8), 4);
    TPU$CLEANUP(context);
    TPU$CLEANUP(nullptr);
}

TEST(Callable, takes_any_text) {
    Host host;
    std::string text = "Gr\u00fc\u00dfe,\n\xff\x80 \x01";
    for (int i = 0; i < (1 << 20); ++i) text += static_cast<char>('a' + i % 26);
    host.run("COPY_TEXT(\"" + text + "\" + FAO(\"!%C!%C\", 0, 34))");
    std::string got = host.value(kAllText), wanted = text + '\0' + '"';
    auto [a, b] = std::mismatch(got.begin(), got.end(), wanted.begin(), wanted.end());
    EXPECT_TRUE(a == got.end() && b == wanted.end()) << "at byte " << a - got.begin();
    EXPECT_EQ(host.value("GET_INFO(CURRENT_BUFFER, \"RECORD_COUNT\")"), "2");
    EXPECT_EQ(host.value("\"a\tb\r\""), "a\tb\r");
}

TEST(Callable, compiles_procedures_and_collects_the_output_of_subprocesses) {
    Host host;
    host.run("COMPILE(\"PROCEDURE twice(n) ! doubles\nRETURN n + n;\nENDPROCEDURE\")");
    EXPECT_EQ(host.value("twice(21)"), "42");
    host.run("p := CREATE_PROCESS(\"echo done\")");
    for (int i = 0; i < 1000 && host.value("INDEX(" + std::string(kAllText) + ", \"done\")") == "0";
         ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(host.value(kAllText), "done\n");
}

TEST(Callable, keeps_sessions_apart) {
    Host one, two;
    one.run("COMPILE(\"PROCEDURE who\nRETURN 1; ENDPROCEDURE\")");
    two.run("COMPILE(\"PROCEDURE who\nRETURN 2; ENDPROCEDURE\")");
    for (Host* host : {&one, &two}) host->run("COPY_TEXT(STR(who()))");
    one.run("v := \"of one\"; ");
    one.run("b := CREATE_BUFFER(\"OTHER\")");
    one.run("CONSTANT c := 1");
    EXPECT_EQ(one.value(kAllText), "1");
    EXPECT_EQ(two.value(kAllText), "2");
    EXPECT_EQ(two.value("v"), "V");
    EXPECT_EQ(two.value("c"), "C");
    EXPECT_EQ(two.value("GET_BUFFER(\"OTHER\") = \"UNSPECIFIED\""), "1");
    one.run("UNDO");
    EXPECT_EQ(one.value(kAllText), "");
    EXPECT_EQ(two.value(kAllText), "2");
    one.end();
    EXPECT_EQ(two.value("who() + 40"), "42");
}

// The walk over the live arrays is the one way from one session into another.
TEST(Callable, forgets_the_objects_of_a_session_that_ends) {
    Host one, two;
    one.run("secret := 5");
    one.run("a := CREATE_ARRAY");
    one.run("a{\"buffer\"} := CREATE_BUFFER(\"OTHER\")");
    one.run("a{\"window\"} := CURRENT_WINDOW");
    one.run("a{\"mark\"} := BEGINNING_OF(CURRENT_BUFFER)");
    one.run("a{\"range\"} := CREATE_RANGE(a{\"mark\"}, a{\"mark\"})");
    one.run("a{\"program\"} := COMPILE(\"secret := secret + 1\")");
    one.run("EXECUTE(a{\"program\"})");
    two.run("b := GET_INFO(ARRAY, \"LAST\")");
    for (const char* name : {"buffer", "window", "mark", "range", "program"}) {
        std::string of_two = name;
        two.run(of_two + "_1 := b{\"" + name + "\"}");
        ASSERT_NE(two.value(of_two + "_1 = \"UNSPECIFIED\""), "1") << name;
    }
    two.run("POSITION(buffer_1)");
    two.run("MAP(CURRENT_WINDOW, buffer_1)");
    two.run("secret := 10");
    two.run("EXECUTE(program_1)");
    EXPECT_EQ(two.value("secret"), "11");
    EXPECT_EQ(one.value("secret"), "6");
    one.end();
    for (const char* name : {"buffer", "window", "mark", "range"}) {
        EXPECT_EQ(two.value(std::string(name) + "_1 = \"UNSPECIFIED\""), "1") << name;
        EXPECT_EQ(two.value("b{\"" + std::string(name) + "\"} = \"UNSPECIFIED\""), "1") << name;
    }
    two.run("EXECUTE(program_1)");
    EXPECT_EQ(two.value("secret"), "12");
    EXPECT_EQ(two.value("GET_INFO(CURRENT_BUFFER, \"NAME\")"), "MAIN");
    two.run("COPY_TEXT(\"on\")");
    EXPECT_EQ(two.value(kAllText), "on");
}

#if defined(__SANITIZE_ADDRESS__) || defined(TPU_SANITIZE)
constexpr std::size_t kLittleStack = std::size_t{4} << 20;
#else
constexpr std::size_t kLittleStack = std::size_t{512} << 10;
#endif

TEST(Callable, serves_one_thread_after_the_other_whatever_its_stack) {
    Host host;
    host.run(
        "COMPILE(\"PROCEDURE depth(n)\nIF n = 0 THEN RETURN 0; ENDIF; "
        "RETURN depth(n - 1) + 1; ENDPROCEDURE\")");
    auto work = [](void* argument) -> void* {
        auto* session = static_cast<Host*>(argument);
        EXPECT_EQ(session->value("depth(20000)"), "20000");
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kLittleStack);
    for (int i = 0; i < 3; ++i) {
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attributes, work, &host), 0);
        pthread_join(thread, nullptr);
    }
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(host.value("depth(10)"), "10");
}

struct ProcessState {
    std::string locale = std::setlocale(LC_ALL, nullptr);
    std::vector<void (*)(int)> handlers;
    std::vector<bool> blocked;

    ProcessState() {
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        for (int number = 1; number < 32; ++number) {
            struct sigaction action = {};
            sigaction(number, nullptr, &action);
            handlers.push_back(action.sa_handler);
            blocked.push_back(sigismember(&mask, number) == 1);
        }
    }
    bool operator==(const ProcessState&) const = default;
};

TEST(Callable, leaves_locale_signals_and_output_of_the_host_alone) {
    char folder[] = "/tmp/tpu-callable-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    std::string file = std::string(folder) + "/text";
    ProcessState before;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        Host host;
        for (const char* statement :
             {"COPY_TEXT(\"text\")", "REFRESH", "UPDATE(ALL)", "BELL", "SHOW(BUFFERS)",
              "x := READ_KEY", "x := READ_CHAR", "SLEEP(1)", "SET(MOUSE, ON)", "HELP(\"KEYS\")",
              "SET(TIMER, 10, \"x := 1\")", "p := CREATE_PROCESS(\"cat\")", "SEND(\"a\")"}) {
            host.run(statement);
            EXPECT_EQ(before, ProcessState()) << statement;
        }
        host.run("WRITE_FILE(CURRENT_BUFFER, \"" + file + "\")");
        EXPECT_EQ(host.message(), "Wrote " + file);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(before, ProcessState());
    EXPECT_EQ(std::remove(file.c_str()), 0);
    EXPECT_EQ(std::remove(folder), 0);
}

}  // namespace
