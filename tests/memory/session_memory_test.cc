// A person's session goes on, whichever allocations fail: each key has all of its effect or
// none, and nothing is lost.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>

#include "app/curses/key_decoder.h"
#include "app/this_system.h"
#include "commands/vocabulary.h"
#include "editor/recovery.h"
#include "memory/failing_allocations.h"
#include "store/buffer_file.h"
#include "support/session.h"
#include "unit/store/temp_folder.h"

namespace tpu {
namespace {

using Keys = std::vector<int>;
using Lost = std::set<std::size_t>;  // places of keys that are to have no effect

constexpr const char* kText = "one\ntwo\tzwei\nthree\n";
constexpr const char* kPasted = "pasted text, long enough\nfor more than one line\n";
constexpr const char* kKeys =
    "ab<END>!<RETURN><TAB>x<GOLD>U\x1f<GOLD>Uy<CTRL_O><CTRL_N><UP>z<CTRL_V><DOWN><CTRL_W><CTRL_Y>"
    "<F2><CTRL_Z>buffer MAIN<RETURN><CTRL_F>hre<RETURN>Q<CTRL_S>"
    "<CTRL_Z>replace t TTTTTTTT all<RETURN><GOLD>U<GOLD>R<DELETE><CTRL_Z>SHIFT(3)<RETURN>end";

// Gives the keys of a script but for the lost ones, and sees which have failed.
class ScriptedTerminal : public FakeTerminal {
  public:
    ScriptedTerminal(const Lost& without, bool& begun) : begun_(begun) {
        Keys all = key_codes(kKeys);
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (!without.contains(i)) script_.emplace_back(i, all[i]);
        }
    }

    Event read(int, const Awaited&) override {
        failing::Pause pause;
        begun_ = true;
        bool outermost = !editor->undo_step;
        if (outermost) note_failure(false);
        if (next_ == script_.size()) {
            failing::none();  // there is memory again
            return {Event::Kind::hang_up};
        }
        auto [place, key] = script_[next_++];
        last_ = place;
        if (outermost && !follows_gold_) first_ = place;
        if (outermost) follows_gold_ = key == kGold;
        return key == 0x1f ? Event{Event::Kind::paste, kNoKey, kPasted} : Event::of_key(key);
    }
    bool key_waiting() override {
        failing::Pause pause;
        if (!editor->undo_step) note_failure(true);
        return false;
    }
    void present(const Frame& frame) override {
        failing::Pause pause;
        FakeTerminal::present(frame);
    }
    void beep() override {
        failing::Pause pause;
        lost.insert(last_);
    }
    void note_failure(bool of_key) {
        if (!editor->message.starts_with("Out of memory")) return;
        editor->message.clear();
        follows_gold_ = follows_gold_ && !of_key;  // one that failed is not waited for
        for (std::size_t i = first_; of_key && i <= last_; ++i) lost.insert(i);
    }

    TPUEditor* editor = nullptr;
    Lost lost;

  private:
    static constexpr int kGold = kKeyF0 + 1;

    bool& begun_;  // a key was waited for
    std::vector<std::pair<std::size_t, int>> script_;
    std::size_t next_ = 0, last_ = 0;
    std::size_t first_ = 0;  // since when what the last key belongs to has been under way
    bool follows_gold_ = false;
};

struct Outcome {
    std::string text, saved, recovered, replayed;
    Position cursor{0, 0};
    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << "text:\n"
         << outcome.text << "\nsaved:\n"
         << outcome.saved << "\nrecovered:\n"
         << outcome.recovered << "\nreplayed:\n"
         << outcome.replayed << "\ncursor: " << outcome.cursor.row << ',' << outcome.cursor.column;
}

struct Work {
    // Types the script; what `fail` makes fail does so from the begin of the session on.
    template <class Fail>
    Outcome type(const Lost& without, Fail fail) {
        failing::none();
        TempFolder folder;
        const std::string state = folder.path("state"), file = folder.write("file.txt", kText),
                          journal = folder.path("journal");
        Outcome outcome;
        {
            ScriptedTerminal terminal(without, begun);
            FakeClock clock;
            ThisSystem system;
            clock.step = std::chrono::milliseconds(150);
            struct Enough {
                ~Enough() { failing::none(); }
            } afterwards;
            fail();
            TPUEditor editor({terminal, clock, system}, vocabulary());
            terminal.editor = &editor;
            editor.charset = Charset::utf8;
            Buffer* main = editor.create_buffer("MAIN", "");
            if (!edit_file(*main, file).empty()) throw std::bad_alloc();
            editor.init_screen();
            editor.recovery = std::make_unique<Recovery>(editor, state);
            {
                failing::Pause pause;
                editor.parser.execute_statement("JOURNAL_OPEN(\"" + journal + "\")");
            }
            editor.run();
            failed = failing::any();
            failing::none();
            main->text().check_invariants();
            outcome.text = main->text().text();
            outcome.cursor = {main->cursor_row, main->cursor_column};
            while (main->undo()) main->text().check_invariants();
            undone = main->text().text();
            lost = terminal.lost;
        }
        outcome.saved = folder.read("file.txt");
        outcome.recovered = brought_back(state, file, "RECOVER_BUFFER");
        folder.write("file.txt", kText);
        outcome.replayed =
            brought_back(folder.path("other"), file, "RECOVER_BUFFER(\"" + journal + "\")");
        return outcome;
    }
    // What the next session brings back.
    static std::string brought_back(const std::string& state, const std::string& file,
                                    const std::string& how) {
        Session next;
        next.editor.recovery = std::make_unique<Recovery>(next.editor, state);
        EXPECT_EQ(edit_file(*next.buffer, file), "");
        next.editor.execute_command(how);
        return next.buffer->text().text();
    }

