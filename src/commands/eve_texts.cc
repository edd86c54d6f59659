// Commands that change the text: cutting and pasting, boxes, case, fill and shift.
#include <algorithm>
#include <optional>

#include "commands/command_words.h"
#include "commands/replace.h"
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

constexpr const char* kSelectFirst = "Select a range first";

// Whether a piece of work was done; else the message tells why not.
bool is_done(TPUEditor& editor, const char* name, const Work& work) {
    if (work.end == Work::End::stopped) editor.set_message("Stopped by Ctrl-C");
    if (work.end == Work::End::too_large) editor.set_message(name + std::string(Work::kTooLarge));
    return work.end == Work::End::done;
}

// COPY [TO name]
void copy(TPUEditor& editor, Line line) {
    bool selected = editor.current_buffer->select_range().has_value();
    editor.copy_selection();
    if (selected && line.upper(1) == "TO") editor.store_named_paste(line.word(2));
}

// CUT [TO name]
void cut(TPUEditor& editor, Line line) {
    bool named = line.upper(1) == "TO";
    bool selected = editor.current_buffer->select_range().has_value();
    // Without a name the text stays where it is.
    if (named && line.words.size() < 3) return editor.store_named_paste("");
    editor.cut_selection();
    if (selected && named) editor.store_named_paste(line.word(2));
}

// What is selected, or else what was cut or copied last.
void store(TPUEditor& editor, Line line) {
    if (editor.current_buffer->select_range()) editor.copy_selection();
    editor.store_named_paste(line.word(1));
}

void recall(TPUEditor& editor, Line line) {
    editor.recall_named_paste(line.word(1), false);
}

void remove(TPUEditor& editor, Line) {
    if (!editor.current_buffer->select_range()) return editor.set_message(kSelectFirst);
    editor.cut_selection();
    editor.set_message("Removed selection to paste");
}

void erase(TPUEditor& editor, Line) {
    Buffer& buffer = *editor.current_buffer;
    std::optional<Range> selection = buffer.select_range();
    if (!selection) return buffer.erase_character_at_cursor(editor.charset);
    editor.push_kill_ring(buffer.lines_of_range(*selection));
    buffer.erase_range(*selection);
    buffer.select_anchor.reset();
    editor.set_message("Deleted selection");
}

void fill(TPUEditor& editor, Line) {
    Buffer& buffer = *editor.current_buffer;
    std::optional<Range> selection = buffer.select_range();
    if (!selection) return editor.set_message(kSelectFirst);
    Work work = editor.parser.interruptible();
    buffer.fill_range(*selection, buffer.left_margin, buffer.right_margin, &work);
    if (!is_done(editor, "FILL", work)) return;
    buffer.select_anchor.reset();
    editor.set_message("Filled");
}

// The rows of which something is selected, or the one of the cursor.
std::pair<std::uint64_t, std::uint64_t> selected_rows(Buffer& buffer) {
    std::optional<Range> selection = buffer.select_range();
    if (!selection) return {buffer.cursor_row, buffer.cursor_row};
    std::uint64_t first = selection->start.row, last = selection->end.row;
    return {first, last > first && selection->end.column == 0 ? last - 1 : last};
}

// SHIFT LEFT/RIGHT [columns]
template <int sign>
void shift(TPUEditor& editor, Line line) {
    constexpr std::uint64_t kMost = 65'535;
    std::uint64_t columns = line.number(2).value_or(1);
    if (line.words.size() > 2 && !line.number(2)) return editor.set_message("Bad column number");
    Buffer& buffer = *editor.current_buffer;
    auto [first, last] = selected_rows(buffer);
    Work work = editor.parser.interruptible();
    buffer.shift_rows(first, last, sign * static_cast<int>(std::min(columns, kMost)), &work);
    buffer.clamp_cursor();
    if (!is_done(editor, "SHIFT", work)) return;
    editor.set_message(sign > 0 ? "Shifted right" : "Shifted left");
}

// The last word tells the case; any other one inverts.
void change_case(TPUEditor& editor, Line line) {
    std::string word = ascii::upper(line.words.back());
    Buffer::Case mode = word == "UPPER"   ? Buffer::Case::upper
                        : word == "LOWER" ? Buffer::Case::lower
                                          : Buffer::Case::invert;
    Buffer& buffer = *editor.current_buffer;
    if (std::optional<Range> selection = buffer.select_range()) {
        Work work = editor.parser.interruptible();
        buffer.change_case_range(*selection, mode, &work);
        if (!is_done(editor, "CHANGE CASE", work)) return;
    } else {
        buffer.change_case_word(mode);
    }
    editor.set_message("Changed case");
}

