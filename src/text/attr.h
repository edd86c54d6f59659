// Display attributes of a character cell, as bits that combine.
#pragma once

#include <cstdint>

namespace tpu {

enum class Attr : std::uint8_t {
    none = 0,
    reverse = 1,
    dim = 2,
    bold = 4,
    underline = 8,
    blink = 16,
    standout = 32,
};

constexpr Attr operator|(Attr a, Attr b) {
    return static_cast<Attr>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr Attr& operator|=(Attr& a, Attr b) {
    return a = a | b;
}
constexpr bool has(Attr set, Attr bit) {
    return (static_cast<unsigned>(set) & static_cast<unsigned>(bit)) != 0;
}

}  // namespace tpu
