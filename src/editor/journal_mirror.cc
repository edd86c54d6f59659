#include "editor/journal_mirror.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "editor/copied_text.h"
#include "editor/editor.h"
#include "lang/stmt_text.h"
#include "os/short_memory.h"
#include "store/journal.h"
#include "text/line_diff.h"

namespace tpu {

namespace {

constexpr std::size_t kMostKeys = 32;  // gathered at once

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

struct Margin {
    std::uint64_t Buffer::*column;
    const char* name;
};

constexpr Margin kMargins[] = {
    {&Buffer::left_margin, "LEFT_MARGIN"},
    {&Buffer::right_margin, "RIGHT_MARGIN"},
};

Position cursor(const Buffer& buffer) {
    return {buffer.cursor_row, buffer.cursor_column};
}

std::uint64_t cursor_offset(const Buffer& buffer) {
    return buffer.current_offset_in_line();
}

bool is_same_place(const std::optional<Marker>& a, const std::optional<Marker>& b) {
    return a.has_value() == b.has_value() && (!a || a->position() == b->position());
}

int bounded(std::uint64_t n) {
    return static_cast<int>(std::min<std::uint64_t>(n, std::numeric_limits<int>::max()));
}

int difference(std::uint64_t from, std::uint64_t to) {
    return to >= from ? bounded(to - from) : -bounded(from - to);
}

std::string call(std::string_view name, int n) {
    return std::string(name).append("(").append(std::to_string(n)).append(")");
}

// The largest n up to `most` for which holds(n); it holds for 0, and for all below one
// that it holds for.
template <class Holds>
std::uint64_t largest(std::uint64_t most, Holds holds) {
    std::uint64_t least = 0;
    while (least < most) {
        std::uint64_t middle = most - (most - least) / 2;
        if (holds(middle)) {
            least = middle;
        } else {
            most = middle - 1;
        }
    }
    return least;
}

// The column up to `column` behind which a row can be cut: no character is torn, whatever
// comes there instead.
std::uint64_t untorn(const LineStore& lines, std::uint64_t row, std::uint64_t column) {
    constexpr std::uint64_t kStep = 4 << 10;
    while (column > 0) {
        std::uint64_t from = column - std::min(column, kStep);
        std::string part = lines.slice({row, from}, column - from);
        auto ascii =
            std::find_if(part.rbegin(), part.rend(), [](char c) { return (c & 0x80) == 0; });
        column = from + static_cast<std::uint64_t>(part.rend() - ascii);
        if (ascii != part.rend()) break;
    }
    return column;
}

}  // namespace

JournalMirror::JournalMirror(Buffer& buffer) : buffer_(buffer) {
    capture();
}

// Needs no memory. Tab stops are looked at when they matter.
void JournalMirror::capture() {
    replayed_.set_text(buffer_.text());
    replayed_.cursor_row = buffer_.cursor_row;
    replayed_.cursor_column = buffer_.cursor_column;
    take_anchor();
    copy_recorded_modes(buffer_, replayed_);
    moved_to_.reset();
    if (typed_.empty()) waiting_since_.reset();
}

void JournalMirror::follow(Charset charset, Clock::time_point now) {
    buffer_.clamp_cursor();  // as drawing would
    follow_modes();
    if (!has_same_text()) {
        follow_text(charset, now);
    } else if (moved_to_.value_or(cursor(replayed_)) != cursor(buffer_)) {
        if (!typed_.empty()) flush();
        moved_to_ = cursor(buffer_);
        waiting_since_ = now;
    }
    follow_anchor();
}

void JournalMirror::flush() {
    if (!typed_.empty()) {
        record("COPY_TEXT(" + expression_for(typed_) + ")");
        typed_.clear();
        typed_keys_ = 0;
        has_own_steps_ = true;
    }
    if (moved_to_) move_to(*std::exchange(moved_to_, {}));
    waiting_since_.reset();
}

void JournalMirror::record(std::string_view statement) {
    // What brought the user back here was not recorded in this journal.
    if (buffer_.journal_strayed) {
        tpu_journal_append(&buffer_, "POSITION(GET_BUFFER(" + expression_for(buffer_.name) + "))");
        buffer_.journal_strayed = false;
    }
    tpu_journal_append(&buffer_, statement);
}

class JournalMirror::Attempt {
  public:
    explicit Attempt(JournalMirror& mirror) : mirror_(mirror), before_(mirror.state()) {}
    ~Attempt() {
        if (!kept_) mirror_.restore(before_);
    }
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    void keep() { kept_ = true; }
    const State& before() const { return before_; }

