// Commands that change attributes of the buffer and the session, and take bindings away.
#include "commands/command_words.h"
#include "editor/editor.h"
#include "keys/key_code.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

template <bool insert>
void set_mode(TPUEditor& editor, Line) {
    set_insert_mode(editor, insert);
}

void set_gold_key(TPUEditor& editor, Line line) {
    int code = TPUEditor::key_name_to_code(line.word(3));
    if (code == kNoKey) return editor.set_message("Unknown key");
    editor.gold_key = code;
    editor.set_message("Gold key set");
}

// What is set is what the statement SET(keyword, ...) makes of the words from `first` on,
// which have to be numbers.
void set_numbers(TPUEditor& editor, Line line, std::size_t first, const std::string& keyword,
                 std::string_view form, std::uint64_t least = 0) {
    std::string statement = "SET(" + keyword;
    for (std::size_t i = first; i < line.words.size(); ++i) {
        std::optional<std::uint64_t> number = line.number(i, least);
        if (!number) return editor.set_message(std::string(form));
        constexpr std::uint64_t kMost = INT64_MAX;
        statement += ", " + std::to_string(std::min(*number, kMost));
    }
    editor.parser.execute_statement(statement + ")");
}

constexpr std::string_view kLeft = "SET LEFT MARGIN n", kRight = "SET RIGHT MARGIN n",
                           kMargins = "SET MARGINS left right",
                           kTabStops = "SET TAB STOPS width or columns";

void set_left_margin(TPUEditor& editor, Line line) {
    set_numbers(editor, line, 3, "LEFT_MARGIN", kLeft);
}

void set_right_margin(TPUEditor& editor, Line line) {
    set_numbers(editor, line, 3, "RIGHT_MARGIN", kRight);
}

void set_margins(TPUEditor& editor, Line line) {
    set_numbers(editor, line, 2, "MARGINS", kMargins);
}

void set_tab_stops(TPUEditor& editor, Line line) {
    set_numbers(editor, line, 3, "TAB_STOPS", kTabStops, 1);
}

// ON, OFF, or the other of them.
void set_line_numbers(TPUEditor& editor, Line line) {
    std::string word = line.upper(3);
    bool& on = editor.show_line_numbers;
    on = word == "ON" || (word != "OFF" && !on);
    editor.set_message(on ? "Line numbers on" : "Line numbers off");
}

void set_eob_text(TPUEditor& editor, Line line) {
    editor.current_buffer->eob_text = line.rest(3);
}

// Word `i` names the key.
template <std::size_t i>
void undefine_named(TPUEditor& editor, Line line) {
    std::vector<std::string> words = {"UNDEFINE_KEY"};
    if (line.words.size() > i) words.push_back(line.words[i]);
    undefine_key(editor, words);
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "SET GOLD KEY", .run = set_gold_key, .form = "SET GOLD KEY key",
     .help = "Make another key the GOLD key.", .without_buffer = true},
    {.words = "SET INSERT", .run = set_mode<true>, .form = "SET INSERT",
     .help = "Type in insert mode."},
    {.words = "SET OVERSTRIKE", .run = set_mode<false>, .form = "SET OVERSTRIKE",
     .help = "Type in overstrike mode."},
    {.words = "SET LEFT MARGIN", .run = set_left_margin, .form = kLeft,
     .help = "Set the column where filled and wrapped lines begin.", .least = 4},
    {.words = "SET RIGHT MARGIN", .run = set_right_margin, .form = kRight,
     .help = "Set the column up to which filled and wrapped lines reach.", .least = 4},
    {.words = "SET MARGINS", .run = set_margins, .form = kMargins,
     .help = "Set both margins.", .least = 4},
    {.words = "SET LINE NUMBER", .run = set_line_numbers, .form = "SET LINE NUMBER [ON or OFF]",
     .help = "Show the numbers of lines or not; without a word, the other of the two.", .without_buffer = true},
    {.words = "SET TAB STOPS", .run = set_tab_stops, .form = kTabStops,
     .help = "Set tab stops: one every that many columns, or at two columns or more.", .least = 4},
    {.words = "SET EOB TEXT", .run = set_eob_text, .form = "SET EOB TEXT text",
     .help = "Set what is shown behind the last line of the buffer."},
    {.words = "UNDEFINE KEY", .run = undefine_named<2>, .form = "UNDEFINE KEY key", .help = "Take the binding of a key away.",
     .without_buffer = true, .in_full = true},
    {.words = "REMOVE_KEY", .run = undefine_named<1>, .form = "REMOVE_KEY key", .help = "Take the binding of a key away.",
     .without_buffer = true, .in_full = true},
};
// clang-format on

}  // namespace

void set_insert_mode(TPUEditor& editor, bool insert) {
    editor.current_buffer->insert_mode = insert;
    editor.set_message(insert ? "INSERT mode" : "OVERSTRIKE mode");
}

std::span<const Command> eve_settings() {
    return kRows;
}

}  // namespace tpu::commands
