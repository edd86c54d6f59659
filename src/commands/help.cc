// HELP: finding what there is on a topic or a name.
#include "commands/help.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <vector>

#include "actions/default_keys.h"
#include "attributes/attribute.h"
#include "builtins/families.h"
#include "builtins/table.h"
#include "commands/command_words.h"
#include "commands/show.h"
#include "editor/editor.h"
#include "keys/key_names.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr std::size_t kWidth = 78;   // of a line
constexpr std::size_t kColumn = 28;  // where explanations begin

// Appends words to the last line and to further ones, which begin with `indent` blanks.
void add_words(std::string& text, std::string_view words, std::size_t indent) {
    std::size_t column = text.size() - (text.rfind('\n') + 1);
    while (!words.empty()) {
        std::string_view word = words.substr(0, words.find(' '));
        words.remove_prefix(std::min(words.size(), word.size() + 1));
        bool at_start = text.empty() || text.back() == ' ' || text.back() == '\n';
        if (!at_start && column + 1 + word.size() > kWidth) {
            text.append(1, '\n').append(indent, ' ');
            column = indent;
            at_start = true;
        }
        if (!at_start) text += ' ';
        text += word;
        column += word.size() + (at_start ? 0 : 1);
    }
}

// A row: how something is written, and what it does.
void add_row(std::string& text, std::string_view form, std::string_view help) {
    text += "  ";
    add_words(text, form, 4);
    std::size_t column = text.size() - (text.rfind('\n') + 1);
    if (column >= kColumn) {
        text += '\n';
        column = 0;
    }
    text.append(kColumn - column, ' ');
    add_words(text, help, kColumn);
    text += '\n';
}

void add_builtins(std::string& text, std::span<const Builtin> rows) {
    text += '\n';
    for (const Builtin& row : rows) add_row(text, row.form, row.help);
}

std::vector<const Builtin*> sorted_builtins() {
    std::vector<const Builtin*> rows;
    for (std::span<const Builtin> family : all_builtins().families()) {
        for (const Builtin& row : family) rows.push_back(&row);
    }
    std::sort(rows.begin(), rows.end(), [](auto* a, auto* b) { return a->name < b->name; });
    return rows;
}

void add_all_builtins(std::string& text) {
    text += '\n';
    for (const Builtin* row : sorted_builtins()) add_row(text, row->form, row->help);
}

void add_keys(std::string& text) {
    text += '\n';
    for (const DefaultKey& key : default_keys()) add_row(text, key_name_of(key.code), key.comment);
}

// A form that covers several commands is written once.
void add_commands(std::string& text, std::span<const Command* const> commands) {
    text += '\n';
    std::set<std::string_view> forms;
    for (const Command* command : commands) {
        if (forms.insert(command->form).second) add_row(text, command->form, command->help);
    }
}

void add_eve_commands(std::string& text) {
    add_commands(text, commands_of(Layer::eve));
}

std::string alternatives(std::span<const std::string_view> names) {
    std::string text;
    for (std::string_view name : names) {
        if (!name.empty()) text += (text.empty() ? "" : " or ") + std::string(name);
    }
    return text;
}

void add_commands_and_items(std::string& text) {
    add_commands(text, all_commands());
    text += "\nThe items of SHOW:\n\n";
    for (const ShowItem& item : show_items()) add_row(text, alternatives(item.names), item.help);
}

std::string set_form(const Attribute& row, const Keyword& keyword) {
    std::string form = "SET(" + std::string(keyword.name);
    if (row.takes_buffer()) form += " [, buffer]";
    if (!row.values.empty()) form += ", " + std::string(row.values);
    return form + ")";
}

// The names of a row, and what it is asked of.
std::string item_form(const Attribute& row) {
    std::string of(name_of(row.of));
    std::erase(of, '`');
    return alternatives(row.items) + " (" + of + ")";
}

