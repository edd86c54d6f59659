// From bytes to glyphs that are safe to show.
#pragma once

#include <string>
#include <string_view>

#include "text/charset.h"

namespace tpu {

// What is shown for the character at the front of some bytes.
struct Glyph {
    char32_t code = U' ';  // never a control character
    int bytes = 1;         // it stands for so many of them
    int cells = 1;         // 1 or 2; never more than bytes
};

// `bytes` is not empty. Control bytes get one-cell pictures, a tab a blank, bytes
// that are no character a replacement; marks without a width of their own stay
// as they are, to be drawn on a blank.
Glyph glyph_at(std::string_view bytes, Charset charset);

// A text as it may be written to a terminal that no frame is shown on.
std::string printable(std::string_view text, Charset charset);

}  // namespace tpu
