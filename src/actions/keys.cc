// Binding keys, and putting key maps into lists.
#include "actions/actions.h"
#include "text/ascii.h"

namespace tpu::actions {

bool define_key(TPUEditor& editor, int code, KeyBinding binding, const FindKeyMap& find_map) {
    if (code < 0) editor.set_message("Unknown key name");
    KeyMap* map = code < 0 ? nullptr : find_map();
    if (map) map->define_key(code, std::move(binding));
    return map;
}

bool undefine_key(TPUEditor& editor, int code, const FindKeyMap& find_map) {
    if (code < 0) editor.set_message("Cannot undefine key");
    KeyMap* map = code < 0 ? nullptr : find_map();
    if (map) map->undefine_key(code);
    return map;
}

void tell_of_binding(TPUEditor& editor, const KeyBinding* binding) {
    editor.set_message(binding ? "Key: " + binding->text + " " + binding->comment
                               : "Key undefined");
}

AddKeyMap add_at(TPUEditor& editor, const std::string& word) {
    std::string place = ascii::upper(word);
    if (place == "FIRST") return &KeyMapList::add_first;
    if (place == "LAST") return &KeyMapList::add_last;
    editor.set_message("Position must be FIRST or LAST");
    return nullptr;
}

}  // namespace tpu::actions
