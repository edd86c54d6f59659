// Commands that change the text: cutting and pasting, boxes, case, fill and shift.
#include <algorithm>

#include "actions/actions.h"
#include "commands/command_words.h"
#include "commands/replace.h"
#include "editor/editor.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

// COPY [TO name]
void copy(TPUEditor& editor, Line line) {
    if (actions::copy(editor) && line.upper(1) == "TO") actions::store_paste(editor, line.word(2));
}

// CUT [TO name]
void cut(TPUEditor& editor, Line line) {
    bool named = line.upper(1) == "TO";
    // Without a name the text stays where it is.
    if (named && line.words.size() < 3) return actions::store_paste(editor, "");
    if (actions::cut(editor) && named) actions::store_paste(editor, line.word(2));
}

// What is selected, or else what was cut or copied last.
void store(TPUEditor& editor, Line line) {
    if (editor.current_buffer->select_range()) actions::copy(editor);
    actions::store_paste(editor, line.word(1));
}

void recall(TPUEditor& editor, Line line) {
    actions::recall_paste(editor, line.word(1));
}

void paste_from(TPUEditor& editor, Line line) {
    actions::insert_paste(editor, line.word(2));
}

void fill(TPUEditor& editor, Line) {
    Work work = editor.parser.interruptible();
    if (!actions::fill(editor, actions::kSelectFirst, work)) return;
    if (!actions::is_done(editor, "FILL", work)) return;
    editor.current_buffer->select_anchor.reset();
    editor.set_message("Filled");
}

// SHIFT LEFT/RIGHT [columns]
template <int sign>
void shift(TPUEditor& editor, Line line) {
    constexpr std::uint64_t kMost = 65'535;
    std::uint64_t columns = line.number(2).value_or(1);
    if (line.words.size() > 2 && !line.number(2)) return editor.set_message("Bad column number");
    actions::shift(editor, sign * static_cast<int>(std::min(columns, kMost)));
}

// The last word tells the case; any other one inverts.
void change_case(TPUEditor& editor, Line line) {
    actions::change_case(editor, actions::case_named(line.words.back()));
}

void box_usage(TPUEditor& editor, Line) {
    editor.set_message("BOX SELECT|CUT|COPY|PASTE");
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "COPY", .run = copy, .form = "COPY [TO name]",
     .help = "Copy the selection, and keep it under a name.", .at_character = true, .about = About::paste},
    {.words = "CUT", .run = cut, .form = "CUT [TO name]",
     .help = "Cut the selection, and keep it under a name.", .edits = true, .about = About::paste},
    {.words = "STORE", .run = store, .form = "STORE name",
     .help = "Keep the selection, or else the text cut or copied last, under a name.",
     .at_character = true, .in_full = true, .about = About::paste},
    {.words = "PASTE PREVIOUS", .run = does<actions::paste_previous>, .form = "PASTE PREVIOUS",
     .help = "Paste the text that was cut or copied before.", .edits = true},
    {.words = "PASTE FROM", .run = paste_from,
     .form = "PASTE FROM name", .help = "Paste the text kept under a name.", .edits = true, .about = About::paste},
    {.words = "PASTE", .run = does<actions::paste>, .form = "PASTE",
     .help = "Paste what was cut or copied last in this buffer.", .edits = true, .alias = "INSERT_HERE"},
    {.words = "RESTORE", .run = does<actions::paste>, .form = "RESTORE",
     .help = "Paste what was cut or copied last in this buffer.", .edits = true, .in_full = true},
    {.words = "RECALL", .run = recall, .form = "RECALL name",
     .help = "Make the text kept under a name the one that PASTE inserts.", .in_full = true, .about = About::paste, .alias = "FETCH"},
    {.words = "DELETE", .run = does<actions::erase>, .form = "DELETE",
     .help = "Delete the selection, or else the character at the cursor.", .edits = true},
    {.words = "REMOVE", .run = does<actions::remove>, .form = "REMOVE",
     .help = "Cut the selection.", .edits = true, .in_full = true},
    {.words = "REPLACE", .run = replace, .form = "REPLACE [old new [count or ALL]]",
     .help = "Replace the next match of a text; asks for what is not given. A text with blanks stands in double quotes.",
     .edits = true},
    {.words = "FILL", .run = fill, .form = "FILL",
     .help = "Fill the selected lines between the margins.", .edits = true, .in_full = true},
    {.words = "SHIFT LEFT", .run = shift<-1>, .form = "SHIFT LEFT [columns]",
     .help = "Remove columns in front of the selected lines, or of the cursor line.", .edits = true, .in_full = true},
    {.words = "SHIFT RIGHT", .run = shift<1>, .form = "SHIFT RIGHT [columns]",
     .help = "Put blanks in front of the selected lines, or of the cursor line.", .edits = true, .in_full = true},
    {.words = "CHANGE CASE", .run = change_case, .form = "CHANGE CASE [UPPER or LOWER]",
     .help = "Change the case of the selection, or of the word at the cursor.", .edits = true, .in_full = true, .alias = "CASE"},
    {.words = "MARK", .run = does<actions::mark>, .form = "MARK",
     .help = "Start a selection at the cursor.", .at_character = true, .in_full = true},
    {.words = "BOX SELECT", .run = does<actions::box_select>, .form = "BOX SELECT",
     .help = "Start a rectangle at the cursor.", .at_character = true, .in_full = true},
    {.words = "BOX CUT", .run = does<actions::box_cut>, .form = "BOX CUT",
     .help = "Cut the rectangle.", .edits = true, .in_full = true, .alias = "BOX REMOVE"},
    {.words = "BOX COPY", .run = does<actions::box_copy>, .form = "BOX COPY",
     .help = "Copy the rectangle.", .at_character = true, .in_full = true},
    {.words = "BOX PASTE", .run = does<actions::box_paste>, .form = "BOX PASTE",
     .help = "Insert the rectangle with its corner at the cursor.", .edits = true, .in_full = true},
    {.words = "BOX", .run = box_usage, .form = "BOX SELECT|CUT|COPY|PASTE",
     .help = "Alone it tells these forms.", .in_full = true},
};
// clang-format on

}  // namespace

std::span<const Command> eve_texts() {
    return kRows;
}

}  // namespace tpu::commands