// Adds how SET is called with the keywords that are wanted.
template <class Wanted>
void add_keywords(std::string& text, Wanted wanted) {
    for (const Attribute* row : all_attributes()) {
        for (const Keyword& keyword : row->keywords) {
            if (!keyword.name.empty() && wanted(keyword.name)) {
                add_row(text, set_form(*row, keyword), keyword.help);
            }
        }
    }
}

void add_attributes(std::string& text) {
    text += '\n';
    add_keywords(text, [](std::string_view) { return true; });
    text += "\nThese keywords are accepted and change nothing:\n\n  ";
    for (std::string_view name : ignored_set_keywords()) {
        add_words(text, name == ignored_set_keywords().back() ? name : std::string(name) + ",", 2);
    }
    text += "\n\nGET_INFO(object, item) reads these items of what stands in parentheses:\n\n";
    for (const Attribute* row : all_attributes()) {
        if (row->is_readable()) add_row(text, item_form(*row), row->gives);
    }
}

// The family of built-ins that a topic is about.
template <std::span<const Builtin> (*... families)()>
void add_families(std::string& text) {
    (add_builtins(text, families()), ...);
}

// clang-format off
constexpr HelpTopic kTopics[] = {
    {"OVERVIEW", "this list", nullptr, nullptr},
    {"KEYS", "what the keys do", &prose::kKeys, add_keys},
    {"COMMANDS", "the commands of the command line, and the items of SHOW", &prose::kCommands, add_commands_and_items},
    {"MOVEMENT", "moving the cursor", &prose::kMovement, add_families<builtins::movement>},
    {"EDITING", "changing text, selections, cut and paste, undo", &prose::kEditing, add_families<builtins::editing>},
    {"SEARCH", "finding text", &prose::kSearch, add_families<builtins::search>},
    {"PATTERNS", "what can be searched for besides plain text", &prose::kPatterns, add_families<builtins::patterns>},
    {"BUFFERS", "texts and files, journals and section files", &prose::kBuffers, add_families<builtins::buffers, builtins::journal, builtins::sections>},
    {"WINDOWS", "several texts on the screen", &prose::kWindows, add_families<builtins::windows>},
    {"KEYMAPS", "binding keys, key maps and lists of them", &prose::kKeymaps, add_families<builtins::keys, builtins::learn>},
    {"SET", "attributes of buffers, windows and the session", &prose::kSet, add_attributes},
    {"BUILTINS", "all built-in procedures of the language", &prose::kBuiltins, add_all_builtins},
    {"TYPES", "the values of the language", &prose::kTypes, add_families<builtins::texts, builtins::objects>},
    {"LANGUAGE", "statements, procedures, expressions, errors", &prose::kLanguage, add_families<builtins::control>},
    {"EVE", "commands that go before your procedures, many of several words", &prose::kEve, add_eve_commands},
    {"EVENTS", "the mouse, the timer, procedures around keys, processes", &prose::kEvents, add_families<builtins::input, builtins::processes>},
    {"WRAP", "margins, wrapping, filling and tab stops", &prose::kWrap, nullptr},
};
// clang-format on

void add_topics(std::string& text) {
    for (const HelpTopic& topic : kTopics) {
        std::string name(topic.name);
        name.resize(12, ' ');
        text.append("  ").append(name).append(topic.summary).append("\n");
    }
}

std::string overview() {
    std::string text = "Vorlane HELP\nType  HELP <topic>  for details. Topics:\n";
    add_topics(text);
    return text +
           "\nHELP and the name of a command, a built-in, an attribute or a key shows how\n"
           "it is written and what it does. To type a command, press Ctrl-Z first.\n"
           "\nHELP is a buffer like any other: the usual keys move in it, and the command\n"
           "NEXT BUFFER leaves it. Ctrl-X ends the editor with it, and saves nothing.\n"
           "\nPress Ctrl-X to leave the help buffer.\n";
}

