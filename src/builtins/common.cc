#include "builtins/common.h"

#include "buffer/marker.h"
#include "editor/editor.h"
#include "pattern/join.h"
#include "pattern/pattern_text.h"

namespace tpu::builtins {

namespace {

void fail(Call& call, const char* status, const std::string& text) {
    call.parser.record_error(status, text);
    if (call.is_statement) editor_of(call).set_message(text);
    call.told = call.is_statement;
}

}  // namespace

Value wrong_type(Call& call, std::string_view wanted) {
    fail(call, "TPU$_INVPARAM", std::string(call.name) + " needs " + std::string(wanted));
    return tpu_unspecified();
}

void tell_of_end(Call& call, const Work& work) {
    if (work.end != Work::End::too_large) return;
    fail(call, "TPU$_STRTOOLARGE", std::string(call.name) + Work::kTooLarge);
}

void show_value(Call& call, const Value& value) {
    if (!call.told) editor_of(call).set_message(value.as_string());
}

TPUPattern pattern_argument(Args& args, std::size_t i, std::string_view written) {
    const Value& value = args.value(i);
    if (value.is(Value::Type::pattern) || value.is(Value::Type::string)) {
        return value_to_pattern(value);
    }
    return parse_pattern_expression(written);
}

}  // namespace tpu::builtins
