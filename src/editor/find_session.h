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

  private:
    void append(int code);
    void go_to_start();
    bool end(std::string result);

    Buffer& buffer_;
    std::string query_;
    Position start_;
    bool found_ = false;
    std::string result_;
};

}  // namespace tpu
