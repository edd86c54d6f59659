#include "editor/journal_entry.h"

#include <utility>

#include "editor/journal_follower.h"
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
    JournalFollower& follower = follower_of(*buffer_);
    follower.follow(editor_.ports.clock.now());
    follower.flush();
    // What is one step here is several when the records are replayed.
    if (editor_.undo_step && !editor_.undo_step->takes_record()) follower.expect_own_steps();
    // Steps of undo that a replay does not have are recorded by what they do.
    by_effect_ = (follower.has_own_steps() && travels(text)) || recovers(text);
    strayed_ = buffer_->journal_strayed;
    file_ = buffer_->journal_file;
    size_ = tpu_journal_size(file_);
    if (!by_effect_) follower.record(text);
    end_ = tpu_journal_size(file_);
}

// What memory is too short for now is recorded with the next key or statement.
void JournalEntry::finish() {
    Buffer* buffer = std::exchange(buffer_, nullptr);
    if (!buffer) return;
    if (!buffer->journaling) {
        buffer->journal_follower.reset();
    } else if (by_effect_) {
        enough_memory([&] {
            follower_of(*buffer).follow(editor_.ports.clock.now());
            follower_of(*buffer).flush();
        });
    } else if (buffer->journal_follower) {
        buffer->journal_follower->capture();
    }
    if (editor_.current_buffer != buffer) buffer->journal_strayed = true;
}

// The statement has failed, and what it did is undone: a replay must not do it.
void JournalEntry::take_back() noexcept {
    if (!size_ || !end_) return;
    tpu_journal_cut(file_, *end_, *size_);
    buffer_->journal_strayed = strayed_;
}

}  // namespace tpu
