#include "editor/journal_follower.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "editor/editor.h"
#include "lang/stmt_text.h"
#include "os/short_memory.h"
#include "store/journal.h"
#include "store/text_changes.h"
#include "text/characters.h"
#include "text/differences.h"

namespace tpu {

namespace {

constexpr std::size_t kMostKeys = 32;                         // gathered at once
constexpr std::uint64_t kMostTyped = std::uint64_t{1} << 20;  // bytes of one statement

struct Mode {
    bool Buffer::*flag;
    const char* on;
    const char* off;
};

// What decides how typed and copied text goes in, how searches and motions go.
constexpr Mode kModes[] = {
    {&Buffer::insert_mode, "SET(INSERT)", "SET(OVERSTRIKE)"},
    {&Buffer::auto_wrap, "SET(WRAP)", "SET(NO_WRAP)"},
    {&Buffer::reverse, "SET(REVERSE)", "SET(FORWARD)"},
    {&Buffer::free_cursor, "SET(FREE_CURSOR, ON)", "SET(FREE_CURSOR, OFF)"},
};
enum : std::size_t { kInsert, kWrap, kReverse, kFree };

struct Margin {
    std::uint64_t Buffer::*column;
    const char* name;
};

constexpr Margin kMargins[] = {
    {&Buffer::left_margin, "LEFT_MARGIN"},
    {&Buffer::right_margin, "RIGHT_MARGIN"},
};

int difference(std::uint64_t from, std::uint64_t to) {
    constexpr std::uint64_t kMost = std::numeric_limits<int>::max();
    return to >= from ? static_cast<int>(std::min(to - from, kMost))
                      : -static_cast<int>(std::min(from - to, kMost));
}

std::string call(std::string_view name, int n) {
    return std::string(name).append("(").append(std::to_string(n)).append(")");
}

}  // namespace

JournalFollower::State JournalFollower::state_of(const Buffer& buffer) {
    State state;
    state.text = buffer.text();
    state.version = buffer.changes().version();
    state.cursor = {buffer.cursor_row, buffer.cursor_column};
    if (buffer.select_anchor) state.anchor = buffer.select_anchor->position();
    for (std::size_t i = 0; i < std::size(kModes); ++i) state.modes[i] = buffer.*kModes[i].flag;
    for (std::size_t i = 0; i < std::size(kMargins); ++i) {
        state.margins[i] = buffer.*kMargins[i].column;
    }
    return state;
}

// Statements that lead from one state towards another.
class JournalFollower::Way {
  public:
    Way(const State& from, const Buffer& buffer)
        : at(from), to_(state_of(buffer)), changes_(buffer.changes().since(from.version)) {
        found_ = differences(at.text, to_.text, changes_);
        if (found_.empty()) reach_text();
    }

    // All that differs is what was typed, or where the cursor stands.
    bool can_wait() const {
        if (at.modes != to_.modes || at.margins != to_.margins || at.anchor != to_.anchor)
            return false;
        return found_.empty() || is_typing();
    }

    // Modes, selection and cursor as they were may matter to how a text goes in, so it is first.
    void add_text() {
        if (is_copied()) {
            add_move(at.text.position(found_[0].old_begin));
            add("COPY_TEXT(" +
                expression_for(to_.text.text(found_[0].new_begin, found_[0].new_end)) + ")");
        } else if (is_cut()) {
            const Position begin = at.text.position(found_[0].old_begin);
            add_move(*at.anchor == begin ? at.text.position(found_[0].old_end) : begin);
            add("MOVE_TEXT");
            at.anchor.reset();
        } else {
            for (std::string& change : text_changes(found_, to_.text)) add(std::move(change));
        }
        if (!found_.empty()) at.cursor = to_.text.position(found_.back().new_end);
        reach_text();
    }
    void add_modes() {
        for (std::size_t i = 0; i < std::size(kModes); ++i) {
            if (at.modes[i] != to_.modes[i]) add(to_.modes[i] ? kModes[i].on : kModes[i].off);
        }
        for (std::size_t i = 0; i < std::size(kMargins); ++i) {
            if (at.margins[i] == to_.margins[i]) continue;
            add(std::string("SET(") + kMargins[i].name + ", " + std::to_string(to_.margins[i]) +
                ")");
        }
        at.modes = to_.modes;
        at.margins = to_.margins;
    }
    void add_anchor() {
        if (at.anchor == to_.anchor) return;
        if (to_.anchor) add_move(*to_.anchor);
        add("SELECT");
        // Moving an empty selection does away with it.
        if (!to_.anchor) add("MOVE_TEXT");
        at.anchor = to_.anchor;
        add_cursor();
    }
    void add_cursor() { add_move(to_.cursor); }

    bool has_text() const { return !found_.empty(); }
    bool has_cursor() const { return at.cursor != to_.cursor; }

    State at;  // where the statements lead
    std::vector<std::string> statements;

  private:
    // Copying it does exactly the same, whoever reads what a charset is.
    bool is_copied() const {
        if (found_.size() != 1 || !found_[0].only_inserts()) return false;
        const auto [begin, end, from, to] = found_[0];
        const bool wraps = at.modes[kWrap] && at.margins[1] > 0;
        if (!at.modes[kInsert] || wraps || to - from > kMostTyped) return false;
        const Position place = at.text.position(begin);
        const LineStore typed = to_.text.part(from, to);
        return character_start(at.text, place) == place.column && !typed.may_hold_feeds() &&
               !typed.find("\t", 0);
    }
    // Something has gone in, and the cursor stands behind it.
    bool is_typing() const {
        return found_.size() == 1 && !found_[0].only_erases() &&
               to_.text.position(found_[0].new_end) == to_.cursor;
    }

