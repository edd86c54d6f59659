// Typing one line: a state machine that is fed with keys.
#pragma once

#include <string>
#include <string_view>

#include "core/charset.h"

namespace tpu {

class LineInput {
  public:
    explicit LineInput(Charset charset) : charset_(charset) {}

    // Takes a key; true when it ended the line.
    bool key(int code);
    // Takes pasted text, up to its first line end.
    void paste(std::string_view text);
    const std::string& text() const { return text_; }

  private:
    void append(char byte);
    void erase_last_character();

    Charset charset_;
    std::string text_;
};

}  // namespace tpu
