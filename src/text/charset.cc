#include "text/charset.h"

namespace tpu {

std::size_t utf8_length(unsigned char first) {
    if (first < 0x80) return 1;
    if (first < 0xc2) return 0;  // continuation bytes and overlong two-byte forms
    if (first < 0xe0) return 2;
    if (first < 0xf0) return 3;
    return first < 0xf5 ? 4 : 0;
}

Decoded decode_utf8(std::string_view bytes) {
    if (bytes.empty()) return {};
    auto first = static_cast<unsigned char>(bytes[0]);
    std::size_t size = utf8_length(first);
    if (size == 0 || size > bytes.size()) return {};
    if (size == 1) return {first, 1};
    char32_t code = first & (0x7fu >> size);
    for (std::size_t i = 1; i < size; ++i) {
        auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xc0) != 0x80) return {};
        code = code << 6 | (byte & 0x3fu);
    }
    static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    bool surrogate = code >= 0xd800 && code < 0xe000;
    if (code < kLeast[size] || code > 0x10ffff || surrogate) return {};
    return {code, size};
}

std::size_t cut_character(std::string_view bytes) {
    for (std::size_t size = 1; size < kLongestCharacter && size <= bytes.size(); ++size) {
        auto byte = static_cast<unsigned char>(bytes[bytes.size() - size]);
        if ((byte & 0xc0) != 0x80) return utf8_length(byte) > size ? size : 0;
    }
    return 0;
}

std::string encode_utf8(char32_t code) {
    auto continuation = [&](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3f)); };
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xc0 | code >> 6), continuation(0)};
    if (code < 0x10000) {
        return {static_cast<char>(0xe0 | code >> 12), continuation(6), continuation(0)};
    }
    return {static_cast<char>(0xf0 | code >> 18), continuation(12), continuation(6),
            continuation(0)};
}

}  // namespace tpu
