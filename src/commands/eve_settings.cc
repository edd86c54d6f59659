// Commands that change attributes of the buffer and the session, and take bindings away.
#include <algorithm>

#include "actions/actions.h"
#include "attributes/attribute.h"
#include "commands/command_words.h"
#include "editor/editor.h"
#include "keys/key_code.h"
#include "text/ascii.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

void set_gold_key(TPUEditor& editor, Line line) {
    int code = TPUEditor::key_name_to_code(line.word(3));
    if (code == kNoKey) return editor.set_message("Unknown key");
    editor.gold_key = code;
    editor.set_message("Gold key set");
}

// What the words of a command name, and the word that holds the first value.
struct Setting {
    const Attribute& row;
    const Keyword& keyword;
    std::size_t first;
};

std::size_t count_words(std::string_view words) {
    return static_cast<std::size_t>(std::count(words.begin(), words.end(), ' ')) + 1;
}

Setting setting_of(Line line) {
    std::string_view words = find_command(Layer::eve, line)->words;
    std::string name(words.substr(words.find(' ') + 1));
    std::replace(name.begin(), name.end(), ' ', '_');
    NamedAttribute named = find_keyword(name);
    return {*named.row, *named.keyword, count_words(words)};
}

// Where an attribute of the current buffer or the session is kept, which has to be a T.
template <class T>
T& field_of(const Attribute& row, TPUEditor& editor) {
    auto of_buffer = std::get_if<T Buffer::*>(&row.field);
    if (of_buffer) return editor.current_buffer->**of_buffer;
    return editor.*std::get<T TPUEditor::*>(row.field);
}

// Journals and learn sequences keep the statement that sets the numbers.
void set_numbers(TPUEditor& editor, Line line) {
    auto [row, keyword, first] = setting_of(line);
    std::string statement = "SET(" + std::string(keyword.name);
    for (std::size_t i = first; i < line.words.size(); ++i) {
        std::optional<std::uint64_t> number = line.number(i, keyword.command.lowest);
        if (!number) return editor.set_message(std::string(keyword.command.form));
        constexpr std::uint64_t kMost = INT64_MAX;
        statement += ", " + std::to_string(std::min(*number, kMost));
    }
    editor.parser.execute_statement(statement + ")");
}

// ON, OFF, or the other of them.
void set_switch(TPUEditor& editor, Line line) {
    auto [row, keyword, first] = setting_of(line);
    std::string word = line.upper(first);
    bool& on = field_of<bool>(row, editor);
    on = word == "ON" || (word != "OFF" && !on);
    editor.set_message(std::string(row.shown.label) + (on ? " on" : " off"));
}

void set_text(TPUEditor& editor, Line line) {
    auto [row, keyword, first] = setting_of(line);
    field_of<std::string>(row, editor) = line.rest(first);
}

void set_named_mode(TPUEditor& editor, Line line) {
    auto [row, keyword, first] = setting_of(line);
    field_of<bool>(row, editor) = NamedAttribute{&row, &keyword}.switches_on();
    editor.set_message(std::string(keyword.name) + " mode");
}

// Word `i` names the key.
template <std::size_t i>
void undefine_named(TPUEditor& editor, Line line) {
    undefine_key(editor, line.word(i));
}

auto runner_of(const Attribute& row) {
    auto holds = [&](auto field) { return std::holds_alternative<decltype(field)>(row.field); };
    if (row.values.empty()) return set_named_mode;
    if (holds(&Buffer::modified) || holds(&TPUEditor::bell)) return set_switch;
    return holds(&Buffer::name) ? set_text : set_numbers;
}

// The words before the first one that is not in upper case.
std::string_view leading_words(std::string_view form) {
    std::size_t end = form.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ ");
    return ascii::trim(form.substr(0, end));
}

Command command_of(const Attribute& row, const SetCommand& command) {
    std::string_view words = leading_words(command.form);
    std::size_t least = command.values > 0 ? count_words(words) + command.values : 0;
    return {.words = words,
            .run = runner_of(row),
            .form = command.form,
            .help = command.help,
            .least = least,
            .without_buffer = row.of == Of::session};
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "SET GOLD KEY", .run = set_gold_key, .form = "SET GOLD KEY key",
     .help = "Make another key the GOLD key.", .without_buffer = true},
    {.words = "UNDEFINE KEY", .run = undefine_named<2>, .form = "UNDEFINE KEY key", .help = "Take the binding of a key away.",
     .without_buffer = true, .in_full = true},
    {.words = "REMOVE_KEY", .run = undefine_named<1>, .form = "REMOVE_KEY key", .help = "Take the binding of a key away.",
     .without_buffer = true, .in_full = true},
};
// clang-format on

}  // namespace

std::span<const Command> eve_settings() {
    static const std::vector<Command> kAll = [] {
        std::vector<Command> all;
        for (const Attribute* row : all_attributes()) {
            for (const Keyword& keyword : row->keywords) {
                if (!keyword.command.form.empty()) all.push_back(command_of(*row, keyword.command));
            }
        }
        all.insert(all.end(), std::begin(kRows), std::end(kRows));
        return all;
    }();
    return kAll;
}

}  // namespace tpu::commands
