// What Tab makes of an unfinished command line.
#include <algorithm>
#include <filesystem>
#include <set>

#include "commands/command_words.h"
#include "commands/help.h"
#include "commands/show.h"
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu {

namespace {

using Names = std::set<std::string>;

// A candidate that is the only one is finished, so the next word can follow.
Completion offer(std::size_t from, const Names& names) {
    Completion completion{from, {names.begin(), names.end()}};
    if (names.size() == 1 && !names.begin()->ends_with('/')) completion.candidates[0] += ' ';
    return completion;
}

bool needs_quotes(std::string_view name) {
    return std::any_of(name.begin(), name.end(), ascii::is_space);
}

// Of the names those that begin with `begun`, in any case of letters.
Completion complete_word(std::size_t from, std::string_view begun, const Names& names) {
    if (begun.starts_with('"')) begun.remove_prefix(1);
    std::string wanted = ascii::upper(begun);
    Names fitting;
    for (const std::string& name : names) {
        if (!ascii::upper(name).starts_with(wanted)) continue;
        fitting.insert(needs_quotes(name) ? '"' + name + '"' : name);
    }
    return offer(from, fitting);
}

// Names with blanks get double quotes around them.
Completion complete_file(TPUEditor& editor, std::size_t from, std::string_view begun) {
    if (begun.starts_with('"')) begun.remove_prefix(1);
    std::size_t slash = begun.rfind('/');
    std::string folder(begun.substr(0, slash == begun.npos ? 0 : slash + 1));
    std::string_view name = begun.substr(folder.size());
    Names fitting;
    std::error_code error;
    for (std::filesystem::directory_iterator
             entry(folder.empty() ? "." : with_home(editor, folder), error),
         end;
         !error && entry != end; entry.increment(error)) {
        std::string found = entry->path().filename().string();
        if (!found.starts_with(name) || (found[0] == '.' && !name.starts_with('.'))) continue;
        std::error_code unknown;
        if (entry->is_directory(unknown)) found += '/';
        found.insert(0, folder);
        if (needs_quotes(found)) found.insert(0, 1, '"');
        if (found.front() == '"' && found.back() != '/') found += '"';
        fitting.insert(found);
    }
    return offer(from, fitting);
}

template <class Map>
void add_names(const Map& owned, Names& names) {
    for (const auto& [name, object] : owned) names.insert(name);
}

// What a command can be about, but for files.
Names names_of(TPUEditor& editor, About about) {
    Names names;
    switch (about) {
        case About::other:
        case About::file: break;
        case About::buffer:
            for (const auto& buffer : editor.buffers) names.insert(buffer->name);
            break;
        case About::paste: add_names(editor.named_pastes, names); break;
        case About::topic:
            for (const std::string& topic : help_topics()) names.insert(topic);
            break;
        case About::show_item:
            for (const ShowItem& item : show_items()) names.emplace(item.names[0]);
            break;
        case About::procedure: add_names(editor.parser.procedures, names); break;
        case About::key_map_list: add_names(editor.key_map_lists, names); break;
    }
    return names;
}

// The words that may follow the whole words of `line` at place `i` in commands of several
// words.
Names next_words(const CommandLine& line, std::size_t i) {
    Names names;
    for (const Command* command : all_commands()) {
        CommandLine form{std::string(command->words)};
        if (form.words.size() <= i) continue;
        bool fits = true;
        for (std::size_t k = 0; k < i && fits; ++k) fits = form.words[k] == line.upper(k);
        if (fits) names.insert(form.words[i]);
    }
    return names;
}

}  // namespace

Completion complete_command(TPUEditor& editor, std::string_view typed) {
    CommandLine line{std::string(typed)};
    bool begun = !typed.empty() && !ascii::is_space(typed.back());
    std::size_t i = line.words.size() - (begun ? 1 : 0);
    std::size_t from = begun ? line.places[i] : typed.size();
    std::string_view word = typed.substr(from);
    if (i > 0) line.words[0] = resolve_command(line.upper(0));
    Names names = next_words(line, i);
    if (i == 0) add_names(editor.parser.procedures, names);
    Completion completion = complete_word(from, word, names);
    if (!completion.candidates.empty() || i == 0) return completion;
    const Command* command = find_command(Layer::eve, line);
    if (!command) command = find_command(Layer::editor, line);
    if (!command) return {};
    CommandLine form{std::string(command->words)};
    if (i < form.words.size()) return {};
    // All that follows the command may be one name in quotes.
    std::size_t begin = i > form.words.size() ? line.places[form.words.size()] : from;
    if (typed.substr(begin).starts_with('"')) from = begin;
    std::string_view name = typed.substr(from);
    return command->about == About::file
               ? complete_file(editor, from, name)
               : complete_word(from, name, names_of(editor, command->about));
}

}  // namespace tpu
