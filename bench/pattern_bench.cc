// Pattern searches that find nothing, in a text that invites repeated work.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "buffer/buffer.h"
#include "pattern/pattern.h"
#include "pattern/search.h"

namespace {

using tpu::Buffer;
using tpu::TPUPattern;
using tpu::TPUPatternToken;

constexpr std::size_t kBytes = std::size_t{64} << 20;

// Lines of 59 letters "a" and a blank; neither "x" nor "y" occurs.
Buffer& sample() {
    static Buffer buffer("SAMPLE", "");
    static bool filled = [] {
        std::string line = std::string(59, 'a') + " \n", text;
        while (text.size() < kBytes) text += line;
        buffer.set_text(tpu::LineStore::from_text(text));
        return true;
    }();
    benchmark::DoNotOptimize(filled);
    return buffer;
}

TPUPatternToken token(TPUPatternToken::Kind kind, const char* text) {
    return {kind, text, 0, 0};
}

void search(benchmark::State& state, const TPUPattern& pattern) {
    Buffer& buffer = sample();
    for (auto _ : state) {
        buffer.beginning_of_buffer();
        benchmark::DoNotOptimize(search_pattern_forward(buffer, pattern, false, false));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * buffer.text().bytes()));
}

using Token = TPUPatternToken;
BENCHMARK_CAPTURE(search, scan_of_an_absent_byte, TPUPattern{{token(Token::kScan, "x")}, false});
BENCHMARK_CAPTURE(search, scan_of_an_absent_set, TPUPattern{{token(Token::kScan, "xyz")}, false});
BENCHMARK_CAPTURE(search, span_run_then_absent_literal,
                  TPUPattern{{token(Token::kSpan, "a"), token(Token::kLiteral, "x")}, false});
BENCHMARK_CAPTURE(search, optional_run_then_absent_byte,
                  TPUPattern{{token(Token::kSpanL, "a"), token(Token::kAny, "x")}, false});
BENCHMARK_CAPTURE(search, rest_of_line_then_absent_literal,
                  TPUPattern{{token(Token::kRemain, ""), token(Token::kLiteral, "\nx")}, false});
BENCHMARK_CAPTURE(search, absent_literal_first,
                  TPUPattern{{token(Token::kLiteral, "xyz"), token(Token::kSpan, "a")}, false});

void plain_memmem(benchmark::State& state) {
    std::string text = sample().text().text(0, sample().text().bytes());
    for (auto _ : state) benchmark::DoNotOptimize(memmem(text.data(), text.size(), "xyz", 3));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(plain_memmem);

}  // namespace
