// Byte-wise character classes and case. The locale never changes what these say.
#pragma once

#include <string>
#include <string_view>

namespace tpu::ascii {

// Space, tab, line feed, vertical tab, form feed and carriage return.
constexpr bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char to_upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr char to_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool is_letter(char c) {
    return to_lower(c) != to_upper(c);
}

inline std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = to_upper(c);
    return result;
}

// The text without leading and trailing blanks.
inline std::string_view trim(std::string_view text) {
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace tpu::ascii
