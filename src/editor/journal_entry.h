// What an outermost statement leaves in a journal.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

#include "editor/editor.h"

namespace tpu {

// Records a statement before it runs if the buffer that is current keeps a journal; costs
// nothing if it does not. When it goes without having been finished, the statement has failed,
// and it takes the record back.
class JournalEntry {
  public:
    JournalEntry(TPUEditor& editor, const std::function<std::string()>& text) : editor_(editor) {
        if (is_wanted()) begin(text());
    }
    ~JournalEntry() {
        if (buffer_) take_back();
    }
    JournalEntry(const JournalEntry&) = delete;
    JournalEntry& operator=(const JournalEntry&) = delete;

    // The statement has run.
    void finish();

  private:
    bool is_wanted() const {
        const Buffer* buffer = editor_.current_buffer;
        return buffer && buffer->journaling;
    }
    void begin(const std::string& text);
    void take_back() noexcept;

    TPUEditor& editor_;
    Buffer* buffer_ = nullptr;         // whose journal has the record, until it is finished
    bool by_effect_ = false;           // it gets one afterwards, for what the statement did
    std::string file_;                 // that the record is in
    std::optional<off_t> size_, end_;  // of that file, without the record and with it
    bool strayed_ = false;             // the buffer's journal_strayed then
};

}  // namespace tpu
