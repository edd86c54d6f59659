// Commands that move the cursor by line and column, or tell where it is.
#include <algorithm>

#include "commands/command_words.h"
#include "editor/editor.h"

namespace tpu::commands {

namespace {

using Line = const CommandLine&;

constexpr std::string_view kUsage = "GO TO line | GO TO COLUMN n";

void usage(TPUEditor& editor, Line) {
    editor.set_message(std::string(kUsage));
}

void go_to_line(TPUEditor& editor, Line line) {
    std::optional<std::uint64_t> wanted = line.number(2);
    if (!wanted) return editor.set_message("Bad line number");
    Buffer& buffer = *editor.current_buffer;
    buffer.cursor_row = std::min(*wanted, buffer.text().size()) - 1;
    buffer.cursor_column = 0;
    editor.set_message("Line " + std::to_string(buffer.cursor_row + 1));
}

void go_to_column(TPUEditor& editor, Line line) {
    if (line.words.size() < 4) return editor.set_message("GO TO COLUMN n");
    std::optional<std::uint64_t> wanted = line.number(3);
    if (!wanted) return editor.set_message("Bad column number");
    Buffer& buffer = *editor.current_buffer;
    buffer.cursor_column = *wanted - 1;
    buffer.clamp_cursor();
    editor.set_message("Column " + std::to_string(buffer.cursor_column + 1));
}

void what_line(TPUEditor& editor, Line) {
    const Buffer& buffer = *editor.current_buffer;
    editor.set_message("Line " + std::to_string(buffer.cursor_row + 1) + " of " +
                       std::to_string(buffer.text().size()) + "  Col " +
                       std::to_string(buffer.cursor_column + 1));
}

// clang-format off
constexpr Command kRows[] = {
    {.words = "GO TO COLUMN", .run = go_to_column, .form = "GO TO COLUMN n",
     .help = "Go to a column of the line, counted from 1.", .in_full = true, .alias = "GO TO COL"},
    {.words = "GO TO", .run = go_to_line, .form = kUsage,
     .help = "Go to a line, counted from 1, or to a column.", .least = 3, .in_full = true},
    {.words = "GO", .run = usage, .form = kUsage,
     .help = "Go to a line, counted from 1, or to a column.", .in_full = true},
    {.words = "WHAT LINE", .run = what_line, .form = "WHAT LINE",
     .help = "Tell the line and column of the cursor.", .in_full = true},
};
// clang-format on

}  // namespace

std::span<const Command> eve_places() {
    return kRows;
}

}  // namespace tpu::commands
