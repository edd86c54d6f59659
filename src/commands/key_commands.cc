// Commands on keys and key maps.
//
// Deliberate: bindings are made and taken away in the first map of the current list,
// but looked up in all of its maps.
#include "commands/command_words.h"
#include "editor/editor.h"
#include "keys/key_code.h"
#include "text/ascii.h"

namespace tpu {

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

}  // namespace

void TPUEditor::define_key_command(Words words, const std::string& line) {
    if (words.size() < 3) return set_message("DEFINE_KEY key procedure-text");
    int code = key_name_to_code(words[1]);
    if (code == kNoKey) return set_message("Unknown key name");
    KeyMap* map = first_map(*this);
    if (!map) return set_message("No active key map");
    std::string text(CommandLine(line, words).from_word(2));
    map->define_key(code, {text, {}, "User-defined key"});
    set_message("Defined key " + words[1] + " => " + text);
}

void TPUEditor::add_key_map_command(Words words) {
    if (words.size() < 4) return set_message("ADD_KEY_MAP list FIRST|LAST map");
    std::optional<ListAndMap> found = list_and_map(*this, words[1], words[3]);
    if (!found) return;
    std::string place = ascii::upper(words[2]);
    if (place == "FIRST") {
        found->list->add_first(found->map);
    } else if (place == "LAST") {
        found->list->add_last(found->map);
    } else {
        return set_message("Position must be FIRST or LAST");
    }
    set_message("Added key map");
}

void TPUEditor::remove_key_map_command(Words words) {
    if (words.size() < 3) return set_message("REMOVE_KEY_MAP list map");
    std::optional<ListAndMap> found = list_and_map(*this, words[1], words[2]);
    if (!found) return;
    found->list->remove(found->map);
    set_message("Removed key map");
}

void TPUEditor::undefine_key_command(Words words) {
    if (words.size() < 2) return set_message("UNDEFINE_KEY key");
    int code = key_name_to_code(words[1]);
    KeyMap* map = first_map(*this);
    if (code == kNoKey || !map) return set_message("Cannot undefine key");
    map->undefine_key(code);
    set_message("Key undefined");
}

void TPUEditor::lookup_key_command(Words words) {
    if (words.size() < 2) return set_message("LOOKUP_KEY key");
    int code = key_name_to_code(words[1]);
    const KeyMapList* list = current_key_map_list;
    const KeyBinding* found = list ? list->lookup(code) : nullptr;
    set_message(found ? "Key: " + found->text + " " + found->comment : "Key undefined");
}

namespace commands {

namespace {

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
    int code = editor.read_one_key("Press key...");
    // The rest of a character must not be taken for what is typed next.
    constexpr int kLastCharacter = 255;
    if (code >= 0 && code <= kLastCharacter) editor.read_character(code);
    editor.set_message("READ_KEY = " + std::to_string(code));
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "DEFINE_KEY", .run = [](TPUEditor& e, Line l) { e.define_key_command(l.words, l.line); },
     .form = "DEFINE_KEY key text", .help = "Bind a statement or a command to a key.", .without_buffer = true},
    {.words = "UNDEFINE_KEY", .run = [](TPUEditor& e, Line l) { e.undefine_key_command(l.words); },
     .form = "UNDEFINE_KEY key", .help = "Take the binding of a key away.", .without_buffer = true},
    {.words = "LOOKUP_KEY", .run = [](TPUEditor& e, Line l) { e.lookup_key_command(l.words); },
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
    {.words = "ADD_KEY_MAP", .run = [](TPUEditor& e, Line l) { e.add_key_map_command(l.words); },
     .form = "ADD_KEY_MAP list FIRST|LAST map", .help = "Add a key map to a list.",
     .without_buffer = true, .about = About::key_map_list},
    {.words = "REMOVE_KEY_MAP", .run = [](TPUEditor& e, Line l) { e.remove_key_map_command(l.words); },
     .form = "REMOVE_KEY_MAP list map", .help = "Take a key map out of a list.",
     .without_buffer = true, .about = About::key_map_list},
};
// clang-format on

}  // namespace

std::span<const Command> keys() {
    return kRows;
}

}  // namespace commands

}  // namespace tpu
