// The text, and the one way to change it.
#include "buffer/buffer.h"

namespace tpu {

bool Buffer::edit(std::uint64_t from, std::uint64_t to, std::string_view text) {
    if (modifiable) change(from, to, text.size(), [&] { text_.replace(from, to, text); });
    return modifiable;
}

bool Buffer::edit(std::uint64_t from, std::uint64_t to, const LineStore& text) {
    if (modifiable) change(from, to, text.bytes(), [&] { text_.replace(from, to, text); });
    return modifiable;
}

bool Buffer::edit(std::uint64_t from, std::uint64_t to, LineBreak) {
    if (modifiable) change(from, to, 1, [&] { text_.replace_by_break(from, to); });
    return modifiable;
}

void Buffer::replace_rows(std::uint64_t first, std::uint64_t last, LineStore text) {
    const std::uint64_t from = text_.row_start(first), to = text_.row_start(last);
    const std::uint64_t inserted = text.bytes() + (to - from) - text_.bytes();
    change(from, to, inserted, [&] { text_ = std::move(text); });
}

void Buffer::set_text(LineStore text) {
    text_ = std::move(text);
    log_.end();
}

void Buffer::recount_lines() {
    text_.recount();
    saved_lines.recount();
    for (Snapshot& snapshot : undo_stack) snapshot.lines.recount();
    for (Snapshot& snapshot : redo_stack) snapshot.lines.recount();
    log_.end();
}

}  // namespace tpu