    bool begun = false, failed = false;
    std::string undone;  // the text after undoing all
    Lost lost;
};

// What comes of the script without some of its keys while there is memory enough.
const Outcome& expected(const Lost& without) {
    static std::map<Lost, Outcome> known;
    auto [place, fresh] = known.try_emplace(without);
    if (fresh) place->second = Work().type(without, [] {});
    return place->second;
}

// True when something has failed. While nothing can be found the cursor may be elsewhere.
template <class Fail>
bool survives(Fail fail, bool once = false) {
    Work work;
    Outcome outcome;
    try {
        outcome = work.type({}, fail);
    } catch (const std::bad_alloc&) {
        EXPECT_FALSE(work.begun) << "the session has ended";
        return true;
    }
    if (!once) outcome.cursor = expected(work.lost).cursor;
    EXPECT_EQ(outcome, expected(work.lost)) << testing::PrintToString(work.lost);
    EXPECT_EQ(work.undone, LineStore::from_text("one\ntwo\tzwei\nthree").text());
    return work.failed;
}

unsigned long step() {
    const char* wanted = std::getenv("TPU_MEMORY_STEP");
    return wanted ? std::strtoul(wanted, nullptr, 10) : 17;
}

TEST(ShortMemory, of_one_allocation_costs_a_session_one_key_at_most) {
    ASSERT_EQ(expected({}).recovered, expected({}).text);
    ASSERT_EQ(expected({}).replayed, expected({}).text);
    ASSERT_NE(expected({}).saved, kText);
    unsigned long n = 1;
    for (; !testing::Test::HasFailure(); n += step()) {
        SCOPED_TRACE(n);
        if (!survives([n] { failing::nth(n); }, true)) break;
    }
    EXPECT_GT(n, 1000u);
}

TEST(ShortMemory, for_a_while_costs_a_session_the_keys_of_that_while) {
    for (unsigned long count : {7, 60, 500}) {
        for (unsigned long n = 1; !testing::Test::HasFailure(); n += 3 * step()) {
            SCOPED_TRACE(std::to_string(n) + " and " + std::to_string(count));
            if (!survives([=] { failing::nth(n, count); })) break;
        }
    }
}

TEST(ShortMemory, for_large_blocks_leaves_a_session_its_small_ones) {
    for (std::size_t most = 200; most < 200'000 && !testing::Test::HasFailure(); most += most / 4) {
        SCOPED_TRACE(most);
        survives([most] { failing::above(most); });
    }
}

TEST(ShortMemory, for_a_paste_drops_it_and_not_the_keys_behind_it) {
    KeyDecoder decoder;
    std::string pasted(KeyDecoder::kRoom, 'p');
    failing::above(4 * KeyDecoder::kRoom);
    decoder.feed("a\033[200~");
    EXPECT_EQ(decoder.next().key, 'a');
    EXPECT_EQ(decoder.next().kind, Event::Kind::none);
    for (int i = 0; i < 20; ++i) decoder.feed(pasted);
    decoder.feed("\033[20");
    decoder.feed("1~b");
    EXPECT_EQ(decoder.next().kind, Event::Kind::lost);
    EXPECT_EQ(decoder.next().key, 'b');
    failing::none();
    decoder.feed("\033[200~short\033[201~");
    EXPECT_EQ(decoder.next().text, "short");
}

}  // namespace
}  // namespace tpu
