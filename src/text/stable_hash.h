// A number for a text.
#pragma once

#include <cstdint>
#include <string_view>

namespace tpu {

// FNV-1a: the same on every machine and in every version.
constexpr std::uint64_t stable_hash(std::string_view text) {
    std::uint64_t value = 14695981039346656037U;
    for (char c : text) {
        value = (value ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
    return value;
}

}  // namespace tpu
