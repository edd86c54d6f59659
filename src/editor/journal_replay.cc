#include "editor/journal_replay.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <tuple>

#include "editor/editor.h"
#include "editor/undo_step.h"
#include "lang/nesting.h"
#include "lang/parser.h"
#include "os/file_io.h"
#include "os/trust.h"
#include "store/journal.h"
#include "store/journal_reader.h"
#include "text/ascii.h"

namespace tpu {

namespace {

// Keeps variables as they are at its begin, to give them back at its end.
template <class... T>
class Restored {
  public:
    explicit Restored(T&... variables) : variables_(variables...), before_(variables...) {}
    ~Restored() { variables_ = std::move(before_); }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

  private:
    std::tuple<T&...> variables_;
    std::tuple<T...> before_;
};

// The steps of undo of a buffer, laid aside: a replay begins without any, since it knows
// only of those that it makes, and leaves none of its own behind.
class StepsAside {
  public:
    explicit StepsAside(Buffer& buffer)
        : buffer_(&buffer),
          kept_(buffer.undo_stack, buffer.redo_stack, buffer.history_moves, buffer.last_restored) {
        buffer.undo_stack.clear();
        buffer.redo_stack.clear();
    }
    const Buffer* of() const { return buffer_; }  // which may be gone

  private:
    const Buffer* buffer_;
    Restored<std::vector<Buffer::Snapshot>, std::vector<Buffer::Snapshot>, std::uint64_t,
             Buffer::Snapshot>
        kept_;
};

// The statements run as they once did: each an outermost one and a step of undo for those
// that follow; all of them together are one step. What they say about journals, learning
// and leaving the editor does not concern the session that replays them.
class Replay {
  public:
    Replay(TPUEditor& editor, JournalReader& reader)
        : editor_(editor), run_(editor.parser), reader_(reader), step_(editor_) {
        for (const auto& buffer : editor_.buffers) {
            if (buffer->system) continue;
            editor_.undo_step->watch(*buffer);
            steps_aside_.push_back(std::make_unique<StepsAside>(*buffer));
        }
        step_under_way_ = std::exchange(editor_.undo_step, nullptr);
    }
    ~Replay() {
        if (step_under_way_) lay_back();
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    void finish() {
        lay_back();
        step_.finish();
    }

    void run_all() {
        Restored session(editor_.running, editor_.exit_status);
        Restored code(run_.statement_depth, run_.current_line, run_.learning);
        run_.learning.pause();
        run_.statement_depth = run_.current_line = 0;
        for (std::string statement; !run_.interrupted && reader_.next(statement);) {
            if (statement.starts_with('!')) continue;  // a comment
            run_one(statement);
            ++count_;
        }
    }

    void report() const {
        const std::string told = std::to_string(count_) +
                                 (count_ == 1 ? " statement" : " statements") + " replayed; " +
                                 where_it_stopped();
        const Failure& why = reader_.why();
        why ? editor_.fail("TPU$_READERR", told, why.text()) : editor_.set_message(told);
    }

  private:
    void lay_back() noexcept {
        for (const auto& steps : steps_aside_) {
            if (!editor_.owns(steps->of())) step_under_way_->forget(steps->of());
        }
        // What the replay has made begins with its first step.
        for (const auto& buffer : editor_.buffers) {
            if (!step_under_way_->watches(*buffer) && buffer->undo_stack.size() > 1) {
                buffer->undo_stack.resize(1);
            }
        }
        editor_.undo_step = std::exchange(step_under_way_, nullptr);
        steps_aside_.clear();
    }

    void run_one(const std::string& statement) {
        UndoStep step(editor_);
        run_.look_for_interrupt();
        if (!run_.interrupted) run_.execute_whole(statement);
        if (!run_.interrupted) run_.control_signal = Signal::none;
        step.finish();
    }

    std::string where_it_stopped() const {
        std::string byte = "byte " + std::to_string(reader_.record_start());
        switch (reader_.end()) {
            case JournalReader::End::none: return "interrupted at " + byte;
            case JournalReader::End::of_file: return "the end of the journal was reached";
            case JournalReader::End::cut_short: return "the record at " + byte + " is cut short";
            case JournalReader::End::zero_length: return "the record at " + byte + " is empty";
            case JournalReader::End::too_long: return "the record at " + byte + " is too long";
            case JournalReader::End::unknown_version: return kUnknownJournalVersion;
            case JournalReader::End::unreadable: break;
        }
        return "the journal cannot be read from " + byte + " on";
    }

    TPUEditor& editor_;
    MiniTPUParser& run_;
    JournalReader& reader_;
    UndoStep step_;
    UndoStep* step_under_way_ = nullptr;
    std::vector<std::unique_ptr<StepsAside>> steps_aside_;
    std::uint64_t count_ = 0;
};

// How it ended.
JournalReader::End replay(TPUEditor& editor, Descriptor file) {
    Nesting nesting(editor.parser);
    JournalReader reader(std::move(file));
    Replay replay(editor, reader);
    Buffer* buffer = editor.current_buffer;
    if (buffer) {
        Restored journal(buffer->journaling, buffer->binary_journal, buffer->journal_file,
                         buffer->journal_follower);
        replay.run_all();
    } else {
        replay.run_all();
    }
    replay.report();
    replay.finish();
    return reader.end();
}

// What records of unsaved work consist of besides numbers and strings.
bool is_word_of_editing(std::string_view word) {
    constexpr std::string_view kWords[] = {
        "REPLACE_TEXT",
        "COPY_TEXT",
        "SPLIT_LINE",
        "ERASE_CHARACTER",
        "TRANSLATE",
        "FAO",
        "MOVE_VERTICAL",
        "MOVE_HORIZONTAL",
        "SELECT",
        "MOVE_TEXT",
        "SET",
        "INSERT",
        "OVERSTRIKE",
        "WRAP",
        "NO_WRAP",
        "REVERSE",
        "FORWARD",
        "FREE_CURSOR",
        "ON",
        "OFF",
        "LEFT_MARGIN",
        "RIGHT_MARGIN",
    };
    return std::find(std::begin(kWords), std::end(kWords), word) != std::end(kWords);
}

// True when nothing but such words, numbers and strings are in it, so that whatever it
// says, it changes only text and cursor.
bool only_edits(std::string_view statement) {
    if (statement.starts_with('!')) return true;
    std::string word;
    auto word_is_known = [&] {
        return word.empty() || ascii::is_digit(word[0]) || is_word_of_editing(word);
    };
    for (std::size_t at = 0; at < statement.size(); ++at) {
        const char c = statement[at];
        if (ascii::is_letter(c) || ascii::is_digit(c) || c == '_') {
            word += c;
            continue;
        }
        if (!word_is_known()) return false;
        word.clear();
        if (c == '"') {
            at = statement.find('"', at + 1);
            if (at == std::string_view::npos) return false;
        } else if (std::string_view("(), -").find(c) == std::string_view::npos) {
            return false;
        }
    }
    return word_is_known();
}

// Leaves the file as it found it.
bool only_edits(int fd) {
    Failure untold;
    JournalReader reader{Descriptor(dup(fd))};
    std::size_t count = 0;
    for (std::string statement; reader.next(statement); ++count) {
        if (!only_edits(statement)) return false;
    }
    return reader.is_binary() && count > 0 && rewind_file(fd, untold);
}

}  // namespace

Replayed bring_back(TPUEditor& editor, const std::string& path, std::string& reason) {
    Failure why;
    Descriptor file = open_file(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0, why);
    reason = file ? distrust_of_file(file.get()) : why.text();
    if (reason.empty() && !only_edits(file.get())) reason = "It holds more than unsaved work";
    if (!reason.empty()) return Replayed::nothing;
    bool whole = replay(editor, std::move(file)) == JournalReader::End::of_file;
    return whole ? Replayed::all : Replayed::part;
}

bool replay_journal(TPUEditor& editor, const std::string& path, Failure& why) {
    constexpr std::size_t kDeepest = 100;
    Descriptor file = open_file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY, 0, why);
    struct stat status;
    if (!file) return false;
    if (fstat(file.get(), &status) != 0) return why.note_errno();
    if (!is_regular(status, why)) return false;
    const std::pair id(status.st_dev, status.st_ino);
    auto& running = editor.replayed_journals;
    const bool runs = std::find(running.begin(), running.end(), id) != running.end();
    if (runs || running.size() == kDeepest) return true;
    Restored journals(running);
    running.push_back(id);
    bool known = replay(editor, std::move(file)) != JournalReader::End::unknown_version;
    return known || why.note(ENOTSUP, kUnknownJournalVersion);
}

}  // namespace tpu
