#include "actions/default_keys.h"

#include "actions/actions.h"
#include "keys/key_code.h"

namespace tpu {

namespace {

using namespace actions;
using Needs = DefaultKey::Needs;

template <int lines>
void move_by(TPUEditor& editor) {
    editor.current_buffer->move_vertical(lines);
}

constexpr int kGold = kGoldOffset;

// clang-format off
constexpr DefaultKey kDefaultKeys[] = {
    {kKeyLeft, perform<&Buffer::move_character_left>, "", "MOVE_HORIZONTAL(-1)"},
    {kKeyRight, perform<&Buffer::move_character_right>, "", "MOVE_HORIZONTAL(1)"},
    {kKeyUp, move_by<-1>, "", "MOVE_VERTICAL(-1)"},
    {kKeyDown, move_by<1>, "", "MOVE_VERTICAL(1)"},
    {kKeyBackspace, erase_character_left, "", "ERASE_CHARACTER(-1)"},
    {127, erase_character_left, "", "ERASE_CHARACTER(-1)"},
    {kKeyDelete, erase_character, "", "ERASE_CHARACTER(1)"},
    {kKeyHome, go_to_line_begin, "", "LINE_BEGIN"},
    {kKeyEnd, go_to_line_end, "", "LINE_END"},
    {kKeyInsert, toggle_insert_mode, "", "TOGGLE INSERT/OVERSTRIKE"},
    {'\n', split_line, "", "SPLIT_LINE"},
    {'\r', split_line, "", "SPLIT_LINE"},
    {'\t', perform<&Buffer::insert_tab>, "", "INSERT TAB"},
    {control('X'), leave, "", "EXIT", Needs::nothing},
    {control('S'), save, "", "WRITE_FILE"},
    {control('F'), perform<&TPUEditor::prompt_find>, "", "SEARCH"},
    {control('Z'), perform<&TPUEditor::command_mode>, "", "COMMAND MODE"},
    {control('V'), select, "", "SELECT", Needs::character},
    {control('W'), perform<cut>, "", "MOVE_TEXT SELECT_RANGE", Needs::character},
    {control('Y'), paste, "", "COPY_TEXT paste_buffer"},
    {control('O'), split_window, "", "SPLIT_WINDOW"},
    {control('N'), next_window, "", "NEXT_WINDOW"},
    {kKeyF0 + 1, begin_gold, "", "GOLD"},
    {kKeyF0 + 2, nullptr, "HELP", "HELP"},
    {kKeyF0 + 3, nullptr, "FIND", "FIND"},
    {kKeyF0 + 4, nullptr, "DELETE", "DELETE"},
    {kKeyNextPage, next_screen, "", "NEXT SCREEN"},
    {kKeyPreviousPage, previous_screen, "", "PREVIOUS SCREEN"},
    {kGold + 'E', nullptr, "END", "GOLD-E end of buffer"},
    {kGold + 'T', nullptr, "TOP", "GOLD-T top of buffer"},
    {kGold + 'F', nullptr, "FIND", "GOLD-F find"},
    {kGold + 'W', nullptr, "WRITE FILE", "GOLD-W write"},
    {kGold + 'Q', nullptr, "QUIT", "GOLD-Q quit"},
    {kGold + 'U', nullptr, "UNDO", "GOLD-U undo"},
    {kGold + 'R', nullptr, "REDO", "GOLD-R redo"},
};
// clang-format on

}  // namespace

std::span<const DefaultKey> default_keys() {
    return kDefaultKeys;
}

}  // namespace tpu
