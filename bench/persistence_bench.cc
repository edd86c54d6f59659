// Section files beside compiling the same procedures, and statements in a journal beside
// the same statements without one.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "app/this_system.h"
#include "commands/vocabulary.h"
#include "editor/editor.h"
#include "editor/journal_replay.h"
#include "editor/section.h"
#include "store/journal.h"
#include "swallowing_terminal.h"

namespace {

using namespace tpu;

struct Session {
    Session() : editor({terminal, clock, system}, vocabulary()) {
        editor.headless = true;
        buffer = editor.create_buffer("MAIN", "");
        editor.init_screen();
    }
    SwallowingTerminal terminal;
    SteadyClock clock;
    ThisSystem system;
    TPUEditor editor;
    Buffer* buffer;
};

// A file that is removed at the end of the program.
class Scratch {
  public:
    explicit Scratch(const std::string& ending)
        : path_(std::filesystem::temp_directory_path() /
                ("tpu-bench-" + std::to_string(getpid()) + ending)) {}
    ~Scratch() { remove(); }
    void remove() const {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

std::string procedures(int count) {
    std::string source;
    for (int i = 0; i < count; ++i) {
        std::string number = std::to_string(i);
        source += "PROCEDURE procedure_" + number + "(first, second)\n  LOCAL n, text;\n" +
                  "  n := first + " + number + " * 2;\n  text := \"a text of some length: \";\n" +
                  "  IF n > second THEN\n    MESSAGE(text & STR(n));\n    RETURN n - second;\n" +
                  "  ELSE\n    LOOP\n      EXITIF n >= second;\n      n := n + 1;\n    ENDLOOP;\n" +
                  "  ENDIF;\n  COPY_TEXT(SUBSTR(text, 1, n));\n  RETURN n;\nENDPROCEDURE;\n\n";
    }
    return source;
}

void compile_2000_procedures(benchmark::State& state) {
    const std::string source = procedures(2000);
    for (auto _ : state) {
        Session session;
        session.editor.parser.compile_text(source);
    }
}
BENCHMARK(compile_2000_procedures)->Unit(benchmark::kMillisecond);

void restore_2000_procedures(benchmark::State& state) {
    Scratch file(".sect");
    Session saved;
    saved.editor.parser.compile_text(procedures(2000));
    if (!tpu_section_save(saved.editor, file.path(), "")) state.SkipWithError("cannot save");
    for (auto _ : state) {
        Session session;
        if (!tpu_section_restore(session.editor, file.path()))
            state.SkipWithError("cannot restore");
    }
}
BENCHMARK(restore_2000_procedures)->Unit(benchmark::kMillisecond);

void empty_session(benchmark::State& state) {
    for (auto _ : state) Session session;
}
BENCHMARK(empty_session)->Unit(benchmark::kMillisecond);

constexpr int kStatements = 100'000;

std::string statements() {
    std::string source;
    for (int i = 0; i < kStatements; ++i) source += "total := total + 1\n";
    return source;
}

void run_100000_statements(benchmark::State& state, bool journaled, bool binary) {
    const std::string source = statements();
    Scratch file(".journal");
    for (auto _ : state) {
        Session session;
        std::string note;
        Failure why;
        if (journaled && !tpu_journal_open(*session.buffer, file.path(), binary, note, why)) {
            state.SkipWithError("cannot open");
        }
        session.editor.parser.compile_text(source);
        file.remove();
    }
    state.SetItemsProcessed(kStatements * state.iterations());
}
BENCHMARK_CAPTURE(run_100000_statements, plain, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run_100000_statements, binary_journal, true, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run_100000_statements, text_journal, true, false)->Unit(benchmark::kMillisecond);

void replay_100000_statements(benchmark::State& state) {
    Scratch file(".journal");
    Session recorded;
    std::string note;
    Failure why;
    if (!tpu_journal_open(*recorded.buffer, file.path(), true, note, why)) {
        state.SkipWithError("cannot open");
    }
    recorded.editor.parser.compile_text(statements());
    for (auto _ : state) {
        Session session;
        if (!replay_journal(session.editor, file.path(), why)) state.SkipWithError("cannot replay");
    }
    state.SetItemsProcessed(kStatements * state.iterations());
}
BENCHMARK(replay_100000_statements)->Unit(benchmark::kMillisecond);

}  // namespace
