// The line store under the load an editor puts on it: a snapshot before every
// change, changes at random places of a large text, searches that find nothing.
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "text/line_store.h"

namespace {

using namespace tpu;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

const LineStore& ten_million_lines() {
    static const LineStore lines = [] {
        std::string text;
        for (int i = 0; i < 10'000'000; ++i) text += "line " + std::to_string(i) + "\n";
        return LineStore::from_text(text);
    }();
    return lines;
}

class RandomPlaces {
  public:
    std::uint64_t row(const LineStore& lines) { return random_() % (lines.size() - 1); }
    std::uint64_t offset(const LineStore& lines) {
        std::uint64_t at = row(lines);
        return lines.offset({at, random_() % (lines.length(at) + 1)});
    }

  private:
    std::mt19937_64 random_{1};
};

void snapshot(benchmark::State& state) {
    const LineStore& lines = ten_million_lines();
    for (auto _ : state) {
        LineStore copy = lines;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(snapshot);

void compare_unchanged_copy(benchmark::State& state) {
    const LineStore& lines = ten_million_lines();
    LineStore copy = lines;
    for (auto _ : state) benchmark::DoNotOptimize(copy == lines);
}
BENCHMARK(compare_unchanged_copy);

// The bytes are the same again, but the nodes above them were made anew.
void compare_after_change_and_back(benchmark::State& state) {
    const LineStore& lines = ten_million_lines();
    LineStore copy = lines;
    copy.insert(copy.bytes() / 2, "x");
    copy.erase(lines.bytes() / 2, lines.bytes() / 2 + 1);
    for (auto _ : state) benchmark::DoNotOptimize(copy == lines);
}
BENCHMARK(compare_after_change_and_back);

void read_line(benchmark::State& state) {
    const LineStore& lines = ten_million_lines();
    RandomPlaces places;
    for (auto _ : state) benchmark::DoNotOptimize(lines[places.row(lines)]);
}
BENCHMARK(read_line);

void insert_byte(LineStore& lines, RandomPlaces& places) {
    lines.insert(places.offset(lines), "x");
}

void erase_byte(LineStore& lines, RandomPlaces& places) {
    std::uint64_t row = places.row(lines);
    std::uint64_t offset = lines.row_start(row);
    if (lines.length(row) > 0) lines.erase(offset, offset + 1);
}

void split_line(LineStore& lines, RandomPlaces& places) {
    lines.insert_break(places.offset(lines));
}

void join_lines(LineStore& lines, RandomPlaces& places) {
    std::uint64_t end_of_line = lines.row_start(places.row(lines) + 1) - 1;
    lines.erase(end_of_line, end_of_line + 1);
}

// A snapshot, then a change; as many snapshots are kept as for undo.
void change(benchmark::State& state, void (*edit)(LineStore&, RandomPlaces&)) {
    LineStore lines = ten_million_lines();
    std::array<LineStore, 200> snapshots;
    std::size_t next = 0;
    RandomPlaces places;
    for (auto _ : state) {
        snapshots[next++ % snapshots.size()] = lines;
        edit(lines, places);
    }
}
BENCHMARK_CAPTURE(change, insert_byte, insert_byte);
BENCHMARK_CAPTURE(change, erase_byte, erase_byte);
BENCHMARK_CAPTURE(change, split_line, split_line);
BENCHMARK_CAPTURE(change, join_lines, join_lines);

double seconds_of(auto&& work) {
    Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Finds an absent word by turns in the store and, with memmem, in the same bytes in
// one piece. "ratio" is the time of the store in times of memmem.
void find_in_turns(benchmark::State& state, const LineStore& lines, std::string_view bytes) {
    constexpr std::string_view kAbsent = "unfindable";
    double ours = 0, plain = 0;
    for (auto _ : state) {
        double pass = seconds_of([&] { benchmark::DoNotOptimize(lines.find(kAbsent, 0)); });
        state.SetIterationTime(pass);
        ours += pass;
        plain += seconds_of([&] {
            benchmark::DoNotOptimize(
                memmem(bytes.data(), bytes.size(), kAbsent.data(), kAbsent.size()));
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
    state.counters["memmem_ms"] = plain / static_cast<double>(state.iterations()) * 1e3;
    state.counters["ratio"] = ours / plain;
}

Ref<TextBlock> log_of(std::size_t bytes) {
    Ref<TextBlock> block = TextBlock::create(bytes);
    for (unsigned i = 0; block && block->room() > 0; ++i) {
        std::string line = std::to_string(1'700'000'000 + i) + " host unit[" +
                           std::to_string(i % 977) + "]: request " + std::to_string(i * 7919) +
                           " was finished in due time\n";
        block->append(line.substr(0, block->room()));
    }
    return block;
}

void find_absent_word(benchmark::State& state) {
    std::size_t bytes = static_cast<std::size_t>(state.range(0)) * kMegabyte;
    Ref<TextBlock> block = log_of(bytes);
    if (!block) return state.SkipWithError("not enough memory");
    find_in_turns(state, LineStore::from_block(block, bytes), {block->data(), bytes});
}

void find_absent_word_after_edits(benchmark::State& state) {
    std::size_t bytes = static_cast<std::size_t>(state.range(0)) * kMegabyte;
    Ref<TextBlock> block = log_of(bytes);
    if (!block) return state.SkipWithError("not enough memory");
    LineStore lines = LineStore::from_block(block, bytes);
    RandomPlaces places;
    for (int i = 0; i < 10'000; ++i) insert_byte(lines, places);
    std::string flat = lines.text(0, lines.bytes());
    find_in_turns(state, lines, flat);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    const char* gigabyte = std::getenv("TPU_BENCH_GB");
    benchmark->ArgName("mb")->Arg(256)->UseManualTime()->Unit(benchmark::kMillisecond);
    if (gigabyte && *gigabyte == '1') benchmark->Arg(1024);
}
BENCHMARK(find_absent_word)->Apply(sizes);
BENCHMARK(find_absent_word_after_edits)->Apply(sizes);

}  // namespace
