#include "commands/command_words.h"

#include <cassert>
#include <charconv>
#include <deque>
#include <set>

#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu {

namespace {

bool begins_with(const CommandLine& line, std::string_view words) {
    for (std::size_t i = 0; !words.empty(); ++i) {
        std::string_view word = words.substr(0, words.find(' '));
        if (line.upper(i) != word) return false;
        words.remove_prefix(std::min(words.size(), word.size() + 1));
    }
    return true;
}

}  // namespace

std::string with_home(TPUEditor& editor, std::string_view name) {
    if (name != "~" && !name.starts_with("~/")) return std::string(name);
    const std::optional<std::string> home = editor.ports.system.variable("HOME");
    return home ? *home + std::string(name.substr(1)) : std::string(name);
}

CommandLine::CommandLine(std::string text) : line(std::move(text)) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (ascii::is_space(line[i])) continue;
        std::size_t begin = i;
        while (i < line.size() && !ascii::is_space(line[i])) ++i;
        words.push_back(line.substr(begin, i - begin));
        places.push_back(begin);
    }
}

CommandLine::CommandLine(std::string text, std::vector<std::string> given)
    : CommandLine(std::move(text)) {
    words = std::move(given);
    places.resize(words.size(), line.size());
}

std::string CommandLine::upper(std::size_t i) const {
    return ascii::upper(word(i));
}

std::string_view CommandLine::from_word(std::size_t i) const {
    if (i >= words.size()) return "";
    std::size_t place = line.find(words[i]);
    return place == std::string::npos ? words[i] : std::string_view(line).substr(place);
}

std::string_view CommandLine::rest(std::size_t i) const {
    return i < words.size() ? ascii::trim(std::string_view(line).substr(places[i])) : "";
}

std::string CommandLine::file(TPUEditor& editor, std::size_t i) const {
    std::string_view text = rest(i);
    if (!text.starts_with('"')) return i < words.size() ? with_home(editor, words[i]) : "";
    text.remove_prefix(1);
    return with_home(editor, text.substr(0, text.find('"')));
}

std::optional<std::uint64_t> CommandLine::number(std::size_t i, std::uint64_t least) const {
    if (i >= words.size()) return std::nullopt;
    const std::string& word = words[i];
    std::uint64_t number = 0;
    auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error == std::errc::result_out_of_range) number = UINT64_MAX;
    if (error == std::errc::invalid_argument || end != word.data() + word.size() ||
        number < least) {
        return std::nullopt;
    }
    return number;
}

namespace {

using Family = std::span<const Command> (*)();

// The row of a command under its alias, which is kept as long as the tables are.
const Command* under_alias(const Command& command) {
    static std::deque<std::pair<std::string, Command>> kept;
    assert(command.form.starts_with(command.words));
    std::string form(command.alias);
    form += command.form.substr(command.words.size());
    auto& [kept_form, row] = kept.emplace_back(std::move(form), command);
    row.words = command.alias;
    row.form = kept_form;
    return &row;
}

std::vector<const Command*> gather(std::initializer_list<Family> families) {
    std::vector<const Command*> rows;
    for (Family family : families) {
        for (const Command& command : family()) {
            rows.push_back(&command);
            if (!command.alias.empty()) rows.push_back(under_alias(command));
        }
    }
    return rows;
}

}  // namespace

const std::vector<const Command*>& commands_of(Layer layer) {
    using namespace commands;
    static const std::vector<const Command*> kLayers[] = {
        gather({eve_files, eve_texts, eve_places, eve_settings}),
        gather({editor, keys}),
        gather({statements}),
    };
    return kLayers[static_cast<std::size_t>(layer)];
}

const std::vector<const Command*>& all_commands() {
    static const std::vector<const Command*> kAll = [] {
        std::vector<const Command*> all;
        for (Layer layer : {Layer::eve, Layer::editor, Layer::statement}) {
            const std::vector<const Command*>& rows = commands_of(layer);
            all.insert(all.end(), rows.begin(), rows.end());
        }
        return all;
    }();
    return kAll;
}

const Command* find_command(Layer layer, const CommandLine& line) {
    for (const Command* command : commands_of(layer)) {
        if (begins_with(line, command->words)) return command;
    }
    return nullptr;
}

// A word that begins several names, or none, stays what it is.
std::string resolve_command(const std::string& word) {
    std::set<std::string_view> completed;
    for (const Command* command : all_commands()) {
        std::string_view name = command->first_word();
        if (name == word) return word;
        if (!command->in_full && name.starts_with(word)) completed.insert(name);
    }
    return completed.size() == 1 ? std::string(*completed.begin()) : word;
}

}  // namespace tpu
