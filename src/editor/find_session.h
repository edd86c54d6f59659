// Incremental find: a state machine that is fed with keys.
#pragma once

#include <string>

#include "buffer/buffer.h"

namespace tpu {

class FindSession {
  public:
    explicit FindSession(Buffer& buffer);

    // Searches for the query from the start position, then from the top, and moves
    // the cursor to what it found, else back. The message to show meanwhile.
    std::string search();

    // Takes a key. True when it ended the session; then result() says how.
    bool key(int code);
    // Adds pasted text to the query, up to its first line end.
    void paste(std::string_view text);
    const std::string& result() const { return result_; }

    // Puts the cursor back to where the session began, for others who change the buffer.
    void step_aside();
    // Afterwards: the start moves with the text behind the cursor, which they may have moved.
    // True when that and the text are as they were, and what was found is where it was.
    bool step_back();
    // The buffer that is searched; null once that is deleted.
    const Buffer* buffer() const { return buffer_; }
    void forget(const Buffer& buffer);

  private:
    void append(int code);
    Position cursor() const { return {buffer_->cursor_row, buffer_->cursor_column}; }
    void go_to(Position place);
    void move_start();
    bool end(std::string result);

    Buffer* buffer_;
    std::string query_;
    Position origin_;  // of the cursor
    Position start_;   // of the search
    bool found_ = false;
    std::string result_ = "I-find cancelled";
    Position found_at_;  // since step_aside()
    LineStore text_;
};

}  // namespace tpu
