// A text in pieces that COPY_TEXT can be given.
//
// COPY_TEXT makes blanks of tabs and lines of line feeds. So other bytes, which a piece
// does not have, stand for those that are text, until TRANSLATE puts them in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "text/line_store.h"

namespace tpu {

struct CopiedText {
    std::string text;
    std::string stand_ins;  // bytes of the text ...
    std::string meant;      // ... and what they stand for; empty: there are none

    // The statement that inserts the piece.
    std::string statement() const;
};

class CopiedPieces {
  public:
    static constexpr std::size_t kLongest = 1 << 20;  // bytes in a piece

    explicit CopiedPieces(const LineStore& text);

    // The next piece; no character is torn. False at the end.
    bool next(CopiedText& piece);

  private:
    std::size_t size_of_next(std::size_t most) const;
    bool mark(std::size_t size, CopiedText& piece) const;

    std::string text_;
    std::vector<std::uint64_t> feeds_;  // offsets of the line feeds that are text
    std::size_t at_ = 0;
};

}  // namespace tpu
