// Editors that are killed while they work: a journal loses at most the statement that was
// running, and unsaved work nothing of what was kept. TPU_CRASHES is the number of crashes,
// see script/stress.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <random>
#include <thread>

#include "editor/journal_replay.h"
#include "editor/recovery.h"
#include "os/file_io.h"
#include "os/system_calls.h"
#include "store/journal.h"
#include "store/saved_text.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

Failure why;

// An object that a child process shares, and that outlives it.
template <class T>
class Shared {
  public:
    Shared()
        : object_(new (mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                            -1, 0)) T()) {}
    ~Shared() { munmap(object_, sizeof(T)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    T& operator*() { return *object_; }
    T* operator->() { return object_; }

  private:
    T* object_;
};

// Runs work(count) in a child process, kills it some time after it has counted, and waits.
template <class Work>
void crash(std::atomic<int>& count, std::chrono::microseconds time, Work work) {
    pid_t child = fork();
    if (child == 0) {
        work();
        _exit(1);
    }
    while (count == 0 && waitpid(child, nullptr, WNOHANG) == 0) std::this_thread::yield();
    std::this_thread::sleep_for(time);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

int wanted_crashes() {
    const char* wanted = std::getenv("TPU_CRASHES");
    return wanted ? std::atoi(wanted) : 6;
}

// The same edits for the same seed.
class Edits {
  public:
    explicit Edits(unsigned seed) : random_(seed) {}
    std::string next() {
        const std::string n = std::to_string(random_() % 7);
        switch (random_() % 8) {
            case 0: return "SPLIT_LINE";
            case 1: return "MOVE_VERTICAL(3 - " + n + ")";
            case 2: return "MOVE_HORIZONTAL(3 - " + n + ")";
            case 3: return "ERASE_CHARACTER(" + n + ")";
            case 4: return "UNDO";
            case 5: return "IF SEARCH_QUIETLY(\"" + n + "\") THEN; ERASE_LINE; ENDIF";
            case 6: return "total := total + " + n;
            default: return "COPY_TEXT(\"text\n" + n + "\" & STR(total))";
        }
    }

  private:
    std::mt19937 random_;
};

const std::vector<std::string> kStart{"one", "two 3", "", "four"};

void edit_for_ever(const std::string& journal, bool binary, unsigned seed, std::atomic<int>& done) {
    Session s(kStart);
    std::string note;
    if (!tpu_journal_open(*s.buffer, journal, binary, note, why)) return;
    for (Edits edits(seed);; ++done) s.editor.parser.compile_text(edits.next());
}

TEST(Crashes, lose_at_most_the_statement_that_was_running) {
    const int crashes = wanted_crashes();
    std::mt19937 random(std::random_device{}());
    for (int i = 0; i < crashes; ++i) {
        TempFolder folder;
        const auto seed = static_cast<unsigned>(random());
        const bool binary = i % 2 == 0;
        SCOPED_TRACE("seed " + std::to_string(seed) + (binary ? " binary" : " text"));
        Shared<std::atomic<int>> done;
        crash(*done, std::chrono::microseconds(random() % 20'000),
              [&] { edit_for_ever(folder.path("j"), binary, seed, *done); });
        Session recovered(kStart), expected(kStart);
        ASSERT_TRUE(replay_journal(recovered.editor, folder.path("j"), why));
        const int replayed = std::atoi(recovered.editor.message.c_str());
        EXPECT_GE(replayed, *done);
        EXPECT_LE(replayed, *done + 1);
        Edits edits(seed);
        for (int n = 0; n < replayed; ++n) expected.editor.parser.compile_text(edits.next());
        EXPECT_EQ(recovered.lines(), expected.lines());
        EXPECT_EQ(recovered.cursor(), expected.cursor());
    }
}

int calls_left = 0;
bool half_a_write = false;

int kill_after_calls(sys::Call call) {
    if (--calls_left > 0) return 0;
    if (half_a_write && calls_left == 0) return call == sys::Call::write ? sys::kHalf : 0;
    raise(SIGKILL);
    return 0;
}

TEST(Crashes, at_any_call_leave_a_journal_without_a_hole) {
    const std::string text = "abcdef";
    for (bool binary : {false, true}) {
        for (bool half : {false, true}) {
            bool finished = false;
            for (int call = 1; !finished; ++call) {
                SCOPED_TRACE(call);
                TempFolder folder;
                const std::string journal = folder.path("j");
                const pid_t child = fork();
                if (child == 0) {
                    Session s;
                    calls_left = call;
                    half_a_write = half;
                    sys::set_fault(kill_after_calls);
                    std::string note;
                    if (!tpu_journal_open(*s.buffer, journal, binary, note, why)) _exit(1);
                    for (char c : text) {
                        s.editor.parser.execute_statement(std::string("COPY_TEXT(\"") + c + "\")");
                    }
                    _exit(0);
                }
                int status = 0;
                waitpid(child, &status, 0);
                finished = WIFEXITED(status) && WEXITSTATUS(status) == 0;
                Session s;
                replay_journal(s.editor, journal, why);
                const std::string replayed = s.buffer->text().text();
                EXPECT_TRUE(text.starts_with(replayed)) << replayed;
                EXPECT_TRUE(!finished || replayed == text);
                ASSERT_LT(call, 1000);
            }
        }
    }
}

// A text without what saving and loading it, once or several times, may take away.
std::string without_line_ends(const LineStore& text) {
    LineStore loaded = text;
    for (LineStore next; (next = as_loaded(loaded)) != loaded;) loaded = next;
    return loaded.text();
}

// What the buffers of two files held when unsaved work was kept last, and what they are to
// hold when it is kept next.
struct Expected {
    struct Texts {
        std::array<char, 1 << 16> text[2];
        std::size_t size[2] = {0, 0};
    };
    Texts texts[2];
    std::atomic<int> kept = 0;  // how often
    std::atomic<bool> keeping = false;

    void note(const Session& session, const std::string (&files)[2]) {
        Texts& next = texts[(kept + 1) % 2];
        for (std::size_t i = 0; i < 2; ++i) {
            for (const auto& buffer : session.editor.buffers) {
                if (buffer->file_name != files[i]) continue;
                const std::string text = without_line_ends(buffer->text());
                if (text.size() > next.text[i].size()) _exit(1);
                next.size[i] = text.copy(next.text[i].data(), text.size());
            }
        }
    }
    bool may_be(std::size_t file, const std::string& text) const {
        auto is = [&](const Texts& t) {
            return text == std::string_view(t.text[file].data(), t.size[file]);
        };
        return is(texts[kept % 2]) || (keeping && is(texts[(kept + 1) % 2]));
    }
};

void random_step(Session& s, std::mt19937& random, const std::string (&files)[2]) {
    const char* keys[] = {"a",        "\xe4\xb8\xad", "<RETURN>", "<TAB>",    "<DELETE>",
                          "<INSERT>", "<BACKSPACE>",  "<END>",    "word ",    "<GOLD>U",
                          "<GOLD>R",  "<CTRL_V>",     "<CTRL_W>", "<CTRL_Y>", "<DOWN>",
                          "<UP>",     "<END><RETURN>"};
    const std::string commands[] = {"WRITE",
                                    "WRITE",
                                    "GET " + files[0],
                                    "GET " + files[1],
                                    "RELOAD",
                                    "UNDO",
                                    "REDO",
                                    "COPY_TEXT(FAO(\"!%C!/end\", 13))",
                                    "p := CREATE_PROCESS(\"printf 'out\\r\\nput'\")",
                                    "REPLACE word other ALL",
                                    "ERASE_LINE"};
    if (random() % 4 == 0) {
        s.editor.execute_command(commands[random() % std::size(commands)]);
    } else {
        for (int n = 0; n < 5; ++n) s.press(keys[random() % std::size(keys)]);
    }
    if (!s.editor.processes.running.empty())
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    s.editor.processes.poll();
    Buffer& buffer = *s.editor.current_buffer;
    if (buffer.text().bytes() > 20'000) buffer.replace_text(0, 10'000, {});
}

void work_for_ever(const std::string& state, const std::string (&files)[2], unsigned seed,
                   Expected& expected) {
    Session s;
    s.editor.recovery = std::make_unique<Recovery>(s.editor, state);
    for (const std::string& file : files) s.editor.execute_command("GET " + file);
    expected.note(s, files);
    expected.kept = 1;
    for (std::mt19937 random(seed);;) {
        random_step(s, random, files);
        expected.note(s, files);
        expected.keeping = true;
        s.editor.recovery->write();
        ++expected.kept;
        expected.keeping = false;
        while (s.editor.recovery->serve() == std::chrono::milliseconds(0)) {
        }
    }
}

// A process that was just being started holds what its parent had locked a moment longer.
void wait_for_locks(const std::string& state) {
    if (!std::filesystem::exists(state)) return;
    for (const auto& entry : std::filesystem::directory_iterator(state)) {
        Descriptor file = open_file(entry.path().string(), O_RDONLY);
        flock(file.get(), LOCK_EX);
    }
}

TEST(Crashes, leave_unsaved_work_as_it_was) {
    std::mt19937 random(std::random_device{}());
    for (int i = wanted_crashes(); i > 0; --i) {
        TempFolder folder;
        const auto seed = static_cast<unsigned>(random());
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::string state = folder.path("state");
        const std::string files[] = {folder.write("one", "one\r\ntwo\r\n\r\n"),
                                     folder.write("two", "some word or other\n\n")};
        Shared<Expected> expected;
        crash(expected->kept, std::chrono::microseconds(random() % 60'000),
              [&] { work_for_ever(state, files, seed, *expected); });
        wait_for_locks(state);
        for (std::size_t file = 0; file < 2; ++file) {
            Session next;
            next.editor.recovery = std::make_unique<Recovery>(next.editor, state);
            next.editor.execute_command("GET " + files[file]);
            Buffer* loaded = next.editor.current_buffer;
            if (!next.editor.recovery->greeting(*loaded).empty()) {
                next.editor.execute_command("RECOVER_BUFFER");
            }
            const std::string text = without_line_ends(next.editor.current_buffer->text());
            EXPECT_TRUE(expected->may_be(file, text)) << next.editor.message << '\n' << text;
            next.editor.recovery->discard();
        }
    }
}

}  // namespace
}  // namespace tpu
