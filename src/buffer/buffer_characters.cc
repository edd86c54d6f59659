// What the native keys do with characters that may have several bytes. A cursor
// that stands inside one counts as standing before it.
#include "buffer/buffer.h"
#include "text/characters.h"

namespace tpu {

namespace {

std::uint64_t size_before(const Buffer& buffer, Charset charset) {
    Position here{buffer.cursor_row, buffer.cursor_column};
    if (here.column > buffer.text().length(here.row)) return 1;  // a free cursor past the text
    return character_size_before(buffer.text(), here, charset);
}

}  // namespace

bool Buffer::leave_character(Charset charset) {
    clamp_cursor();
    if (charset == Charset::bytes) return false;
    std::uint64_t start = character_start(text_, {cursor_row, cursor_column});
    if (start == cursor_column) return false;
    cursor_column = start;
    return true;
}

void Buffer::move_character_left(Charset charset) {
    if (leave_character(charset)) return;
    std::uint64_t size = size_before(*this, charset);
    move_horizontal(size == 0 ? -1 : -static_cast<int>(size));
}

void Buffer::move_character_right(Charset charset) {
    leave_character(charset);
    std::uint64_t size = character_size(text_, {cursor_row, cursor_column}, charset);
    move_horizontal(size == 0 ? 1 : static_cast<int>(size));
}

void Buffer::erase_character_left(Charset charset) {
    leave_character(charset);
    std::uint64_t size = size_before(*this, charset);
    erase_n_characters(size == 0 ? -1 : -static_cast<int>(size));
}

void Buffer::erase_character_at_cursor(Charset charset) {
    leave_character(charset);
    std::uint64_t size = character_size(text_, {cursor_row, cursor_column}, charset);
    erase_n_characters(size == 0 ? 1 : static_cast<int>(size));
}

}  // namespace tpu
