// What an outermost statement leaves in a journal.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

#include "editor/editor.h"

namespace tpu {

// Lives while the statement runs. Records it beforehand if the buffer that is current
// keeps a journal; costs nothing if it does not.
class JournalEntry {
  public:
    JournalEntry(TPUEditor& editor, const std::function<std::string()>& text) : editor_(editor) {
        if (is_wanted()) begin(text());
    }
    ~JournalEntry() {
        if (buffer_) end();
    }
    JournalEntry(const JournalEntry&) = delete;
    JournalEntry& operator=(const JournalEntry&) = delete;

  private:
    bool is_wanted() const {
        const Buffer* buffer = editor_.current_buffer;
        return buffer && buffer->journaling;
    }
    void begin(const std::string& text);
    void end();
    void take_back();

    TPUEditor& editor_;
    Buffer* buffer_ = nullptr;         // whose journal has the record
    bool by_effect_ = false;           // it gets one afterwards, for what the statement did
    std::string file_;                 // that the record is in
    std::optional<off_t> size_, end_;  // of that file, without the record and with it
    bool strayed_ = false;             // the buffer's journal_strayed then
    int exceptions_ = 0;               // under way then
};

}  // namespace tpu
