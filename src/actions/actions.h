// What the editor does for people: one plain function for each thing, which says by its
// message what came of it. The tables of default keys, commands and built-ins name these
// functions. Where a key, a command and a built-in of the same name differ, the adapter
// beside the table has the difference.
//
// The functions stand here under the files that hold them. They need a current buffer, but
// for those that say otherwise.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

#include "editor/editor.h"
#include "os/work.h"

namespace tpu::actions {

// Does what a row of a table names: a function or member of the session, or a member of its
// current buffer, which may want the charset of what is typed.
template <auto action>
void perform(TPUEditor& editor) {
    if constexpr (std::is_invocable_v<decltype(action), TPUEditor&>) {
        std::invoke(action, editor);
    } else if constexpr (std::is_invocable_v<decltype(action), Buffer&>) {
        std::invoke(action, *editor.current_buffer);
    } else {
        std::invoke(action, *editor.current_buffer, editor.charset);
    }
}

// movement.cc
void go_to_line_begin(TPUEditor& editor);
void go_to_line_end(TPUEditor& editor);
void next_screen(TPUEditor& editor);
void previous_screen(TPUEditor& editor);

// selection.cc
inline constexpr const char* kSelectFirst = "Select a range first";
// Begin a selection at the cursor; they differ in what they say.
void begin_selection(TPUEditor& editor, const char* message);
void select(TPUEditor& editor);
void mark(TPUEditor& editor);
void box_select(TPUEditor& editor);
// Tells whether there is a selection.
void tell_of_selection(TPUEditor& editor);
// With the rectangle between the place of `box_select` and the cursor.
void box_cut(TPUEditor& editor);
void box_copy(TPUEditor& editor);
void box_paste(TPUEditor& editor);

// paste.cc
// Keeps a text in the ring and as what the buffer pastes next, unless it is empty.
void push_kill_ring(TPUEditor& editor, const LineStore& text);
// False: nothing is selected.
bool cut(TPUEditor& editor);
bool copy(TPUEditor& editor);
void remove(TPUEditor& editor);  // cuts too, and says it in other words
// The selection, which is kept as if it was cut, or else the character at the cursor.
void erase(TPUEditor& editor);
void paste(TPUEditor& editor);
void paste_previous(TPUEditor& editor);
// What the buffer pastes next gets a name, or is the text of that name, or that is pasted at
// once. Names are the same in any case of letters.
void store_paste(TPUEditor& editor, const std::string& name);
void recall_paste(TPUEditor& editor, const std::string& name);
void insert_paste(TPUEditor& editor, const std::string& name);

// text.cc
// Whether a piece of work was done; else the message tells why not. `name` is what people
// call it.
bool is_done(TPUEditor& editor, const char* name, const Work& work);
void erase_character(TPUEditor& editor);  // at the cursor
void erase_character_left(TPUEditor& editor);
// A cursor within a character splits before it. Nothing happens where nothing may change.
void split_line(TPUEditor& editor);
// Fills the selection between the margins. False: there is none, and `otherwise` is the message.
bool fill(TPUEditor& editor, const char* otherwise, Work& work);
// Moves the selected lines, or else that of the cursor, right by so many columns, or left by
// a negative number.
void shift(TPUEditor& editor, int columns);
// The case that a word names: UPPER, LOWER, or for any other one each letter's other case.
Buffer::Case case_named(std::string_view word);
// Of the selection, or else of the word at the cursor.
void change_case(TPUEditor& editor, Buffer::Case mode);
void undo(TPUEditor& editor);
void redo(TPUEditor& editor);

// files.cc
// Writes the buffer to its file, or asks for a name when it has none.
void save(TPUEditor& editor);
void save_as(TPUEditor& editor, const std::string& name);

// windows.cc
// Splits the current window into two, one above the other; says so even where there is no
// room for it.
void split_window(TPUEditor& editor);
void next_window(TPUEditor& editor);

// keys.cc: they need no buffer.
// Finds the map in which a key is to be bound, or gives null and tells why there is none.
using FindKeyMap = std::function<KeyMap*()>;
// Bind a key and take its binding away. False, with a message: there is no key of that code,
// or no map, which is looked for only then.
bool define_key(TPUEditor& editor, int code, KeyBinding binding, const FindKeyMap& find_map);
bool undefine_key(TPUEditor& editor, int code, const FindKeyMap& find_map);
// Shows a binding; null: there is none.
void tell_of_binding(TPUEditor& editor, const KeyBinding* binding);
// How a map is added to a list at the end that a word says, FIRST or LAST; null, with a
// message, for other words.
using AddKeyMap = void (KeyMapList::*)(KeyMap*);
AddKeyMap add_at(TPUEditor& editor, const std::string& word);

// session.cc
void type_in_insert_mode(TPUEditor& editor);
void type_in_overstrike_mode(TPUEditor& editor);
void toggle_insert_mode(TPUEditor& editor);
void begin_gold(TPUEditor& editor);  // the next key has GOLD before it; needs no buffer
void leave(TPUEditor& editor);       // at once, nothing is saved; needs no buffer

}  // namespace tpu::actions
