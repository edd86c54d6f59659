// The commands of the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "actions/actions.h"
#include "editor/line_input.h"

namespace tpu {

// A line split at white space, with the line itself.
struct CommandLine {
    std::string line;
    std::vector<std::string> words;
    std::vector<std::size_t> places;  // of the words in the line

    explicit CommandLine(std::string text);
    // The same with words that somebody else has made of the line.
    CommandLine(std::string text, std::vector<std::string> given);

    // Word `i`, as it is or in upper case; empty when there are fewer.
    std::string word(std::size_t i) const { return i < words.size() ? words[i] : ""; }
    std::string upper(std::size_t i) const;
    // The rest of the line from the first place where word `i` occurs in it, be that
    // within an earlier word.
    std::string_view from_word(std::size_t i) const;
    // The rest of the line from word `i` on, without blanks at its end.
    std::string_view rest(std::size_t i) const;
    // The name of a file: word `i`, or several in double quotes; ~ is the home directory.
    std::string file(TPUEditor& editor, std::size_t i) const;
    // Word `i` as a number, if it is one and not too small.
    std::optional<std::uint64_t> number(std::size_t i, std::uint64_t least = 1) const;
};

// The name of a file as people type it, with the home directory in place of ~.
std::string with_home(TPUEditor& editor, std::string_view name);

// What a command is about, for those who complete what is typed.
enum class About { other, file, buffer, paste, topic, show_item, procedure, key_map_list };

struct Command {
    std::string_view words;  // that it begins with, upper case, separated by blanks
    void (*run)(TPUEditor&, const CommandLine&);
    std::string_view form;        // how it is written
    std::string_view help;        // one sentence
    std::size_t least = 0;        // words; with fewer the form is shown
    bool edits = false;           // needs a buffer whose text can be changed
    bool at_character = false;    // uses the cursor's place; so do those that edit
    bool without_buffer = false;  // runs even when no buffer is current
    bool in_full = false;         // its first word cannot be shortened
    About about = About::other;
    std::string_view alias = {};  // other words for the same; empty: there are none

    std::string_view first_word() const { return words.substr(0, words.find(' ')); }
};

// Whose turn comes when: the procedures of the user are tried after the first layer,
// the statements of the language after the second.
enum class Layer { eve, editor, statement };

// The commands of a layer, a row for each alias too; of two that match a line the first is
// meant.
const std::vector<const Command*>& commands_of(Layer layer);
// Those of all layers, in their order.
const std::vector<const Command*>& all_commands();

// The command of a layer that a line calls, or null.
const Command* find_command(Layer layer, const CommandLine& line);

// The command that an upper-case word abbreviates; the word itself if it is none, or
// if several commands begin with it.
std::string resolve_command(const std::string& word);

// execute_command.cc, completion.cc; see Vocabulary
void execute_command(TPUEditor& editor, const std::string& text);
bool is_command(const std::string& text);
Completion complete_command(TPUEditor& editor, std::string_view typed);

namespace commands {

std::span<const Command> eve_files();
std::span<const Command> eve_texts();
std::span<const Command> eve_places();
std::span<const Command> eve_settings();
std::span<const Command> editor();
std::span<const Command> keys();
std::span<const Command> statements();

// A command without words of its own: an action, or a member of the session or the buffer.
template <auto action>
void does(TPUEditor& editor, const CommandLine&) {
    actions::perform<action>(editor);
}

// Writes the buffer to the file that word `i` names, or without one to its own.
template <std::size_t i>
void save(TPUEditor& editor, const CommandLine& line) {
    line.words.size() > i ? actions::save_as(editor, line.file(editor, i)) : actions::save(editor);
}

// In key_commands.cc: takes away the binding of the key of that name.
void undefine_key(TPUEditor& editor, const std::string& name);

}  // namespace commands

}  // namespace tpu
