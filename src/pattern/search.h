// The searches of a buffer.
//
// They move its cursor to what they found, those for a pattern if they are told to. `work`
// can stop them; null: nobody does.
#pragma once

#include <optional>
#include <string_view>

#include "buffer/buffer.h"

namespace tpu {

struct TPUPattern;

// The first match that begins at the cursor or behind it; with `wrap` the rows before the
// cursor's follow.
std::optional<Range> search_pattern_forward(Buffer& buffer, const TPUPattern& pattern,
                                            bool move_cursor, bool wrap, Work* work = nullptr);
// The last match that begins before the cursor, each within one line.
std::optional<Range> search_pattern_backward(Buffer& buffer, const TPUPattern& pattern,
                                             bool move_cursor, Work* work = nullptr);

// The same bytes from just past the cursor, from the top, or the one and then the other with
// no byte looked at twice. False: not found, and the cursor stays.
bool search_forward(Buffer& buffer, std::string_view text);
bool search_from_top(Buffer& buffer, std::string_view text);
bool search_round(Buffer& buffer, std::string_view text);

}  // namespace tpu
