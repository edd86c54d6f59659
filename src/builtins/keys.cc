// Binding keys.
#include "actions/actions.h"
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "keys/key_names.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

using Type = Value::Type;

// The code that an argument means: a code, or the name of a key.
int key_argument(Args& args, std::size_t i) {
    const Value& value = args.value(i);
    return value.is(Type::integer) ? bounded(value.integer()) : key_code_of(value.as_string());
}

// The same for more names, so that every key can be bound: a single character stands
// for itself, and all of CTRL_A to CTRL_Z and F1 to F12 are there.
int any_key(std::string_view name) {
    constexpr std::string_view kGold = "GOLD_", kControl = "CTRL_";
    std::string upper = ascii::upper(name);
    if (name.size() == 1) return static_cast<unsigned char>(name.front());
    if (upper.starts_with(kGold)) {
        int code = any_key(name.substr(kGold.size()));
        return code < 0 ? code : code + kGoldOffset;
    }
    bool letter = upper.size() == kControl.size() + 1 && ascii::is_letter(upper.back());
    if (letter && upper.starts_with(kControl)) return tpu::control(upper.back());
    for (int n = 1; n <= 12; ++n) {
        if (upper == std::string("F").append(std::to_string(n))) return kKeyF0 + n;
    }
    return key_code_of(name);
}

// The map of that name; the default one is made when there is none yet, since start-up
// files run before the default keys exist.
KeyMap* map_named(TPUEditor& editor, const std::string& name) {
    KeyMap* map = find_named(editor.key_maps, name);
    if (map || name != kDefaultKeyMap) return map;
    map = editor.create_key_map(name);
    editor.create_key_map_list(kDefaultKeyMapList, map);
    return map;
}

// The map that an argument names, or without one the default map; null with a message.
KeyMap* map_argument(Call& call, std::size_t i) {
    std::string name = call.args.count() > i ? call.args.text(i) : std::string(kDefaultKeyMap);
    KeyMap* map = map_named(editor_of(call), name);
    if (!map) {
        call.parser.record_error("TPU$_NOKEYMAP", "There is no key map " + name);
        editor_of(call).set_message(call.parser.error_text);
    }
    return map;
}

KeyMapList* list_argument(Call& call, std::size_t i) {
    const std::string name = call.args.text(i);
    KeyMapList* list = find_named(editor_of(call).key_map_lists, name);
    if (!list) {
        call.parser.record_error("TPU$_NOKEYMAPLIST", "There is no key-map list " + name);
        editor_of(call).set_message(call.parser.error_text);
    }
    return list;
}

// What a key runs: a text, or a program or learn sequence. Nothing for other values.
std::optional<KeyBinding> binding_of(Call& call, const Value& what) {
    KeyBinding binding;
    TPUEditor* editor = &editor_of(call);
    if (what.is(Type::program)) {
        binding.action = [editor, program = program_of(what)] {
            editor->parser.execute_program(program);
        };
    } else if (what.is(Type::learn)) {
        binding.action = [editor, learned = learned_of(what)] { editor->parser.replay(learned); };
    } else if ((what.is(Type::string) || what.is(Type::keyword)) &&
               !tpu_value_is_unspecified(what)) {
        binding.text = what.text();
    } else {
        wrong_type(call, "a text, a program or a learn sequence");
        return {};
    }
    return binding;
}

// DEFINE_KEY(what, key [, comment [, key map]])
void define_key(Call& call) {
    if (call.args.count() < 2)
        return editor_of(call).set_message("DEFINE_KEY(text, key [, comment [, key map]])");
    std::optional<KeyBinding> binding = binding_of(call, call.args.value(0));
    if (!binding) return;
    int code = key_argument(call.args, 1);
    if (code < 0) {
        call.parser.record_error("TPU$_BADKEY", "Unknown key name " + call.args.text(1));
    } else {
        binding->comment = call.args.count() > 2 ? call.args.text(2) : "User-defined key";
    }
    actions::define_key(editor_of(call), code, *std::move(binding),
                        [&] { return map_argument(call, 3); });
}

void undefine_key(Call& call) {
    actions::undefine_key(editor_of(call), key_argument(call.args, 0),
                          [&] { return map_argument(call, 1); });
}

