#include "editor/journal_entry.h"

#include <exception>

#include "editor/journal_mirror.h"
#include "editor/undo_step.h"
#include "os/short_memory.h"
#include "store/journal.h"
#include "text/ascii.h"

namespace tpu {

namespace {

bool travels(const std::string& statement) {
    std::string word = ascii::upper(statement);
    return word == "UNDO" || word == "REDO";
}

// What it brings back is gone by the time of a replay.
bool recovers(const std::string& statement) {
    std::string word = ascii::upper(statement);
    return word == "RECOVER_BUFFER" || word == "RECOVER_BUFFER()";
}

}  // namespace

void JournalEntry::begin(const std::string& text) {
    buffer_ = editor_.current_buffer;
    JournalMirror& mirror = mirror_of(*buffer_);
    mirror.follow(editor_.charset, editor_.ports.clock.now());
    mirror.flush();
    // What is one step here is several when the records are replayed.
    if (editor_.undo_step && !editor_.undo_step->takes_record()) mirror.expect_own_steps();
    // Steps of undo that a replay does not have are recorded by what they do.
    by_effect_ = (mirror.has_own_steps() && travels(text)) || recovers(text);
    exceptions_ = std::uncaught_exceptions();
    strayed_ = buffer_->journal_strayed;
    file_ = buffer_->journal_file;
    size_ = tpu_journal_size(file_);
    if (!by_effect_) mirror.record(text);
    end_ = tpu_journal_size(file_);
}

// What memory is too short for now is recorded with the next key or statement.
void JournalEntry::end() {
    if (std::uncaught_exceptions() > exceptions_) return take_back();
    if (!buffer_->journaling) {
        buffer_->journal_mirror.reset();
    } else if (by_effect_) {
        enough_memory([&] {
            mirror_of(*buffer_).follow(editor_.charset, editor_.ports.clock.now());
            mirror_of(*buffer_).flush();
        });
    } else if (buffer_->journal_mirror) {
        buffer_->journal_mirror->capture();
    }
    if (editor_.current_buffer != buffer_) buffer_->journal_strayed = true;
}

// The statement has failed, and what it did is undone: a replay must not do it.
void JournalEntry::take_back() {
    if (!size_ || !end_) return;
    tpu_journal_cut(file_, *end_, *size_);
    buffer_->journal_strayed = strayed_;
}

}  // namespace tpu