template <class Names>
bool holds(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// What the tables of the language say on a name.
void add_language_rows(std::string& text, std::string_view name) {
    if (const Builtin* row = all_builtins().find(name)) {
        add_row(text, row->form, "Built-in: " + std::string(row->help));
    }
    add_keywords(text, [&](std::string_view keyword) { return keyword == name; });
    if (holds(ignored_set_keywords(), name)) {
        add_row(text, "SET(" + std::string(name) + ", ...)", "Accepted, and changes nothing.");
    }
    for (const Attribute* row : all_attributes()) {
        if (holds(row->items, name)) add_row(text, "GET_INFO, " + item_form(*row), row->gives);
    }
}

// What the tables say on a name; empty when none has it.
std::string rows_named(std::string_view name) {
    std::string text;
    for (const Command* command : all_commands()) {
        if (command->run && command->first_word() == name)
            add_row(text, command->form, "Command: " + std::string(command->help));
    }
    for (const ShowItem& item : show_items()) {
        if (holds(item.names, name)) add_row(text, "SHOW " + std::string(name), item.help);
    }
    add_language_rows(text, name);
    for (const DefaultKey& key : default_keys()) {
        if (key_name_of(key.code) == name) add_row(text, "Key " + std::string(name), key.comment);
    }
    return text;
}

std::set<std::string_view> known_names() {
    std::set<std::string_view> names;
    for (const HelpTopic& topic : kTopics) names.insert(topic.name);
    for (const Command* command : all_commands()) names.insert(command->first_word());
    for (const Builtin* row : sorted_builtins()) names.insert(row->name);
    for (const ShowItem& item : show_items()) names.insert(item.names.begin(), item.names.end());
    for (const Attribute* row : all_attributes()) {
        names.insert(row->items.begin(), row->items.end());
        for (const Keyword& keyword : row->keywords) names.insert(keyword.name);
    }
    names.erase("");
    return names;
}

// How many characters have to be put in, left out or replaced to make one of the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

bool comes_close(std::string_view wanted, std::string_view name) {
    constexpr std::size_t kLongest = 64;  // no name is as long
    if (wanted.size() > kLongest) return false;
    std::size_t faults = wanted.size() < 4 ? 1 : 2;
    bool is_part = wanted.size() >= 3 && name.find(wanted) != std::string_view::npos;
    return is_part || name.starts_with(wanted) || distance(wanted, name) <= faults;
}

std::string nothing_on(const std::string& wanted) {
    std::string text, close = "  ";
    add_words(text, "There is no help on " + wanted + ".", 0);
    for (std::string_view name : known_names()) {
        if (comes_close(wanted, name)) add_words(close, name, 2);
    }
    text += '\n';
    if (close.size() > 2) text += "\nThese names come close:\n\n" + close + '\n';
    text += "\nType  HELP <topic>  for details. Topics:\n\n";
    add_topics(text);
    return text;
}

}  // namespace

std::span<const HelpTopic> help_topic_rows() {
    return kTopics;
}

std::vector<std::string> help_topics() {
    std::vector<std::string> names;
    for (const HelpTopic& topic : kTopics) names.emplace_back(topic.name);
    return names;
}

std::string help_text(const std::string& topic) {
    std::string wanted = ascii::upper(ascii::trim(topic));
    if (wanted.empty()) return overview();
    for (const HelpTopic& row : kTopics) {
        if (row.name != wanted) continue;
        if (!row.text) return overview();
        std::string text(*row.text);
        if (row.add_lists) row.add_lists(text);
        return text;
    }
    std::string rows = rows_named(wanted);
    return rows.empty() ? nothing_on(wanted) : wanted + "\n\n" + rows;
}

void show_help(TPUEditor& editor, const std::string& topic) {
    editor.open_show_buffer("HELP", help_text(topic));
    editor.set_message("HELP buffer (Ctrl-X to exit, NEXT BUFFER to leave)");
}

}  // namespace tpu