// What is bound to the key that the first argument is; null for nothing.
const KeyBinding* binding_argument(Call& call) {
    const KeyMapList* list = editor_of(call).current_key_map_list;
    return list ? list->lookup(key_argument(call.args, 0)) : nullptr;
}

// LOOKUP_KEY(key [, PROGRAM or COMMENT])
Value lookup_key(Call& call) {
    const KeyBinding* binding = binding_argument(call);
    if (!binding) return tpu_unspecified();
    bool comment = ascii::upper(call.args.text(1)) == "COMMENT";
    return Value::make_str(comment ? binding->comment : binding->text);
}

void lookup_key_shown(Call& call) {
    actions::tell_of_binding(editor_of(call), binding_argument(call));
}

Value key_name(Call& call) {
    const Value& key = call.args.value(0);
    int code = key.is(Type::integer) ? bounded(key.integer()) : any_key(key.as_string());
    bool gold = ascii::upper(call.args.text(1)) == "GOLD";
    return code < 0 ? tpu_unspecified() : Value::make_int(code + (gold ? kGoldOffset : 0));
}

Value create_key_map(Call& call) {
    std::string name = call.args.text(0);
    if (call.args.count() == 0 || name.empty()) return wrong_type(call, "a name");
    editor_of(call).create_key_map(name);
    return Value::make_str(name);
}

// CREATE_KEY_MAP_LIST(name, key map, ...)
Value create_key_map_list(Call& call) {
    std::string name = call.args.text(0);
    if (call.args.count() == 0 || name.empty()) return wrong_type(call, "a name");
    KeyMapList* list = editor_of(call).create_key_map_list(name, nullptr);
    for (std::size_t i = 1; i < call.args.count(); ++i) {
        if (KeyMap* map = map_argument(call, i)) list->add_last(map);
    }
    return Value::make_str(name);
}

// ADD_KEY_MAP(list, FIRST or LAST, key map, ...)
void add_key_map(Call& call) {
    KeyMapList* list = list_argument(call, 0);
    if (!list) return;
    const actions::AddKeyMap add = actions::add_at(editor_of(call), call.args.text(1));
    for (std::size_t i = 2; add && i < call.args.count(); ++i) {
        KeyMap* map = map_argument(call, i);
        if (!map) return;
        (list->*add)(map);
    }
}

void remove_key_map(Call& call) {
    KeyMapList* list = list_argument(call, 0);
    KeyMap* map = list ? map_argument(call, 1) : nullptr;
    if (map) list->remove(map);
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "DEFINE_KEY", .statement = define_key,
     .form = "DEFINE_KEY(text, key [, comment [, key map]])",
     .help = "Bind a text, a program or a learn sequence to a key, given by its name, character or code."},
    {.name = "UNDEFINE_KEY", .statement = undefine_key, .form = "UNDEFINE_KEY(key [, key map])",
     .help = "Take the binding of a key away."},
    {.name = "LOOKUP_KEY", .statement = lookup_key_shown, .function = lookup_key,
     .form = "LOOKUP_KEY(key [, PROGRAM or COMMENT])", .help = "The text or the comment that is bound to a key."},
    {.name = "KEY_NAME", .statement = shown<key_name>, .function = key_name, .form = "KEY_NAME(key [, GOLD])",
     .help = "The code of a key, given by its name or character."},
    {.name = "CREATE_KEY_MAP", .function = create_key_map, .form = "CREATE_KEY_MAP(name)",
     .help = "Make an empty key map."},
    {.name = "CREATE_KEY_MAP_LIST", .function = create_key_map_list,
     .form = "CREATE_KEY_MAP_LIST(name, key map, ...)", .help = "Make a list of key maps, searched in this order."},
    {.name = "ADD_KEY_MAP", .statement = add_key_map,
     .form = "ADD_KEY_MAP(list, FIRST or LAST, key map, ...)", .help = "Add key maps to a list."},
    {.name = "REMOVE_KEY_MAP", .statement = remove_key_map, .form = "REMOVE_KEY_MAP(list, key map)",
     .help = "Take a key map out of a list."},
};
// clang-format on

}  // namespace

std::span<const Builtin> keys() {
    return kRows;
}

}  // namespace tpu::builtins
