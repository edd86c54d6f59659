#include "text/find_bytes.h"

#include <cstring>

namespace tpu {

namespace {

constexpr std::size_t kBlock = 128;

// True when some byte of the block is the needle's first and the byte `last` further
// on its last. Written so that the compiler compares many bytes at a time.
bool may_begin_here(const char* block, std::size_t last, char first_byte, char last_byte) {
    unsigned char any = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
        any |=
            static_cast<unsigned char>((block[i] == first_byte) & (block[i + last] == last_byte));
    }
    return any != 0;
}

}  // namespace

std::size_t find_bytes(std::string_view text, std::string_view needle) {
    if (needle.size() == 1) return text.find(needle[0]);
    const std::size_t last = needle.size() - 1;
    std::size_t at = 0, compared = 0;
    while (at + kBlock + last <= text.size()) {
        const char* block = text.data() + at;
        if (may_begin_here(block, last, needle.front(), needle.back())) {
            for (std::size_t i = 0; i < kBlock; ++i) {
                if (block[i] != needle.front() || block[i + last] != needle.back()) continue;
                if (std::memcmp(block + i, needle.data(), needle.size()) == 0) return at + i;
                compared += needle.size();
            }
            // Both bytes are common here: memmem does not depend on them.
            if (compared > at + kBlock) break;
        }
        at += kBlock;
    }
    if (at >= text.size()) return std::string_view::npos;
    const void* hit = memmem(text.data() + at, text.size() - at, needle.data(), needle.size());
    if (!hit) return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(hit) - text.data());
}

}  // namespace tpu
