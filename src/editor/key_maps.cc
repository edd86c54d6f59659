// Key maps and lists of the session, and the bindings it starts with.
#include <algorithm>

#include "editor/editor.h"
#include "keys/key_names.h"

namespace tpu {

namespace {

void act(TPUEditor& editor, const DefaultKey& key) {
    Buffer* buffer = editor.current_buffer;
    if (!buffer && key.needs != DefaultKey::Needs::nothing) return;
    if (key.needs == DefaultKey::Needs::character) buffer->leave_character(editor.charset);
    key.action(editor);
}

// The row lives as long as the session's vocabulary.
std::function<void()> action_of(TPUEditor& editor, const DefaultKey& key) {
    if (!key.action) return {};
    return [&editor, &key] { act(editor, key); };
}

}  // namespace

std::function<void()> default_action(TPUEditor& editor, int code) {
    for (const DefaultKey& key : editor.vocabulary.default_keys) {
        if (key.code == code) return action_of(editor, key);
    }
    return {};
}

KeyMap* TPUEditor::create_key_map(const std::string& name) {
    auto map = std::make_unique<KeyMap>(name);
    std::unique_ptr<KeyMap>& place = key_maps[name];
    auto replace_in = [&](KeyMapList& list) {
        std::replace(list.maps.begin(), list.maps.end(), place.get(), map.get());
    };
    for (const auto& [list_name, list] : key_map_lists) {
        if (place && list) replace_in(*list);
    }
    for (const auto& list : replaced_key_map_lists_) {
        if (place) replace_in(*list);
    }
    place = std::move(map);
    return place.get();
}

KeyMapList* TPUEditor::create_key_map_list(const std::string& name, KeyMap* first) {
    auto list = std::make_unique<KeyMapList>(name);
    KeyMapList* made = list.get();
    if (first) list->add_last(first);
    replaced_key_map_lists_.reserve(replaced_key_map_lists_.size() + 1);
    std::swap(key_map_lists[name], list);
    if (list) replaced_key_map_lists_.push_back(std::move(list));
    if (!current_key_map_list) current_key_map_list = made;
    return made;
}

int TPUEditor::key_name_to_code(std::string_view name) {
    return key_code_of(name);
}

void TPUEditor::define_default_keys() {
    // What start-up files have bound to texts stays bound.
    std::map<int, KeyBinding> own;
    if (const KeyMap* map = find_named(key_maps, kDefaultKeyMap)) own = map->bindings;
    KeyMap* map = create_key_map(kDefaultKeyMap);
    current_key_map_list = create_key_map_list(kDefaultKeyMapList, map);
    for (const DefaultKey& key : vocabulary.default_keys) {
        map->define_key(key.code, {key.text, action_of(*this, key), key.comment});
    }
    for (auto& [code, binding] : own) {
        if (binding.action || !binding.text.empty()) map->define_key(code, std::move(binding));
    }
}

}  // namespace tpu