  private:
    JournalMirror& mirror_;
    const State before_;
    bool kept_ = false;
};

JournalMirror::State JournalMirror::state() const {
    return {replayed_.snap(), replayed_.select_anchor};
}

void JournalMirror::restore(const State& state) {
    replayed_.restore_snap(state.text);
    replayed_.select_anchor = state.anchor;
}

void JournalMirror::take_anchor() {
    replayed_.select_anchor = buffer_.select_anchor;
    if (replayed_.select_anchor) replayed_.select_anchor->buffer = &replayed_;
}

// Equal texts are made one, so that comparing them again takes no time.
bool JournalMirror::has_same_text() {
    if (replayed_.text() != buffer_.text()) return false;
    replayed_.set_text(buffer_.text());
    return true;
}

bool JournalMirror::is_there() {
    return cursor(replayed_) == cursor(buffer_) && has_same_text();
}

void JournalMirror::write(const std::string& statement) {
    flush();
    record(statement);
    has_own_steps_ = true;
}

template <class Change>
bool JournalMirror::tries(const std::string& statement, Change change) {
    flush();
    Attempt attempt(*this);
    change(replayed_);
    if (!is_there()) return false;
    write(statement);
    attempt.keep();
    return true;
}

template <class Change>
void JournalMirror::apply(const std::string& statement, Change change) {
    flush();
    Attempt attempt(*this);
    change(replayed_);
    write(statement);
    attempt.keep();
}

void JournalMirror::follow_modes() {
    for (const Mode& mode : kModes) {
        bool on = buffer_.*mode.flag;
        if (replayed_.*mode.flag == on) continue;
        write(on ? mode.on : mode.off);
        replayed_.*mode.flag = on;
        replayed_.clamp_cursor();
    }
    for (const Margin& margin : kMargins) {
        std::uint64_t column = buffer_.*margin.column;
        if (replayed_.*margin.column == column) continue;
        write(std::string("SET(") + margin.name + ", " + std::to_string(column) + ")");
        replayed_.*margin.column = column;
    }
    replayed_.tab_stops = buffer_.tab_stops;
    replayed_.tab_interval = buffer_.tab_interval;
}

void JournalMirror::follow_text(Charset charset, Clock::time_point now) {
    if (moved_to_) flush();
    if (follow_typing(charset, now) || follow_erasing()) return;
    rewrite(charset);
}

bool JournalMirror::follow_typing(Charset charset, Clock::time_point now) {
    std::uint64_t from = cursor_offset(replayed_), to = cursor_offset(buffer_);
    if (to <= from || to - from > CopiedPieces::kLongest) return false;
    std::string text = buffer_.text().text(from, to);
    if (text == "\n" && tries("SPLIT_LINE", [](Buffer& b) { b.split_line(); })) return true;
    for (bool alone : {typed_.empty(), true}) {
        if (alone) flush();
        Attempt attempt(*this);
        if (alone) before_typed_ = attempt.before();
        std::string typed = typed_ + text;
        restore(before_typed_);
        replayed_.copy_text(typed, charset);
        if (is_there()) {
            attempt.keep();
            typed_ = std::move(typed);
            if (!waiting_since_) waiting_since_ = now;
            if (++typed_keys_ >= kMostKeys || text.size() > kMostKeys) flush();
            return true;
        }
        if (alone) break;
    }
    return false;
}

bool JournalMirror::follow_erasing() {
    if (replayed_.select_anchor && !buffer_.select_anchor && tries("MOVE_TEXT", [](Buffer& b) {
            std::optional<Range> range = b.select_range();
            if (range) b.erase_range(*range);
            b.select_anchor.reset();
        })) {
        return true;
    }
    if (buffer_.text().bytes() >= replayed_.text().bytes()) return false;
    int n = bounded(replayed_.text().bytes() - buffer_.text().bytes());
    for (int count : {-n, n}) {
        auto erase = [&](Buffer& b) { b.erase_n_characters(count); };
        if (tries(call("ERASE_CHARACTER", count), erase)) return true;
    }
    return false;
}

// Puts what differs in the place of what is there.
void JournalMirror::rewrite(Charset charset) {
    const bool inserts = replayed_.insert_mode, wraps = replayed_.auto_wrap;
    if (!inserts) write("SET(INSERT)");
    replayed_.insert_mode = true;
    if (wraps) write("SET(NO_WRAP)");
    replayed_.auto_wrap = false;
    for (const Difference& change : differences(replayed_.text(), buffer_.text())) {
        // Up to here the two are the same by now.
        replace(change.new_begin, change.old_end - change.old_begin,
                buffer_.text().part(change.new_begin, change.new_end), charset);
    }
    if (!inserts) write("SET(OVERSTRIKE)");
    replayed_.insert_mode = inserts;
    if (wraps) write("SET(WRAP)");
    replayed_.auto_wrap = wraps;
    move_to(cursor(buffer_));
    if (!is_there()) capture();
}

// Puts a text in the place of `count` bytes, but for the common begin and the common end
// of the two.
void JournalMirror::replace(std::uint64_t from, std::uint64_t count, const LineStore& fresh,
                            Charset charset) {
    const LineStore old = replayed_.text().part(from, from + count);
    std::uint64_t shorter = std::min(old.bytes(), fresh.bytes());
    std::uint64_t begin =
        largest(shorter, [&](auto n) { return old.part(0, n) == fresh.part(0, n); });
    std::uint64_t end = largest(shorter - begin, [&](auto n) {
        return old.part(old.bytes() - n, old.bytes()) ==
               fresh.part(fresh.bytes() - n, fresh.bytes());
    });
    const auto [row, column] = replayed_.text().position(from + begin);
    const Position place{row, untorn(replayed_.text(), row, column)};
    const std::string head = replayed_.text().slice(place, column - place.column);
    move_to(place);
    for (std::uint64_t left = head.size() + old.bytes() - end - begin; left > 0;) {
        int piece = bounded(left);
        apply(call("ERASE_CHARACTER", piece), [&](Buffer& b) { b.erase_n_characters(piece); });
        left -= static_cast<std::uint64_t>(piece);
    }
    LineStore added = fresh.part(begin, fresh.bytes() - end);
    added.insert(0, head);
    insert(added, charset);
}

void JournalMirror::insert(const LineStore& text, Charset charset) {
    CopiedPieces pieces(text);
    for (CopiedText piece; pieces.next(piece);) {
        apply(piece.statement(), [&](Buffer& b) {
            Range range = b.copy_text(piece.text, charset);
            b.translate_range(range, piece.stand_ins, piece.meant);
        });
    }
}

void JournalMirror::move_to(Position place) {
    if (int rows = difference(replayed_.cursor_row, place.row)) {
        apply(call("MOVE_VERTICAL", rows), [&](Buffer& b) { b.move_vertical(rows); });
    }
    if (int columns = difference(replayed_.cursor_column, place.column)) {
        apply(call("MOVE_HORIZONTAL", columns), [&](Buffer& b) { b.move_horizontal(columns); });
    }
}

void JournalMirror::follow_anchor() {
    if (is_same_place(replayed_.select_anchor, buffer_.select_anchor)) return;
    flush();
    const Position here = cursor(replayed_);
    if (buffer_.select_anchor) move_to(buffer_.select_anchor->position());
    apply("SELECT", [](Buffer& b) { b.select(); });
    // Moving an empty selection does away with it.
    if (!buffer_.select_anchor) apply("MOVE_TEXT", [](Buffer& b) { b.select_anchor.reset(); });
    take_anchor();
    move_to(here);
}

void copy_recorded_modes(const Buffer& from, Buffer& to) {
    for (const Mode& mode : kModes) to.*mode.flag = from.*mode.flag;
    for (const Margin& margin : kMargins) to.*margin.column = from.*margin.column;
}

JournalMirror& mirror_of(Buffer& buffer) {
    if (!buffer.journal_mirror) buffer.journal_mirror = std::make_shared<JournalMirror>(buffer);
    return *buffer.journal_mirror;
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
        if (!buffer->journaling || !buffer->journal_mirror) continue;
        JournalMirror& mirror = *buffer->journal_mirror;
        std::optional<Clock::time_point> since = mirror.waiting_since();
        if (!since) continue;
        bool is_due = all || editor.ports.clock.now() - *since >= JournalMirror::kLongestWait;
        is_due ? mirror.flush() : void(waits = true);
    }
    return waits;
}

JournaledKey::JournaledKey(TPUEditor& editor) : editor_(editor) {
    Buffer* buffer = editor.current_buffer;
    if (!buffer || !buffer->journaling) return;
    buffer_ = buffer;
    exceptions_ = std::uncaught_exceptions();
    mirror_of(*buffer).expect_own_steps();
}

// What memory is too short for now is recorded with the next key. One that failed has done
// nothing, though that is still to be seen in the buffer.
void JournaledKey::end() {
    bool failed = std::uncaught_exceptions() > exceptions_;
    if (failed || !editor_.owns(buffer_) || !buffer_->journaling) return;
    enough_memory([&] { mirror_of(*buffer_).follow(editor_.charset, editor_.ports.clock.now()); });
}

}  // namespace tpu
