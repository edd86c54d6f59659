// Editors that are killed while they work: a journal loses at most the statement that
// was running. TPU_CRASHES is the number of crashes, see script/stress.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <random>
#include <thread>

#include "store/journal.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

// A counter that outlives a child process which counts with it.
class SharedCounter {
  public:
    SharedCounter()
        : place_(mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
          count_(new (place_) std::atomic<int>(0)) {}
    ~SharedCounter() { munmap(place_, sizeof(std::atomic<int>)); }
    SharedCounter(const SharedCounter&) = delete;
    SharedCounter& operator=(const SharedCounter&) = delete;
    std::atomic<int>& operator*() { return *count_; }

  private:
    void* place_;
    std::atomic<int>* count_;
};

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

[[noreturn]] void edit_until_killed(const std::string& journal, bool binary, unsigned seed,
                                    std::atomic<int>& done) {
    Session s(kStart);
    std::string note;
    if (!tpu_journal_open(*s.buffer, journal, binary, note)) _exit(1);
    for (Edits edits(seed);; ++done) s.editor.parser.compile_text(edits.next());
}

// Lets an editor work for a while and kills it; how many statements it has finished.
int crash(const std::string& journal, bool binary, unsigned seed, std::chrono::microseconds time) {
    SharedCounter done;
    pid_t child = fork();
    if (child == 0) edit_until_killed(journal, binary, seed, *done);
    while (*done == 0 && waitpid(child, nullptr, WNOHANG) == 0) std::this_thread::yield();
    std::this_thread::sleep_for(time);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return *done;
}

TEST(Crashes, lose_at_most_the_statement_that_was_running) {
    const char* wanted = std::getenv("TPU_CRASHES");
    const int crashes = wanted ? std::atoi(wanted) : 6;
    std::mt19937 random(std::random_device{}());
    for (int i = 0; i < crashes; ++i) {
        TempFolder folder;
        const auto seed = static_cast<unsigned>(random());
        const bool binary = i % 2 == 0;
        SCOPED_TRACE("seed " + std::to_string(seed) + (binary ? " binary" : " text"));
        const int done =
            crash(folder.path("j"), binary, seed, std::chrono::microseconds(random() % 20'000));
        Session recovered(kStart), expected(kStart);
        ASSERT_TRUE(tpu_journal_recover(recovered.editor.parser, folder.path("j")));
        const int replayed = std::atoi(recovered.editor.message.c_str());
        EXPECT_GE(replayed, done);
        EXPECT_LE(replayed, done + 1);
        Edits edits(seed);
        for (int n = 0; n < replayed; ++n) expected.editor.parser.compile_text(edits.next());
        EXPECT_EQ(recovered.lines(), expected.lines());
        EXPECT_EQ(recovered.cursor(), expected.cursor());
    }
}

}  // namespace
}  // namespace tpu
