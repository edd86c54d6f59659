// Commands on keys and key maps.
//
// Deliberate: bindings are made and taken away in the first map of the current list,
// but looked up in all of its maps.
#include "commands/command_words.h"
#include "editor/editor.h"
#include "keys/key_code.h"
#include "text/ascii.h"

namespace tpu::commands {

namespace {

using Words = const std::vector<std::string>&;

KeyMap* first_map(TPUEditor& editor) {
    KeyMapList* list = editor.current_key_map_list;
    return list && !list->maps.empty() ? list->maps.front() : nullptr;
}

template <class T>
T* named(const std::map<std::string, std::unique_ptr<T>>& owned, const std::string& name) {
    auto found = owned.find(name);
    return found == owned.end() ? nullptr : found->second.get();
}

struct ListAndMap {
    KeyMapList* list;
    KeyMap* map;
};

// Both, or neither and a message.
std::optional<ListAndMap> list_and_map(TPUEditor& editor, const std::string& list,
                                       const std::string& map) {
    ListAndMap found{named(editor.key_map_lists, list), named(editor.key_maps, map)};
    if (found.list && found.map) return found;
    editor.set_message("Unknown key map/list");
    return std::nullopt;
}

void define_key(TPUEditor& editor, Words words, const std::string& line) {
    if (words.size() < 3) return editor.set_message("DEFINE_KEY key procedure-text");
    int code = TPUEditor::key_name_to_code(words[1]);
    if (code == kNoKey) return editor.set_message("Unknown key name");
    KeyMap* map = first_map(editor);
    if (!map) return editor.set_message("No active key map");
    std::string text(CommandLine(line, words).from_word(2));
    map->define_key(code, {text, {}, "User-defined key"});
    editor.set_message("Defined key " + words[1] + " => " + text);
}

void add_key_map(TPUEditor& editor, Words words) {
    if (words.size() < 4) return editor.set_message("ADD_KEY_MAP list FIRST|LAST map");
    std::optional<ListAndMap> found = list_and_map(editor, words[1], words[3]);
    if (!found) return;
    std::string place = ascii::upper(words[2]);
    if (place == "FIRST") {
        found->list->add_first(found->map);
    } else if (place == "LAST") {
        found->list->add_last(found->map);
    } else {
        return editor.set_message("Position must be FIRST or LAST");
    }
    editor.set_message("Added key map");
}

void remove_key_map(TPUEditor& editor, Words words) {
    if (words.size() < 3) return editor.set_message("REMOVE_KEY_MAP list map");
    std::optional<ListAndMap> found = list_and_map(editor, words[1], words[2]);
    if (!found) return;
    found->list->remove(found->map);
    editor.set_message("Removed key map");
}

void lookup_key(TPUEditor& editor, Words words) {
    if (words.size() < 2) return editor.set_message("LOOKUP_KEY key");
    int code = TPUEditor::key_name_to_code(words[1]);
    const KeyMapList* list = editor.current_key_map_list;
    const KeyBinding* found = list ? list->lookup(code) : nullptr;
    editor.set_message(found ? "Key: " + found->text + " " + found->comment : "Key undefined");
}

using Line = const CommandLine&;

void create_key_map(TPUEditor& editor, Line line) {
    editor.create_key_map(line.words[1]);
    editor.set_message("Created key map " + line.words[1]);
}

void create_key_map_list(TPUEditor& editor, Line line) {
    editor.create_key_map_list(line.words[1], nullptr);
    editor.set_message("Created key map list " + line.words[1]);
}

void key_name(TPUEditor& editor, Line line) {
    int code = TPUEditor::key_name_to_code(line.words[1]);
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
    {.words = "DEFINE_KEY", .run = [](TPUEditor& e, Line l) { define_key(e, l.words, l.line); },
     .form = "DEFINE_KEY key text", .help = "Bind a statement or a command to a key.", .without_buffer = true},
    {.words = "UNDEFINE_KEY", .run = [](TPUEditor& e, Line l) { undefine_key(e, l.words); },
     .form = "UNDEFINE_KEY key", .help = "Take the binding of a key away.", .without_buffer = true},
    {.words = "LOOKUP_KEY", .run = [](TPUEditor& e, Line l) { lookup_key(e, l.words); },
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
    {.words = "ADD_KEY_MAP", .run = [](TPUEditor& e, Line l) { add_key_map(e, l.words); },
     .form = "ADD_KEY_MAP list FIRST|LAST map", .help = "Add a key map to a list.",
     .without_buffer = true, .about = About::key_map_list},
    {.words = "REMOVE_KEY_MAP", .run = [](TPUEditor& e, Line l) { remove_key_map(e, l.words); },
     .form = "REMOVE_KEY_MAP list map", .help = "Take a key map out of a list.",
     .without_buffer = true, .about = About::key_map_list},
};
// clang-format on

}  // namespace

void undefine_key(TPUEditor& editor, Words words) {
    if (words.size() < 2) return editor.set_message("UNDEFINE_KEY key");
    int code = TPUEditor::key_name_to_code(words[1]);
    KeyMap* map = first_map(editor);
    if (code == kNoKey || !map) return editor.set_message("Cannot undefine key");
    map->undefine_key(code);
    editor.set_message("Key undefined");
}

std::span<const Command> keys() {
    return kRows;
}

}  // namespace tpu::commands