    // It was selected, and is selected no more.
    bool is_cut() const {
        if (!at.anchor || to_.anchor || found_.size() != 1 || !found_[0].only_erases())
            return false;
        return *at.anchor == at.text.position(found_[0].old_begin) ||
               *at.anchor == at.text.position(found_[0].old_end);
    }

    void reach_text() {
        at.text = to_.text;
        at.version = to_.version;
        found_.clear();
    }
    void add(std::string statement) { statements.push_back(std::move(statement)); }
    // As the motions go: a row is reached before it bounds the column.
    void add_move(Position place) {
        place.row = std::min(place.row, at.text.size() - 1);
        const std::uint64_t length = at.text.length(place.row);
        if (!at.modes[kFree]) place.column = std::min(place.column, length);
        if (int rows = difference(at.cursor.row, place.row)) add(call("MOVE_VERTICAL", rows));
        std::uint64_t column = at.cursor.column;
        if (!at.modes[kFree]) column = std::min(column, length);
        if (int columns = difference(column, place.column)) {
            add(call("MOVE_HORIZONTAL", columns));
        }
        at.cursor = place;
    }

    const State to_;
    const std::optional<std::vector<Change>> changes_;
    std::vector<Difference> found_;
};

void JournalFollower::capture() {
    recorded_ = state_of(buffer_);
    seen_ = recorded_.version;
    keys_ = 0;
    waiting_since_.reset();
}

void JournalFollower::follow(Clock::time_point now) {
    buffer_.clamp_cursor();  // as drawing would
    const std::uint64_t version = buffer_.changes().version();
    const std::uint64_t typed = version - std::exchange(seen_, version);
    if (typed > 0) keys_ += typed > kMostKeys ? kMostKeys : 1;
    if (!waiting_since_) waiting_since_ = now;  // in case that memory is too short for the rest
    Way way(recorded_, buffer_);
    if (!way.can_wait() || keys_ >= kMostKeys) {
        way.add_text();
        way.add_modes();
        way.add_anchor();
    }
    go(way);
    if (!way.has_text()) waiting_since_ = now;
    if (!way.has_text() && !way.has_cursor()) waiting_since_.reset();
}

void JournalFollower::flush() {
    Way way(recorded_, buffer_);
    way.add_text();
    way.add_modes();
    way.add_anchor();
    way.add_cursor();
    go(way);
    waiting_since_.reset();
}

void JournalFollower::go(const Way& way) {
    if (!way.statements.empty()) {
        write(way.statements);
        has_own_steps_ = true;
    }
    recorded_ = way.at;
    if (!way.has_text()) keys_ = 0;
}

void JournalFollower::write(std::vector<std::string> statements) {
    // What brought the user back here was not recorded in this journal.
    if (buffer_.journal_strayed) {
        statements.insert(statements.begin(),
                          "POSITION(GET_BUFFER(" + expression_for(buffer_.name) + "))");
    }
    tpu_journal_append(&buffer_, statements);
    buffer_.journal_strayed = false;
}

JournalFollower& follower_of(Buffer& buffer) {
    if (!buffer.journal_follower) {
        buffer.journal_follower = std::make_shared<JournalFollower>(buffer);
    }
    return *buffer.journal_follower;
}

void reset_recorded_modes(Buffer& buffer) {
    const Buffer fresh("", "");
    for (const Mode& mode : kModes) buffer.*mode.flag = fresh.*mode.flag;
    for (const Margin& margin : kMargins) buffer.*margin.column = fresh.*margin.column;
    buffer.select_anchor.reset();
}

// A journal that ended by itself is told of once.
static void tell_fault(TPUEditor& editor, Buffer& buffer) {
    if (buffer.journal_fault.empty() || std::exchange(buffer.journal_fault_told, true)) return;
    editor.set_message("Journaling has stopped: " + buffer.journal_fault);
}

bool flush_journals(TPUEditor& editor, bool all) {
    bool waits = false;
    for (const auto& buffer : editor.buffers) {
        tell_fault(editor, *buffer);
        if (!buffer->journaling || !buffer->journal_follower) continue;
        JournalFollower& follower = *buffer->journal_follower;
        std::optional<Clock::time_point> since = follower.waiting_since();
        if (!since) continue;
        bool is_due = all || editor.ports.clock.now() - *since >= JournalFollower::kLongestWait;
        is_due ? follower.flush() : void(waits = true);
    }
    return waits;
}

JournaledKey::JournaledKey(TPUEditor& editor) : editor_(editor) {
    Buffer* buffer = editor.current_buffer;
    if (!buffer || !buffer->journaling) return;
    buffer_ = buffer;
    follower_of(*buffer).expect_own_steps();
}

void JournaledKey::record() {
    if (!buffer_ || !editor_.owns(buffer_) || !buffer_->journaling) return;
    enough_memory([&] { follower_of(*buffer_).follow(editor_.ports.clock.now()); });
}

}  // namespace tpu
