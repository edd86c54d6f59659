// What the arguments of a built-in function say.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "value/value.h"

namespace tpu {

// The argument at `index`, from 0; the unspecified value beyond the last one.
inline const Value& argument_at(std::span<const Value> arguments, std::size_t index) {
    static const Value kUnspecified = tpu_unspecified();
    return index < arguments.size() ? arguments[index] : kUnspecified;
}

// The text of a value as Value::as_string gives it, but without a copy of the text of
// a string or keyword. Good as long as the value stays where and as it is.
class TextOf {
  public:
    explicit TextOf(const Value& value)
        : rendering_(in_place(value) ? std::string() : value.as_string()),
          view_(in_place(value) ? std::string_view(value.text()) : rendering_) {}
    explicit TextOf(const Value&&) = delete;  // would not outlive this line
    TextOf(const TextOf&) = delete;
    TextOf& operator=(const TextOf&) = delete;

    std::string_view view() const { return view_; }
    operator std::string_view() const { return view_; }

  private:
    static bool in_place(const Value& value) {
        return value.is(Value::Type::string) || value.is(Value::Type::keyword);
    }

    std::string rendering_;
    std::string_view view_;
};

}  // namespace tpu
