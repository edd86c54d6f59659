// How bytes make characters: one each, or as UTF-8.
//
// Columns count bytes whatever the charset; it decides only what a person sees
// and what the native editing keys treat as one character.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tpu {

enum class Charset { bytes, utf8 };

inline constexpr std::size_t kLongestCharacter = 4;  // bytes

// A decoded character and how many bytes it took; size 0 when the bytes at the
// front are no valid UTF-8 sequence (overlong forms, surrogates, cut ones).
struct Decoded {
    char32_t code = 0;
    std::size_t size = 0;
};
Decoded decode_utf8(std::string_view bytes);

// The UTF-8 sequence of a character.
std::string encode_utf8(char32_t code);

// How many of the bytes at the end begin a sequence whose other bytes are still to come.
std::size_t cut_character(std::string_view bytes);

// Bytes that a sequence with this first byte has: 1 to 4, or 0 for a byte that begins none.
std::size_t utf8_length(unsigned char first);

}  // namespace tpu
