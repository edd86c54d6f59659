// Taking apart source text: its strings, and the argument of a call.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tpu {

// Goes through source text byte by byte and knows which bytes lie in strings.
class SourceScan {
  public:
    explicit SourceScan(std::string_view text) : text_(text) {}

    // Goes to the next byte, at first to the first one; false behind the last.
    bool next() {
        if (++at_ >= text_.size()) return false;
        if (text_[at_] == '"') in_string_ = !in_string_;
        return true;
    }
    // Has next() go to that place, in the same state.
    void continue_at(std::size_t place) { at_ = place - 1; }

    std::size_t at() const { return at_; }
    char byte() const { return text_[at_]; }
    // True from an opening quote on, up to the closing one but without it.
    bool in_string() const { return in_string_; }

  private:
    std::string_view text_;
    std::size_t at_ = static_cast<std::size_t>(-1);
    bool in_string_ = false;
};

// Without blanks at both ends and then, if it stands in double quotes, without
// those. Doubled quotes inside stay as they are.
std::string strip_quotes(std::string_view text);

// The text between the first "(" and the last ")", as it stands; nothing without such a pair.
std::optional<std::string_view> between_parentheses(std::string_view text);

// The trimmed text between the first "(" and the last ")"; empty without such a pair.
std::string first_call_argument(std::string_view text);

}  // namespace tpu
