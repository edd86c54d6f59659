#include "editor/line_input.h"

#include "keys/key_code.h"

namespace tpu {

namespace {

constexpr std::size_t kLongestLine = 2047;  // bytes

}  // namespace

bool LineInput::key(int code) {
    switch (code) {
        case '\n':
        case '\r':
        case kKeyEnter: return true;
        case kKeyBackspace:
        case 127:
        case '\b': erase_last_character(); return false;
        case control('U'): text_.clear(); return false;
        default:
            if (code >= 32 && code <= 255) append(static_cast<char>(code));
            return false;
    }
}

void LineInput::paste(std::string_view text) {
    for (char byte : text.substr(0, text.find_first_of("\r\n"))) append(byte);
}

void LineInput::append(char byte) {
    if (text_.size() < kLongestLine) text_ += byte;
}

void LineInput::erase_last_character() {
    if (text_.empty()) return;
    std::size_t size = 1;
    for (std::size_t n = 2; charset_ == Charset::utf8 && n <= kLongestCharacter; ++n) {
        if (n > text_.size()) break;
        if (decode_utf8(std::string_view(text_).substr(text_.size() - n)).size == n) size = n;
    }
    text_.resize(text_.size() - size);
}

}  // namespace tpu
