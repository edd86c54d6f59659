// Commands on keys and key maps.
//
// Deliberate: bindings are made and taken away in the first map of the current list,
// but looked up in all of its maps.
#include "actions/actions.h"
#include "commands/command_words.h"
#include "editor/editor.h"
#include "keys/key_names.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

// The first map of the current list; null, with a message, when there is none.
KeyMap* first_map(TPUEditor& editor, const char* otherwise) {
    KeyMapList* list = editor.current_key_map_list;
    if (list && !list->maps.empty()) return list->maps.front();
    editor.set_message(otherwise);
    return nullptr;
}

struct ListAndMap {
    KeyMapList* list;
    KeyMap* map;
};

// Both, or neither and a message.
std::optional<ListAndMap> list_and_map(TPUEditor& editor, const std::string& list,
                                       const std::string& map) {
    ListAndMap found{find_named(editor.key_map_lists, list), find_named(editor.key_maps, map)};
    if (found.list && found.map) return found;
    editor.set_message("Unknown key map/list");
    return std::nullopt;
}

void define_key(TPUEditor& editor, Line line) {
    if (line.words.size() < 3) return editor.set_message("DEFINE_KEY key procedure-text");
    std::string text(line.from_word(2));
    bool defined =
        actions::define_key(editor, key_code_of(line.words[1]), {text, {}, "User-defined key"},
                            [&] { return first_map(editor, "No active key map"); });
    if (defined) editor.set_message("Defined key " + line.words[1] + " => " + text);
}

void add_key_map(TPUEditor& editor, Line line) {
    if (line.words.size() < 4) return editor.set_message("ADD_KEY_MAP list FIRST|LAST map");
    std::optional<ListAndMap> found = list_and_map(editor, line.words[1], line.words[3]);
    if (!found) return;
    const actions::AddKeyMap add = actions::add_at(editor, line.words[2]);
    if (!add) return;
    (found->list->*add)(found->map);
    editor.set_message("Added key map");
}

void remove_key_map(TPUEditor& editor, Line line) {
    if (line.words.size() < 3) return editor.set_message("REMOVE_KEY_MAP list map");
    std::optional<ListAndMap> found = list_and_map(editor, line.words[1], line.words[2]);
    if (!found) return;
    found->list->remove(found->map);
    editor.set_message("Removed key map");
}

void lookup_key(TPUEditor& editor, Line line) {
    if (line.words.size() < 2) return editor.set_message("LOOKUP_KEY key");
    const KeyMapList* list = editor.current_key_map_list;
    actions::tell_of_binding(editor, list ? list->lookup(key_code_of(line.words[1])) : nullptr);
}

void create_key_map(TPUEditor& editor, Line line) {
    editor.create_key_map(line.words[1]);
    editor.set_message("Created key map " + line.words[1]);
}

void create_key_map_list(TPUEditor& editor, Line line) {
    editor.create_key_map_list(line.words[1], nullptr);
    editor.set_message("Created key map list " + line.words[1]);
}

void key_name(TPUEditor& editor, Line line) {
    int code = key_code_of(line.words[1]);
    editor.set_message("KEY_NAME = " + std::to_string(code));
}

void last_key(TPUEditor& editor, Line) {
    editor.set_message("LAST_KEY = " + std::to_string(editor.last_key));
}

void read_key(TPUEditor& editor, Line) {
    editor.set_message("Press key...");
    int code = editor.read_one_key("Press key...").key;
    editor.set_message("READ_KEY = " + std::to_string(code));
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "DEFINE_KEY", .run = define_key,
     .form = "DEFINE_KEY key text", .help = "Bind a statement or a command to a key.", .without_buffer = true},
    {.words = "UNDEFINE_KEY", .run = [](TPUEditor& e, Line l) { undefine_key(e, l.word(1)); },
     .form = "UNDEFINE_KEY key", .help = "Take the binding of a key away.", .without_buffer = true},
    {.words = "LOOKUP_KEY", .run = lookup_key,
     .form = "LOOKUP_KEY key", .help = "Show what is bound to a key.", .without_buffer = true},
    {.words = "KEY_NAME", .run = key_name, .form = "KEY_NAME key",
     .help = "Show the code of the key of that name.", .least = 2, .without_buffer = true},
    {.words = "LAST_KEY", .run = last_key, .form = "LAST_KEY",
     .help = "Show the code of the key that was pressed last.", .without_buffer = true},
    {.words = "READ_KEY", .run = read_key, .form = "READ_KEY",
     .help = "Wait for a key and show its code.", .without_buffer = true},
    {.words = "CREATE_KEY_MAP", .run = create_key_map, .form = "CREATE_KEY_MAP name",
     .help = "Make an empty key map.", .least = 2, .without_buffer = true},
    {.words = "CREATE_KEY_MAP_LIST", .run = create_key_map_list, .form = "CREATE_KEY_MAP_LIST name",
     .help = "Make an empty list of key maps.", .least = 2, .without_buffer = true},
    {.words = "ADD_KEY_MAP", .run = add_key_map,
     .form = "ADD_KEY_MAP list FIRST|LAST map", .help = "Add a key map to a list.",
     .without_buffer = true, .about = About::key_map_list},
    {.words = "REMOVE_KEY_MAP", .run = remove_key_map,
     .form = "REMOVE_KEY_MAP list map", .help = "Take a key map out of a list.",
     .without_buffer = true, .about = About::key_map_list},
};
// clang-format on

}  // namespace

void undefine_key(TPUEditor& editor, const std::string& name) {
    if (name.empty()) return editor.set_message("UNDEFINE_KEY key");
    bool undefined = actions::undefine_key(
        editor, key_code_of(name), [&] { return first_map(editor, "Cannot undefine key"); });
    if (undefined) editor.set_message("Key undefined");
}

std::span<const Command> keys() {
    return kRows;
}

}  // namespace tpu::commands
