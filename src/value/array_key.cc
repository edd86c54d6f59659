#include "value/array_key.h"

namespace tpu {

ArrayKey ArrayKey::from_value(const Value& value) {
    if (value.is(Value::Type::integer)) return of_integer(value.integer());
    std::string rendering;
    return of_string(text_from(value, rendering));
}

std::string_view ArrayKey::text_from(const Value& value, std::string& rendering) {
    std::string_view text = value.text();
    if (text.empty()) text = rendering = value.as_string();
    return text.empty() ? "?" : text;
}

Value ArrayKey::to_value() const {
    return kind == Kind::integer ? Value::make_int(integer) : Value::make_str(text);
}

}  // namespace tpu
