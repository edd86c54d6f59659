// SET and GET_INFO: attributes of buffers, windows and the session.
#include "attributes/attribute.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "editor/version.h"
#include "text/ascii.h"
#include "value/array.h"

namespace tpu::builtins {

namespace {

using Type = Value::Type;

void set(Call& call) {
    std::string keyword = ascii::upper(call.args.raw(0));
    if (set_attribute(editor_of(call), keyword, call.args)) return;
    editor_of(call).set_message("SET: unknown attribute " + keyword);
}

constexpr const char* kPlatform = "MACOS";  // what programs expect, wherever this one runs

Value system_info(std::string_view item) {
    if (item == "VERSION") return Value::make_int(1);
    if (item == "UPDATE") return Value::make_int(0);
    if (item == "PLATFORM") return Value::make_str(kPlatform);
    return tpu_unspecified();
}

// Deliberate: the version is a text here, and an integer for SYSTEM.
std::optional<Value> release_info(std::string_view item) {
    if (item == "VERSION") return Value::make_str(tpu_version_string());
    if (item == "RELEASE_DATE") return Value::make_str(kReleaseDate);
    if (item == "PLATFORM") return Value::make_str(kPlatform);
    return {};
}

Value get_info_value(Call& call) {
    if (call.args.count() < 2) return tpu_unspecified();
    const Value& object = call.args.value(0);
    std::string item = ascii::upper(call.args.text(1));
    if (object.is(Type::string) || object.is(Type::keyword)) {
        std::string word = ascii::upper(object.text());
        if (word == "SYSTEM") return system_info(item);
        if (word == "ARRAY") return tpu_array_list_walk(item);
    }
    if (object.is(Type::array)) return tpu_array_walk(object.array(), item);
    if (object.is(Type::integer) && object.integer() == 0) {
        if (std::optional<Value> info = release_info(item)) return *info;
    }
    return get_info(editor_of(call), object, item);
}

void get_info_shown(Call& call) {
    editor_of(call).set_message(get_info_value(call).as_string());
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "SET", .statement = set, .form = "SET(keyword [, buffer] [, value, ...])",
     .help = "Change an attribute of the current or the given buffer, of a window, or of the editor."},
    {.name = "GET_INFO", .statement = get_info_shown, .function = get_info_value,
     .form = "GET_INFO(object, item)", .help = "An attribute of an object; unspecified when it has none of that name."},
};
// clang-format on

}  // namespace

std::span<const Builtin> attributes() {
    return kRows;
}

}  // namespace tpu::builtins
