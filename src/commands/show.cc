// SHOW: the state of the editor, as a message or in a buffer of its own.
#include "commands/show.h"

#include <algorithm>

#include "attributes/attribute.h"
#include "editor/editor.h"
#include "editor/recovery.h"
#include "editor/version.h"
#include "keys/key_names.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr std::size_t kWidth = 78;  // of the lines in show buffers
constexpr const char* kNothing = "  (none)\n";

std::string header(const std::string& title) {
    return title + '\n' + std::string(60, '-') + '\n';
}

// A line with a label; a label that fills its columns still gets a blank.
std::string row(std::string label, std::size_t width, const std::string& value) {
    label.resize(std::max(label.size(), width), ' ');
    if (label.back() != ' ') label += ' ';
    return "  " + label + value + '\n';
}

std::string yes_no(bool yes) {
    return yes ? "yes" : "no";
}

// What fits of `text` into a line that holds `used` bytes already: its characters but for
// control characters, or a beginning of them and dots.
std::string shortened(std::string text, std::size_t used) {
    constexpr std::size_t kLeast = 20;
    constexpr std::string_view kDots = "...";
    std::size_t room = std::max(kLeast, kWidth - std::min(kWidth, used));
    if (text.size() > room) {
        std::size_t end = room - kDots.size();
        while (end > 0 && (text[end] & 0xc0) == 0x80) --end;
        text.resize(end);
        text += kDots;
    }
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

// The names of what `owned` holds, each after a blank.
template <class Map>
std::string names(std::string list, const Map& owned) {
    for (const auto& [name, object] : owned) list += ' ' + name;
    return list;
}

std::string version(TPUEditor&, const std::string&) {
    return tpu_version_banner();
}

std::string pastes(TPUEditor& editor, const std::string&) {
    constexpr std::uint64_t kBeginning = kWidth + 1;  // bytes that suffice for a line
    std::string text = header("SHOW PASTES  (named paste buffers)");
    if (editor.named_pastes.empty()) text += kNothing;
    for (const auto& [name, lines] : editor.named_pastes) {
        std::string size = "  (" + std::to_string(lines.bytes()) + " chars)";
        if (name.empty()) {
            text += "  [unnamed slot]" + size + '\n';
            continue;
        }
        std::string line = "  \"" + name + '"' + size + "  ";
        std::string beginning = lines.text(0, std::min(lines.bytes(), kBeginning));
        text += line + shortened(beginning, line.size()) + '\n';
    }
    return text;
}

std::string buffers(TPUEditor& editor, const std::string&) {
    std::string list = "Buffers:";
    for (const auto& buffer : editor.buffers) {
        list += ' ' + buffer->name;
        if (buffer.get() == editor.current_buffer) list += '*';
    }
    return list;
}

std::string key_maps(TPUEditor& editor, const std::string&) {
    return names("Keymaps:", editor.key_maps);
}

std::string key_map_lists(TPUEditor& editor, const std::string&) {
    return names("Key map lists:", editor.key_map_lists);
}

std::string procedures(TPUEditor& editor, const std::string&) {
    return names("Procedures:", editor.parser.procedures);
}

// Calls visit(name, value) for each global variable.
template <class Visit>
void for_each_global(const SymbolTable& symbols, Visit visit) {
    for (const auto& [name, symbol] : symbols.all()) {
        if (const Value* value = symbols.global(symbol)) visit(name, *value);
    }
}

std::string variables(TPUEditor& editor, const std::string&) {
    std::string text = header("SHOW VARIABLES"), list;
    for_each_global(editor.parser.symbols, [&](const std::string& name, const Value& value) {
        std::string line = "  " + name + " (" + std::string(type_name(value.type())) + ")  =  ";
        list += line + shortened(value.as_string(), line.size()) + '\n';
    });
    return text + (list.empty() ? kNothing : list);
}

// The lines of those attributes of a table that have one.
std::string attribute_rows(std::span<const Attribute> table, std::size_t width, TPUEditor& editor) {
    std::string text;
    for (const Attribute& attribute : table) {
        std::string label(attribute.shown.label);
        if (label.empty()) continue;
        text += row(label, width, shown_text(attribute, editor));
    }
    return text;
}

std::string defaults(TPUEditor& editor, const std::string&) {
    std::string text = header("SHOW DEFAULTS  (current buffer)");
    if (!editor.current_buffer) return text + kNothing;
    return text + attribute_rows(buffer_attributes(), 15, editor);
}

std::string summary(TPUEditor& editor, const std::string&) {
    std::size_t globals = 0;
    for_each_global(editor.parser.symbols, [&](const std::string&, const Value&) { ++globals; });
    std::string text = header("SHOW SUMMARY");
    auto add = [&](const char* label, const std::string& value) { text += row(label, 18, value); };
    add("Buffers", std::to_string(editor.buffers.size()));
    add("Windows", std::to_string(editor.windows.size()));
    add("Keymaps", std::to_string(editor.key_maps.size()));
    add("Keymap lists", std::to_string(editor.key_map_lists.size()));
    add("Procedures", std::to_string(editor.parser.procedures.size()));
    add("Variables", std::to_string(globals));
    add("Processes", std::to_string(editor.processes.running.size()));
    add("Tests passed/fail", std::to_string(editor.assertions_passed) + " / " +
                                 std::to_string(editor.assertions_failed));
    return text;
}

std::string code_and_name(int code) {
    std::string number = std::to_string(code), name = key_name_of(code);
    return name == number || code <= 0 ? number : number + " (" + name + ")";
}

std::string system(TPUEditor& editor, const std::string&) {
    std::string text = header("SHOW SYSTEM");
    auto add = [&](const char* label, const std::string& value) { text += row(label, 14, value); };
    add("Screen", std::to_string(editor.rows) + " x " + std::to_string(editor.cols));
    add("Headless", yes_no(editor.headless));
    text += attribute_rows(session_attributes(), 14, editor);
    add("GOLD key", code_and_name(editor.gold_key));
    add("Last key", code_and_name(editor.last_key));
    if (editor.recovery && !editor.recovery->trouble().empty()) {
        add("Unsaved work", "not kept: " + editor.recovery->trouble());
    }
    return text;
}

std::string binding_text(const KeyBinding& binding) {
    return binding.action ? "<native>" : binding.text;
}

std::string one_key(const TPUEditor& editor, const std::string& name) {
    int code = key_code_of(name);
    if (code == kNoKey) return "Unknown key " + name;
    const KeyMapList* list = editor.current_key_map_list;
    const KeyBinding* binding = list ? list->lookup(code) : nullptr;
    return "Key " + name + (binding ? " = " + binding_text(*binding) : " is undefined");
}

std::string map_rows(const KeyMap& map) {
    std::string rows = '[' + map.name + "]\n";
    for (const auto& [code, binding] : map.bindings) {
        std::string text = binding_text(binding);
        rows += "  " + key_name_of(code) + "  ->  " + text;
        bool tells_more = !binding.comment.empty() && binding.comment != text;
        rows += (tells_more ? "  (" + binding.comment + ")" : "") + '\n';
    }
    return rows;
}

std::string keys(TPUEditor& editor, const std::string& name) {
    if (!name.empty()) return one_key(editor, name);
    std::string rows;
    if (const KeyMapList* list = editor.current_key_map_list) {
        for (const KeyMap* map : list->maps) {
            if (map) rows += map_rows(*map);
        }
    }
    return header("SHOW KEYS  (active key map list)") + (rows.empty() ? kNothing : rows);
}

// clang-format off
constexpr ShowItem kItems[] = {
    {{"BUFFERS"}, "", buffers, "The names of the buffers; a star marks the current one."},
    {{"KEYMAPS"}, "", key_maps, "The names of the key maps."},
    {{"KEY_MAP_LISTS", "KEYMAPLISTS"}, "", key_map_lists, "The names of the key-map lists."},
    {{"PROCEDURES"}, "", procedures, "The names of the procedures that programs have defined."},
    {{"DEFAULTS"}, "$SHOW_DEFAULTS", defaults, "The attributes of the current buffer."},
    {{"SUMMARY"}, "$SHOW_SUMMARY", summary, "How many there are of buffers, windows and so on."},
    {{"VARIABLES"}, "$SHOW_VARIABLES", variables, "The global variables and their values."},
    {{"KEY", "KEYS"}, "$SHOW_KEYS", keys, "What the keys do, or what one key of that name does."},
    {{"SYSTEM"}, "$SHOW_SYSTEM", system, "The screen, the timer, and what keys do besides."},
    {{"VERSION"}, "$SHOW_VERSION", version, "The version of the editor."},
    {{"PASTES", "PASTE"}, "$SHOW_PASTES", pastes, "The texts kept under names."},
};
// clang-format on

const ShowItem* find_item(std::string_view name) {
    if (name.empty()) return nullptr;
    for (const ShowItem& item : kItems) {
        if (std::find(item.names.begin(), item.names.end(), name) != item.names.end()) return &item;
    }
    return nullptr;
}

}  // namespace

std::span<const ShowItem> show_items() {
    return kItems;
}

void show_command(TPUEditor& editor, const std::vector<std::string>& words) {
    if (words.size() < 2) {
        return editor.set_message(
            "SHOW what? BUFFERS, KEYMAPS, PROCEDURES, DEFAULTS, SUMMARY, VARIABLES, KEY <name>, "
            "SYSTEM, VERSION, PASTES");
    }
    std::string word = ascii::upper(words[1]);
    const ShowItem* item = find_item(word);
    if (!item) return editor.set_message("Unknown SHOW item: " + word);
    bool names_one = item->text == keys && words.size() > 2;
    std::string text = item->text(editor, names_one ? words[2] : "");
    if (item->buffer.empty() || names_one) {
        editor.set_message(text);
    } else {
        editor.open_show_buffer(std::string(item->buffer), text);
    }
}

}  // namespace tpu
