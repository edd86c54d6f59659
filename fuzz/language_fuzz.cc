// Any bytes as a source text of the language, in a session of their own.
//
// Programs may loop and call without end. Ctrl-C, which is pressed after a while, ends
// them; memory and text have limits that make a mistake in bounding them show.
#include <sanitizer/allocator_interface.h>

#include <cassert>
#include <cstdint>

#include "app/no_terminal.h"
#include "app/this_system.h"
#include "commands/vocabulary.h"
#include "editor/editor.h"
#include "outside.h"
#include "value/array.h"

namespace tpu::fuzz {

namespace {

constexpr std::size_t kLongestSource = 4096;
constexpr std::size_t kLongestText = std::size_t{16} << 10;
constexpr std::size_t kMostMemory = std::size_t{64} << 20;
constexpr std::chrono::milliseconds kLongestRun{200};
constexpr int kMostLooks = 2;  // at the keyboard, each after 256 steps of the program

// Nobody sits before it but one who loses patience.
class ImpatientTerminal : public NoTerminal {
  public:
    std::string start() override { return {}; }
    ScreenSize size() override { return {8, 30}; }
    bool interrupt_waiting() override {
        return ++looks_ > kMostLooks ||
               __sanitizer_get_current_allocated_bytes() > allocated_ + kMostMemory ||
               std::chrono::steady_clock::now() - start_ > kLongestRun;
    }

  private:
    int looks_ = 0;
    std::size_t allocated_ = __sanitizer_get_current_allocated_bytes();
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Time passes whenever somebody looks.
class HastyClock : public Clock {
  public:
    time_point now() override { return time_ += std::chrono::seconds(1); }
    void sleep(std::chrono::milliseconds time) override { time_ += time; }

  private:
    time_point time_;
};

void check(TPUEditor& editor) {
    editor.draw();
    for (const auto& buffer : editor.buffers) {
        buffer->text().check_invariants();
        while (buffer->undo()) {
        }
        buffer->text().check_invariants();
    }
    assert(editor.parser.block_depth == 0 && editor.parser.symbols.depth() == 0);
    assert(!editor.parser.interrupted && editor.parser.control_signal == Signal::none);
}

// Arrays that hold each other would stay for ever.
void part_arrays() {
    for (const auto& array : tpu_array_list()) {
        array->for_each([](const ArrayKey&, Value& value) { value = Value::make_int(0); });
    }
    tpu_array_prune();
}

void run(const std::string& source) {
    ImpatientTerminal terminal;
    HastyClock clock;
    ThisSystem system;
    NoOutside outside;
    {
        TPUEditor editor({terminal, clock, system}, vocabulary());
        editor.charset = Charset::utf8;
        editor.parser.longest_text = kLongestText;
        Buffer* buffer = editor.create_buffer("MAIN", "");
        buffer->set_text(
            LineStore::from_text("one two three\n\n\tGr\xc3\xbc\xc3\x9f\x65 \xff\nend"));
        editor.init_screen();
        editor.parser.compile_text(source);
        check(editor);
    }
    part_arrays();
}

}  // namespace

}  // namespace tpu::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // What the fuzzer is to write to has an absolute path: see script/fuzz.
    tpu::fuzz::enter_scratch_folder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > tpu::fuzz::kLongestSource) return -1;
    tpu::fuzz::run({reinterpret_cast<const char*>(data), size});
    return 0;
}