void mark(TPUEditor& editor, Line) {
    editor.current_buffer->select();
    editor.set_message("MARK set");
}

void box_select(TPUEditor& editor, Line) {
    editor.current_buffer->select();
    editor.current_buffer->box_select = true;
    editor.set_message("BOX SELECT");
}

// Takes the rectangle between the place of BOX SELECT and the cursor.
void take_box(TPUEditor& editor,
              void (Buffer::*take)(std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                                   Work*),
              const char* done) {
    Buffer& buffer = *editor.current_buffer;
    if (!buffer.box_select || !buffer.select_anchor) {
        return editor.set_message("Start with BOX SELECT first");
    }
    const Marker from = *buffer.select_anchor;
    Work work = editor.parser.interruptible();
    (buffer.*take)(from.row, buffer.cursor_row, from.column, buffer.cursor_column, &work);
    if (!is_done(editor, "BOX", work)) return;
    buffer.select_anchor.reset();
    buffer.box_select = false;
    editor.set_message(done);
}

void box_cut(TPUEditor& editor, Line) {
    take_box(editor, &Buffer::box_cut, "Box cut");
}

void box_copy(TPUEditor& editor, Line) {
    take_box(editor, &Buffer::box_copy, "Box copied");
}

void box_paste(TPUEditor& editor, Line) {
    Buffer& buffer = *editor.current_buffer;
    if (buffer.box_register.empty()) return editor.set_message("Box paste buffer empty");
    Work work = editor.parser.interruptible();
    buffer.box_paste(buffer.cursor_row, buffer.cursor_column, &work);
    if (!is_done(editor, "BOX PASTE", work)) return;
    editor.set_message("Box pasted");
}

void box_usage(TPUEditor& editor, Line) {
    editor.set_message("BOX SELECT|CUT|COPY|PASTE");
}

void paste(TPUEditor& editor, Line) {
    editor.paste();
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
    {.words = "PASTE PREVIOUS", .run = [](TPUEditor& e, Line) { e.paste_previous(); }, .form = "PASTE PREVIOUS",
     .help = "Paste the text that was cut or copied before.", .edits = true},
    {.words = "PASTE FROM", .run = [](TPUEditor& e, Line l) { e.recall_named_paste(l.word(2), true); },
     .form = "PASTE FROM name", .help = "Paste the text kept under a name.", .edits = true, .about = About::paste},
    {.words = "PASTE", .run = paste, .form = "PASTE",
     .help = "Paste what was cut or copied last in this buffer.", .edits = true},
    {.words = "INSERT_HERE", .run = paste, .form = "INSERT_HERE",
     .help = "Paste what was cut or copied last in this buffer.", .edits = true},
    {.words = "RESTORE", .run = paste, .form = "RESTORE",
     .help = "Paste what was cut or copied last in this buffer.", .edits = true, .in_full = true},
    {.words = "RECALL", .run = recall, .form = "RECALL name",
     .help = "Make the text kept under a name the one that PASTE inserts.", .in_full = true, .about = About::paste},
    {.words = "FETCH", .run = recall, .form = "FETCH name",
     .help = "Make the text kept under a name the one that PASTE inserts.", .in_full = true, .about = About::paste},
    {.words = "DELETE", .run = erase, .form = "DELETE",
     .help = "Delete the selection, or else the character at the cursor.", .edits = true},
    {.words = "REMOVE", .run = remove, .form = "REMOVE",
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
     .help = "Change the case of the selection, or of the word at the cursor.", .edits = true, .in_full = true},
    {.words = "CASE", .run = change_case, .form = "CASE [UPPER or LOWER]",
     .help = "Change the case of the selection, or of the word at the cursor.", .edits = true, .in_full = true},
    {.words = "MARK", .run = mark, .form = "MARK",
     .help = "Start a selection at the cursor.", .at_character = true, .in_full = true},
    {.words = "BOX SELECT", .run = box_select, .form = "BOX SELECT",
     .help = "Start a rectangle at the cursor.", .at_character = true, .in_full = true},
    {.words = "BOX CUT", .run = box_cut, .form = "BOX CUT",
     .help = "Cut the rectangle.", .edits = true, .in_full = true},
    {.words = "BOX REMOVE", .run = box_cut, .form = "BOX REMOVE",
     .help = "Cut the rectangle.", .edits = true, .in_full = true},
    {.words = "BOX COPY", .run = box_copy, .form = "BOX COPY",
     .help = "Copy the rectangle.", .at_character = true, .in_full = true},
    {.words = "BOX PASTE", .run = box_paste, .form = "BOX PASTE",
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
