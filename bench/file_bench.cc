// Loading beside reading the same bytes into memory, saving beside copying the file
// with a sync. Files are generated in the temporary folder.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "buffer/buffer.h"
#include "store/buffer_file.h"

namespace {

namespace fs = std::filesystem;

// A log of 60-byte lines, removed at the end of the program.
class Sample {
  public:
    explicit Sample(std::size_t bytes) : size_(bytes) {
        path_ = fs::temp_directory_path() /
                ("tpu-bench-" + std::to_string(getpid()) + "-" + std::to_string(bytes));
        std::ofstream out(path_, std::ios::binary);
        const std::string tail = " host program[12345]: a line of a log that is long";
        for (std::size_t i = 0; i < bytes / 60; ++i) {
            std::string number = std::to_string(100'000'000 + i);
            out << number << tail.substr(0, 50) << '\n';
        }
    }
    ~Sample() {
        std::error_code ignored;
        for (const char* ending : {"", ".bak", ".copy"}) fs::remove(path_ + ending, ignored);
    }
    const std::string& path() const { return path_; }
    std::int64_t size() const { return static_cast<std::int64_t>(size_); }

  private:
    std::size_t size_;
    std::string path_;
};

const Sample& sample(std::int64_t megabytes) {
    static const Sample small(100'000'000);
    if (megabytes == 100) return small;
    static const Sample large(1'000'000'000);
    return large;
}

void sizes(benchmark::internal::Benchmark* row) {
    row->Unit(benchmark::kMillisecond)->ArgName("MB")->Arg(100);
    if (std::getenv("TPU_BENCH_GB")) row->Arg(1000);
}

void load(benchmark::State& state) {
    const Sample& file = sample(state.range(0));
    for (auto _ : state) {
        tpu::Buffer buffer("B", "");
        if (!load_file(buffer, file.path())) state.SkipWithError("cannot load");
    }
    state.SetBytesProcessed(file.size() * static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(load)->Apply(sizes);

// Until the text can be shown; copying it comes after that.
void load_in_steps(benchmark::State& state) {
    const Sample& file = sample(state.range(0));
    for (auto _ : state) {
        tpu::Buffer buffer("B", "");
        if (!load_file(buffer, file.path(), tpu::Loading::in_steps)) {
            state.SkipWithError("cannot load");
        }
    }
    state.SetBytesProcessed(file.size() * static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(load_in_steps)->Apply(sizes);

void read_into_memory(benchmark::State& state) {
    const Sample& file = sample(state.range(0));
    for (auto _ : state) {
        auto size = static_cast<std::size_t>(file.size());
        std::unique_ptr<char[]> memory(new char[size]);
        int fd = open(file.path().c_str(), O_RDONLY);
        for (ssize_t got = 1, at = 0; got > 0; at += got) {
            got = read(fd, memory.get() + at, size - static_cast<std::size_t>(at));
        }
        close(fd);
        benchmark::DoNotOptimize(memory[size / 2]);
    }
    state.SetBytesProcessed(file.size() * static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(read_into_memory)->Apply(sizes);

void save_with_backup(benchmark::State& state) {
    const Sample& file = sample(state.range(0));
    tpu::Buffer buffer("B", "");
    if (!load_file(buffer, file.path())) state.SkipWithError("cannot load");
    for (auto _ : state) {
        if (!write_file(buffer, "")) state.SkipWithError("cannot save");
    }
}
BENCHMARK(save_with_backup)->Unit(benchmark::kMillisecond)->ArgName("MB")->Arg(100)->UseRealTime();

void copy_and_sync(benchmark::State& state) {
    const std::string& path = sample(state.range(0)).path();
    const std::string command = "cp " + path + " " + path + ".copy && sync " + path + ".copy";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) state.SkipWithError("cannot copy");
    }
}
BENCHMARK(copy_and_sync)->Unit(benchmark::kMillisecond)->ArgName("MB")->Arg(100)->UseRealTime();

}  // namespace
