// Key bindings: maps from key codes to what a key does, and stacks of maps.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tpu {

// What a key does: an action, or else a text to run. With neither it is unbound.
struct KeyBinding {
    std::string text;
    std::function<void()> action;
    std::string comment;  // for people
};

class KeyMap {
  public:
    explicit KeyMap(std::string map_name) : name(std::move(map_name)) {}

    std::string name;
    std::map<int, KeyBinding> bindings;  // by key code

    // Replaces any binding of the code.
    void define_key(int code, KeyBinding binding);
    // The code's binding, or null.
    const KeyBinding* lookup(int code) const;
    void undefine_key(int code);
};

class KeyMapList {
  public:
    explicit KeyMapList(std::string list_name) : name(std::move(list_name)) {}

    std::string name;
    std::vector<KeyMap*> maps;  // not owned; searched from the front; entries may be null

    void add_first(KeyMap* map) { maps.insert(maps.begin(), map); }
    void add_last(KeyMap* map) { maps.push_back(map); }
    // Removes every occurrence of the map.
    void remove(KeyMap* map) { std::erase(maps, map); }
    // The first map's binding for the code, or null.
    const KeyBinding* lookup(int code) const;
};

// What a session begins with.
inline constexpr const char* kDefaultKeyMap = "TPU$KEY_MAP";
inline constexpr const char* kDefaultKeyMapList = "TPU$KEY_MAP_LIST";

// Of key maps, or of lists of them, the one of that name; null when there is none.
template <class T>
T* find_named(const std::map<std::string, std::unique_ptr<T>>& owned, const std::string& name) {
    auto found = owned.find(name);
    return found == owned.end() ? nullptr : found->second.get();
}

}  // namespace tpu
