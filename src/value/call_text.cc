#include "value/call_text.h"

#include "text/ascii.h"

namespace tpu {

std::string strip_quotes(std::string_view text) {
    text = ascii::trim(text);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, text.size() - 2);
    }
    return std::string(text);
}

std::optional<std::string_view> between_parentheses(std::string_view text) {
    constexpr std::size_t kNone = std::string_view::npos;
    std::size_t open = text.find('('), close = text.rfind(')');
    if (open == kNone || close == kNone || close < open) return {};
    return text.substr(open + 1, close - open - 1);
}

std::string first_call_argument(std::string_view text) {
    return std::string(ascii::trim(between_parentheses(text).value_or("")));
}

}  // namespace tpu
