#include "keys/key_map.h"

namespace tpu {

void KeyMap::define_key(int code, KeyBinding binding) {
    bindings.insert_or_assign(code, std::move(binding));
}

const KeyBinding* KeyMap::lookup(int code) const {
    auto found = bindings.find(code);
    return found == bindings.end() ? nullptr : &found->second;
}

void KeyMap::undefine_key(int code) {
    bindings.erase(code);
}

const KeyBinding* KeyMapList::lookup(int code) const {
    for (const KeyMap* map : maps) {
        if (!map) continue;
        if (const KeyBinding* binding = map->lookup(code)) return binding;
    }
    return nullptr;
}

}  // namespace tpu
