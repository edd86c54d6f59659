#include "editor/journal_entry.h"

#include "store/journal.h"

namespace tpu {

void JournalEntry::begin(const std::string& text) {
    buffer_ = editor_.current_buffer;
    // What brought the user back here was not recorded in this journal.
    if (std::exchange(buffer_->journal_strayed, false)) {
        std::string name = expression_for(buffer_->name);
        tpu_journal_append(buffer_, "POSITION(GET_BUFFER(" + name + "))");
    }
    tpu_journal_append(buffer_, text);
}

void JournalEntry::end() {
    if (editor_.current_buffer != buffer_) buffer_->journal_strayed = true;
}

}  // namespace tpu
