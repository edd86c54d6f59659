// Key maps and lists of the session, and the bindings it starts with.
#include "editor/default_keys.h"

#include <algorithm>

#include "editor/editor.h"
#include "keys/key_names.h"

namespace tpu {

namespace {

Buffer& buffer(TPUEditor& editor) {
    return *editor.current_buffer;
}

void toggle_insert(TPUEditor& editor) {
    bool& insert = buffer(editor).insert_mode;
    insert = !insert;
    editor.set_message(insert ? "INSERT mode" : "OVERSTRIKE mode");
}

void go_to_line_end(TPUEditor& editor) {
    buffer(editor).cursor_column = buffer(editor).line_length();
}

void split_line(TPUEditor& editor) {
    if (!buffer(editor).modifiable) return;
    buffer(editor).leave_character(editor.charset);
    buffer(editor).split_line();
}

void leave(TPUEditor& editor) {
    editor.running = false;
}

void select(TPUEditor& editor) {
    buffer(editor).leave_character(editor.charset);
    buffer(editor).select();
    editor.set_message("SELECT");
}

void cut(TPUEditor& editor) {
    buffer(editor).leave_character(editor.charset);
    editor.cut_selection();
}

void split_window(TPUEditor& editor) {
    editor.split_window_horizontal();
    editor.set_message("Window split");
}

void next_window(TPUEditor& editor) {
    editor.next_window();
    editor.set_message("Next window");
}

void gold(TPUEditor& editor) {
    editor.set_message("GOLD");
    editor.gold_pending = true;
}

// Lines that a screenful moves by.
int page(const TPUEditor& editor) {
    return std::max(editor.rows - 3, 1);
}

constexpr int kGold = kGoldOffset;

// clang-format off
constexpr DefaultKey kDefaultKeys[] = {
    {kKeyLeft, [](TPUEditor& e) { buffer(e).move_character_left(e.charset); }, "", "MOVE_HORIZONTAL(-1)"},
    {kKeyRight, [](TPUEditor& e) { buffer(e).move_character_right(e.charset); }, "", "MOVE_HORIZONTAL(1)"},
    {kKeyUp, [](TPUEditor& e) { buffer(e).move_vertical(-1); }, "", "MOVE_VERTICAL(-1)"},
    {kKeyDown, [](TPUEditor& e) { buffer(e).move_vertical(1); }, "", "MOVE_VERTICAL(1)"},
    {kKeyBackspace, [](TPUEditor& e) { buffer(e).erase_character_left(e.charset); }, "", "ERASE_CHARACTER(-1)"},
    {127, [](TPUEditor& e) { buffer(e).erase_character_left(e.charset); }, "", "ERASE_CHARACTER(-1)"},
    {kKeyDelete, [](TPUEditor& e) { buffer(e).erase_character_at_cursor(e.charset); }, "", "ERASE_CHARACTER(1)"},
    {kKeyHome, [](TPUEditor& e) { buffer(e).cursor_column = 0; }, "", "LINE_BEGIN"},
    {kKeyEnd, go_to_line_end, "", "LINE_END"},
    {kKeyInsert, toggle_insert, "", "TOGGLE INSERT/OVERSTRIKE"},
    {'\n', split_line, "", "SPLIT_LINE"},
    {'\r', split_line, "", "SPLIT_LINE"},
    {'\t', [](TPUEditor& e) { buffer(e).insert_tab(e.charset); }, "", "INSERT TAB"},
    {control('X'), leave, "", "EXIT"},
    {control('S'), [](TPUEditor& e) { e.save_current(); }, "", "WRITE_FILE"},
    {control('F'), [](TPUEditor& e) { e.prompt_find(); }, "", "SEARCH"},
    {control('Z'), [](TPUEditor& e) { e.command_mode(); }, "", "COMMAND MODE"},
    {control('V'), select, "", "SELECT"},
    {control('W'), cut, "", "MOVE_TEXT SELECT_RANGE"},
    {control('Y'), [](TPUEditor& e) { e.paste(); }, "", "COPY_TEXT paste_buffer"},
    {control('O'), split_window, "", "SPLIT_WINDOW"},
    {control('N'), next_window, "", "NEXT_WINDOW"},
    {kKeyF0 + 1, gold, "", "GOLD"},
    {kKeyF0 + 2, nullptr, "HELP", "HELP"},
    {kKeyF0 + 3, nullptr, "FIND", "FIND"},
    {kKeyF0 + 4, nullptr, "DELETE", "DELETE"},
    {kKeyNextPage, [](TPUEditor& e) { buffer(e).move_vertical(page(e)); }, "", "NEXT SCREEN"},
    {kKeyPreviousPage, [](TPUEditor& e) { buffer(e).move_vertical(-page(e)); }, "", "PREVIOUS SCREEN"},
    {kGold + 'E', nullptr, "END", "GOLD-E end of buffer"},
    {kGold + 'T', nullptr, "TOP", "GOLD-T top of buffer"},
    {kGold + 'F', nullptr, "FIND", "GOLD-F find"},
    {kGold + 'W', nullptr, "WRITE FILE", "GOLD-W write"},
    {kGold + 'Q', nullptr, "QUIT", "GOLD-Q quit"},
    {kGold + 'U', nullptr, "UNDO", "GOLD-U undo"},
    {kGold + 'R', nullptr, "REDO", "GOLD-R redo"},
};
// clang-format on

std::function<void()> action_of(TPUEditor& editor, const DefaultKey& key) {
    if (!key.action) return {};
    // Without a buffer one can only leave.
    return [&editor, action = key.action] {
        if (editor.current_buffer || action == leave) action(editor);
    };
}

}  // namespace

std::span<const DefaultKey> default_keys() {
    return kDefaultKeys;
}

std::function<void()> default_action(TPUEditor& editor, int code) {
    for (const DefaultKey& key : kDefaultKeys) {
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
    if (auto earlier = key_maps.find("TPU$KEY_MAP"); earlier != key_maps.end()) {
        own = earlier->second->bindings;
    }
    KeyMap* map = create_key_map("TPU$KEY_MAP");
    current_key_map_list = create_key_map_list("TPU$KEY_MAP_LIST", map);
    for (const DefaultKey& key : kDefaultKeys) {
        map->define_key(key.code, {key.text, action_of(*this, key), key.comment});
    }
    for (auto& [code, binding] : own) {
        if (binding.action || !binding.text.empty()) map->define_key(code, std::move(binding));
    }
}

}  // namespace tpu
