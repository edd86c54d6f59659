// From a key to the grid of cells: dispatch, undo step, drawing; without a terminal.
#include <benchmark/benchmark.h>

#include <string>

#include "app/this_system.h"
#include "commands/vocabulary.h"
#include "editor/compose.h"
#include "editor/editor.h"
#include "swallowing_terminal.h"

namespace {

using namespace tpu;

struct Bench {
    explicit Bench(LineStore lines) : editor({terminal, clock, system}, vocabulary()) {
        editor.charset = Charset::utf8;
        buffer = editor.create_buffer("MAIN", "");
        buffer->set_text(std::move(lines));
        editor.init_screen();
        editor.define_default_keys();
    }
    void press(int key) {
        editor.handle_event(Event::of_key(key));
        editor.draw();
    }
    SwallowingTerminal terminal;
    SteadyClock clock;
    ThisSystem system;
    TPUEditor editor;
    Buffer* buffer;
};

LineStore short_lines(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += "line " + std::to_string(i) + "\n";
    return LineStore::from_text(text);
}

const LineStore& ten_million_lines() {
    static LineStore lines = short_lines(10'000'000);
    return lines;
}

const LineStore& one_long_line() {
    static LineStore lines = LineStore::from_text(std::string(100'000'000, 'x'));
    return lines;
}

void type_and_erase(benchmark::State& state, const LineStore& lines, bool middle) {
    Bench bench(lines);
    Position place = lines.position(middle ? lines.bytes() / 2 : 0);
    bench.buffer->cursor_row = place.row;
    bench.buffer->cursor_column = place.column;
    for (auto _ : state) {
        bench.press('x');
        bench.press(kKeyBackspace);
    }
    state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK_CAPTURE(type_and_erase, empty_buffer, LineStore(), false);
BENCHMARK_CAPTURE(type_and_erase, amid_10_million_lines, ten_million_lines(), true);
BENCHMARK_CAPTURE(type_and_erase, amid_a_line_of_100_mb, one_long_line(), true);

void move_about(benchmark::State& state, const LineStore& lines) {
    Bench bench(lines);
    bench.buffer->cursor_row = lines.size() / 2;
    for (auto _ : state) {
        bench.press(kKeyNextPage);
        bench.press(kKeyRight);
        bench.press(kKeyPreviousPage);
        bench.press(kKeyLeft);
    }
    state.SetItemsProcessed(4 * state.iterations());
}
BENCHMARK_CAPTURE(move_about, amid_10_million_lines, ten_million_lines());
BENCHMARK_CAPTURE(move_about, in_a_line_of_100_mb, one_long_line());

void paste_five_megabytes(benchmark::State& state, bool wrap) {
    std::string text;
    while (text.size() < 5'000'000) text += "some words to paste into\tthe buffer\n";
    for (auto _ : state) {
        Bench bench(ten_million_lines());
        bench.buffer->auto_wrap = wrap;
        bench.buffer->insert_mode = !wrap;
        bench.editor.insert_paste(text);
    }
}
BENCHMARK_CAPTURE(paste_five_megabytes, plain, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paste_five_megabytes, overstrike_and_wrap, true)->Unit(benchmark::kMillisecond);

}  // namespace
