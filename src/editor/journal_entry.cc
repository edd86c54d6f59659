#include "editor/journal_entry.h"

#include "core/ascii.h"
#include "editor/journal_mirror.h"
#include "editor/undo_step.h"

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
    if (!by_effect_) mirror.record(text);
}

void JournalEntry::end() {
    if (!buffer_->journaling) {
        buffer_->journal_mirror.reset();
    } else if (by_effect_) {
        mirror_of(*buffer_).follow(editor_.charset, editor_.ports.clock.now());
        mirror_of(*buffer_).flush();
    } else {
        mirror_of(*buffer_).capture();
    }
    if (editor_.current_buffer != buffer_) buffer_->journal_strayed = true;
}

}  // namespace tpu
