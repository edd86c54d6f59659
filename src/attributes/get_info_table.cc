#include "attributes/get_info_table.h"

#include <algorithm>

#include "editor/editor.h"
#include "editor/process.h"
#include "text/ascii.h"

namespace tpu {

namespace {

using Type = Value::Type;

template <class Integer>
Value number(Integer n) {
    return Value::make_int(static_cast<long long>(n));
}

// Readers of plain fields. A switch reads as 1 or 0.
template <auto field>
Value buffer_number(const Subject& s) {
    return number(s.buffer.*field);
}

template <auto field>
Value buffer_text(const Subject& s) {
    return Value::make_str(s.buffer.*field);
}

template <auto field>
Value session_number(const Subject& s) {
    return number(s.editor.*field);
}

template <auto field>
Value session_text(const Subject& s) {
    return Value::make_str(s.editor.*field);
}

// Of a buffer.

Value line_count(const Subject& s) {
    return number(s.buffer.text().size());
}

Value direction(const Subject& s) {
    return Value::make_kw(s.buffer.reverse ? "REVERSE" : "FORWARD");
}

Value insert_mode(const Subject& s) {
    return Value::make_kw(s.buffer.insert_mode ? "INSERT" : "OVERSTRIKE");
}

Value key_map_list(const Subject& s) {
    if (!s.buffer.key_map_list.empty()) return Value::make_str(s.buffer.key_map_list);
    const KeyMapList* list = s.editor.current_key_map_list;
    return Value::make_str(list ? list->name : "");
}

// As SET takes them.
Value tab_stops(const Subject& s) {
    if (s.buffer.tab_stops.empty()) return number(s.buffer.tab_interval);
    std::string columns;
    for (std::uint64_t stop : s.buffer.tab_stops) {
        if (!columns.empty()) columns += ' ';
        columns += std::to_string(stop);
    }
    return Value::make_str(columns);
}

Value buffer_begin(const Subject& s) {
    return Value::make_marker({&s.buffer, 0, 0, false});
}

Value buffer_end(const Subject& s) {
    std::uint64_t last = s.buffer.text().size() - 1;
    return Value::make_marker({&s.buffer, last, s.buffer.text().length(last), false});
}

Value whose_buffer(const Subject& s) {
    Buffer* buffer = &s.buffer;
    switch (s.object.type()) {
        case Type::process: buffer = process_of(s.object)->output; break;
        case Type::window:
        case Type::marker:
        case Type::range: buffer = buffer_of(s.object); break;
        default: break;
    }
    return buffer ? Value::make_buffer(buffer) : tpu_unspecified();
}

// Of a place. A marker may be older than the text: its row may be gone.

bool beyond_end_of_line(const Marker& place) {
    const LineStore& lines = place.buffer->text();
    return place.row >= lines.size() || place.column > lines.length(place.row);
}

Value offset(const Subject& s) {
    const LineStore& lines = s.place.buffer->text();
    if (s.place.row >= lines.size()) return number(lines.bytes());
    return number(lines.row_start(s.place.row) +
                  std::min(s.place.column, lines.length(s.place.row)));
}

// Of a window.

Value shown_row(const Subject& s) {
    const Buffer* buffer = s.window->buffer;
    if (!buffer || buffer != s.place.buffer) return tpu_unspecified();
    auto last = static_cast<std::uint64_t>(s.window->text_rows()) - 1;
    bool is_marker = s.object.is(Type::marker);
    if (is_marker && (s.place.row < buffer->view_line || s.place.row > buffer->view_line + last)) {
        return tpu_unspecified();
    }
    // Drawing scrolls as far as the cursor needs.
    std::uint64_t below = s.place.row - std::min(s.place.row, buffer->view_line);
    return number(s.window->top + static_cast<int>(std::min(below, last)));
}

Value status_line(const Subject& s) {
    return s.window->has_status ? Value::make_str(s.window->status_format) : tpu_unspecified();
}

// Of a range.

Value range_length(const Subject& s) {
    std::shared_ptr<Range> range = s.object.range();
    Buffer* buffer = range->buffer();
    return buffer ? number(buffer->lines_of_range(*range).bytes()) : tpu_unspecified();
}

template <auto end>
Value range_end(const Subject& s) {
    std::shared_ptr<Range> range = s.object.range();
    return range->valid ? Value::make_marker((*range).*end) : tpu_unspecified();
}

// Of a key map or a list of them, which stand for themselves under their names.

template <class Map>
const typename Map::mapped_type::element_type* named(const Map& owned, const Value& object) {
    bool is_text = object.is(Type::string) || object.is(Type::keyword);
    auto found = is_text ? owned.find(std::string(object.text())) : owned.end();
    return found == owned.end() ? nullptr : found->second.get();
}

Value own_name(const Subject& s) {
    return Value::make_str(s.object.text());
}

Value bound_keys(const Subject& s) {
    return number(named(s.editor.key_maps, s.object)->bindings.size());
}

// The first list that holds the key map.
Value list_of_key_map(const Subject& s) {
    const KeyMap* map = named(s.editor.key_maps, s.object);
    for (const auto& [name, list] : s.editor.key_map_lists) {
        const auto& maps = list->maps;
        if (std::find(maps.begin(), maps.end(), map) != maps.end()) return Value::make_str(name);
    }
    return Value::make_str("");
}

Value maps_in_list(const Subject& s) {
    return number(named(s.editor.key_map_lists, s.object)->maps.size());
}

// Walks: FIRST, LAST, CURRENT, NEXT, PREVIOUS over what a session has, with the integer
// 0 when there is none there, as in the walk over all arrays.

template <class Thing>
const Thing* step(const std::vector<std::unique_ptr<Thing>>& things, const Thing*& walked,
                  const Thing* current, std::string_view word) {
    if (things.empty()) return nullptr;
    if (word == "FIRST") return walked = things.front().get();
    if (word == "LAST") return walked = things.back().get();
    if (word == "CURRENT") return walked = current;
    auto at = std::find_if(things.begin(), things.end(),
                           [&](const auto& thing) { return thing.get() == walked; });
    if (at == things.end()) return nullptr;
    if (word == "PREVIOUS") return at == things.begin() ? nullptr : walked = (at - 1)->get();
    return at + 1 == things.end() ? nullptr : walked = (at + 1)->get();
}

Value walk_buffers(const Subject& s) {
    TPUEditor& editor = s.editor;
    auto* buffer = step(editor.buffers, editor.walked_buffer, editor.current_buffer, s.item);
    return buffer ? Value::make_buffer(const_cast<Buffer*>(buffer)) : number(0);
}

Value walk_windows(const Subject& s) {
    TPUEditor& editor = s.editor;
    auto* window = step(editor.windows, editor.walked_window, editor.current_window, s.item);
    return window ? window_value(const_cast<TPUWindow*>(window)) : number(0);
}

// clang-format off
constexpr InfoItem kItems[] = {
    {{"LENGTH"}, Of::range, range_length, "The characters of its text, where a line end counts as one."},
    {{"BEGIN", "START"}, Of::range, range_end<&Range::start>, "The marker at its beginning."},
    {{"END"}, Of::range, range_end<&Range::end>, "The marker just past its end."},

    {{"HEIGHT", "VISIBLE_LENGTH"}, Of::screen_word, session_number<&TPUEditor::rows>, "The rows of the screen."},
    {{"WIDTH"}, Of::screen_word, session_number<&TPUEditor::cols>, "The columns of the screen."},

    {{"FILE_NAME", "INPUT_FILE", "OUTPUT_FILE"}, Of::command_line_word, session_text<&TPUEditor::named_file>,
     "The file that the program was started with; empty without one."},
    {{"ROW", "CURRENT_ROW"}, Of::command_line_word, session_number<&TPUEditor::named_line>,
     "The line that the program was told to start on, counting from 1; 0 without one."},

    {{"FIRST", "LAST"}, Of::buffers_word, walk_buffers, "The oldest or the newest buffer; the walk is there then."},
    {{"CURRENT"}, Of::buffers_word, walk_buffers, "The current buffer; the walk is there then."},
    {{"NEXT", "PREVIOUS"}, Of::buffers_word, walk_buffers, "The buffer that follows or precedes in the walk; the integer 0 when there is none."},
    {{"FIRST", "LAST"}, Of::windows_word, walk_windows, "The first or the last window; the walk is there then."},
    {{"CURRENT"}, Of::windows_word, walk_windows, "The current window; the walk is there then."},
    {{"NEXT", "PREVIOUS"}, Of::windows_word, walk_windows, "The window that follows or precedes in the walk; the integer 0 when there is none."},

    {{"NAME"}, Of::key_map, own_name, "Its name."},
    {{"LENGTH", "RECORD_COUNT"}, Of::key_map, bound_keys, "The number of keys that it binds."},
    {{"KEY_MAP_LIST"}, Of::key_map, list_of_key_map, "The name of the first key-map list that holds it; empty without one."},
    {{"NAME"}, Of::key_map_list, own_name, "Its name."},
    {{"LENGTH", "RECORD_COUNT"}, Of::key_map_list, maps_in_list, "The number of its key maps."},

    {{"TOP", "ORIGINAL_TOP", "VISIBLE_TOP"}, Of::window, [](const Subject& s) { return number(s.window->top); },
     "Its first row on the screen, counting from 0."},
    {{"BOTTOM", "ORIGINAL_BOTTOM"}, Of::window, [](const Subject& s) { return number(s.window->top + s.window->height - 1); },
     "Its last row on the screen, the status line's if it has one."},
    {{"VISIBLE_BOTTOM"}, Of::window, [](const Subject& s) { return number(s.window->top + s.window->text_rows() - 1); },
     "The last row on the screen in which it shows text."},
    {{"HEIGHT"}, Of::window, [](const Subject& s) { return number(s.window->height); }, "Its rows, the status line included."},
    {{"VISIBLE_LENGTH"}, Of::window, [](const Subject& s) { return number(s.window->text_rows()); }, "Its rows of text."},
    {{"WIDTH"}, Of::window, [](const Subject& s) { return number(s.window->effective_width(s.editor.cols)); }, "Its columns."},
    {{"SCREEN_ROW"}, Of::window, shown_row, "The row on the screen of the cursor, or of a marker that it shows, counting from 0."},
    {{"STATUS_LINE"}, Of::window, status_line, "The text of its status line as it was set, empty for the usual line; unspecified when it has none."},
    {{"VISIBLE"}, Of::window, [](const Subject& s) { return number(s.window->visible && s.window->buffer); },
     "1 when it is drawn, 0 when it is hidden or shows no buffer."},

    {{"COLUMN", "CURRENT_COLUMN"}, Of::place, [](const Subject& s) { return number(s.place.column + 1); }, "Its column, counting from 1."},
    {{"OFFSET_COLUMN"}, Of::place, [](const Subject& s) { return number(s.place.column + 1); },
     "The same: a tab character takes one column too."},
    {{"ROW", "CURRENT_ROW"}, Of::place, [](const Subject& s) { return number(s.place.row + 1); }, "Its line, counting from 1."},
    {{"OFFSET"}, Of::place, offset, "The characters between the beginning of the buffer and it."},
    {{"BOUND"}, Of::place, [](const Subject& s) { return number(!beyond_end_of_line(s.place)); }, "1 on text or at the end of a line, else 0."},
    {{"BEYOND_EOL"}, Of::place, [](const Subject& s) { return number(beyond_end_of_line(s.place)); }, "1 past the end of the line, else 0."},
    {{"BEFORE_BOL", "MIDDLE_OF_TAB"}, Of::place, [](const Subject&) { return number(0); }, "0, since a place is never there."},
    {{"FREE_CURSOR"}, Of::place, [](const Subject& s) { return number(s.place.free_cursor); },
     "1 when the cursor may stand past the end of its line, or the marker was made with FREE_CURSOR, else 0."},

    {{"BUFFER"}, Of::buffer, whose_buffer, "The buffer itself; that of a window, marker, range or process, unspecified when it has none."},
    {{"NAME"}, Of::buffer, buffer_text<&Buffer::name>, "Its name."},
    {{"FILE_NAME", "INPUT_FILE", "OUTPUT_FILE"}, Of::buffer, buffer_text<&Buffer::file_name>, "The file that it is read from and written to; empty without one."},
    {{"RECORD_COUNT", "LENGTH", "LINES"}, Of::buffer, line_count, "The number of its lines."},
    {{"BEGIN", "START"}, Of::buffer, buffer_begin, "The marker at its beginning."},
    {{"END"}, Of::buffer, buffer_end, "The marker at its end."},
    {{"MODIFIED"}, Of::buffer, buffer_number<&Buffer::modified>, "1 when its text was changed since it was written, else 0."},
    {{"MODIFIABLE"}, Of::buffer, buffer_number<&Buffer::modifiable>, "1 when its text can be changed, else 0."},
    {{"NO_WRITE"}, Of::buffer, buffer_number<&Buffer::no_write>, "1 when it is marked as not to be written, else 0."},
    {{"PERMANENT"}, Of::buffer, buffer_number<&Buffer::permanent>, "1 when it cannot be deleted, else 0."},
    {{"SYSTEM"}, Of::buffer, buffer_number<&Buffer::system>, "1 when it is marked as one of the editor's own, else 0."},
    {{"JOURNALING"}, Of::buffer, buffer_number<&Buffer::journaling>, "1 when an open journal gets records of it, else 0."},
    {{"JOURNAL_FILE"}, Of::buffer, buffer_text<&Buffer::journal_file>, "Its journal; empty without one."},
    {{"BACKUP"}, Of::buffer, buffer_number<&Buffer::backup_on_write>, "1 when writing keeps the previous file, else 0."},
    {{"LEFT_MARGIN"}, Of::buffer, buffer_number<&Buffer::left_margin>, "The column in which filled lines begin."},
    {{"RIGHT_MARGIN"}, Of::buffer, buffer_number<&Buffer::right_margin>, "The column up to which lines are filled."},
    {{"MAX_LINES"}, Of::buffer, buffer_number<&Buffer::max_lines>, "The number of lines that it is meant to have at most; 0 for any."},
    {{"TAB_STOPS"}, Of::buffer, tab_stops, "The distance of its tab stops, or a text with their columns."},
    {{"EOB_TEXT"}, Of::buffer, buffer_text<&Buffer::eob_text>, "What is shown behind its last line."},
    {{"DIRECTION"}, Of::buffer, direction, "The direction of searches: the keyword FORWARD or REVERSE."},
    {{"INSERT_MODE"}, Of::buffer, insert_mode, "What typing does: the keyword INSERT or OVERSTRIKE."},
    {{"WRAP"}, Of::buffer, buffer_number<&Buffer::auto_wrap>, "1 when a blank past the right margin wraps the line, else 0."},
    {{"KEY_MAP_LIST"}, Of::buffer, key_map_list, "The name of its key-map list, or else of the editor's; empty without any."},

    {{"SCREEN_HEIGHT", "SCREEN_ROWS"}, Of::session, session_number<&TPUEditor::rows>, "The rows of the screen."},
    {{"SCREEN_WIDTH", "SCREEN_COLS"}, Of::session, session_number<&TPUEditor::cols>, "The columns of the screen."},
    {{"WINDOW_COUNT"}, Of::session, [](const Subject& s) { return number(s.editor.windows.size()); }, "The number of windows."},
    {{"BUFFER_COUNT"}, Of::session, [](const Subject& s) { return number(s.editor.buffers.size()); }, "The number of buffers."},
    {{"LOOP_LIMIT"}, Of::session, [](const Subject& s) { return number(s.editor.parser.loop_limit); },
     "After how many passes a LOOP ends by itself; 0 for never."},
    {{"PROCEDURE_COUNT"}, Of::session, [](const Subject& s) { return number(s.editor.parser.procedures.size()); },
     "The number of procedures that programs have defined."},
    {{"MOUSE_ROW"}, Of::session, session_number<&TPUEditor::mouse_row>, "The row on the screen of the last report of the mouse, counting from 0; -1 before any."},
    {{"MOUSE_COLUMN"}, Of::session, session_number<&TPUEditor::mouse_column>, "The column on the screen of the last report of the mouse, counting from 0; -1 before any."},
    {{"LINE_NUMBER"}, Of::session, session_number<&TPUEditor::show_line_numbers>, "1 when windows show line numbers, else 0."},
    {{"BELL"}, Of::session, session_number<&TPUEditor::bell>, "1 when BELL rings, else 0."},
    {{"MOUSE"}, Of::session, session_number<&TPUEditor::mouse>, "1 when the mouse is in use, else 0."},
    {{"TIMER"}, Of::session, [](const Subject& s) { return number(s.editor.timer.interval); }, "The milliseconds between two runs of the timer's statement; 0 when the timer is off."},
    {{"PRE_KEY_PROCEDURE"}, Of::session, session_text<&TPUEditor::pre_key_procedure>, "The statement that runs before each key; empty without one."},
    {{"POST_KEY_PROCEDURE"}, Of::session, session_text<&TPUEditor::post_key_procedure>, "The statement that runs after each key; empty without one."},
    {{"UNDEFINED_KEY"}, Of::session, session_text<&TPUEditor::undefined_key_procedure>, "The statement for keys without a meaning; empty without one."},
    {{"SHIFT_KEY"}, Of::session, session_number<&TPUEditor::shift_key>, "The code of the SHIFT key; 0 without one."},
};
// clang-format on

// Whether the object is that word, as a string or a keyword.
bool is_word(const Value& object, std::string_view word) {
    bool is_text = object.is(Type::string) || object.is(Type::keyword);
    return is_text && ascii::upper(object.text()) == word;
}

bool has_part(const Subject& s, Of of) {
    switch (of) {
        case Of::range: return s.object.is(Type::range);
        case Of::screen_word: return is_word(s.object, "SCREEN");
        case Of::command_line_word: return is_word(s.object, "COMMAND_LINE");
        case Of::buffers_word: return is_word(s.object, "BUFFERS");
        case Of::windows_word: return is_word(s.object, "WINDOWS");
        case Of::key_map: return named(s.editor.key_maps, s.object);
        case Of::key_map_list: return named(s.editor.key_map_lists, s.object);
        case Of::window: return s.window != nullptr;
        case Of::place: return s.place.buffer != nullptr;
        case Of::buffer:
        case Of::session: return true;
    }
    return false;
}

Marker place_of(const Value& object, Buffer& buffer) {
    if (object.is(Type::marker)) return *object.marker();
    Buffer* shown = object.is(Type::window) ? window_of(object)->buffer : &buffer;
    return shown ? shown->mark(shown->free_cursor) : Marker();
}

// The current window goes before others.
TPUWindow* window_that_shows(const TPUEditor& editor, const Buffer* buffer) {
    TPUWindow* current = editor.current_window;
    if (!buffer || (current && current->buffer == buffer)) return buffer ? current : nullptr;
    for (const auto& window : editor.windows) {
        if (window->buffer == buffer) return window.get();
    }
    return nullptr;
}

}  // namespace

std::string_view name_of(Of of) {
    constexpr std::string_view kNames[] = {
        "range",        "`SCREEN`", "`COMMAND_LINE`",   "`BUFFERS`", "`WINDOWS`", "key map",
        "key-map list", "window",   "marker or cursor", "buffer",    "session",
    };
    return kNames[static_cast<std::size_t>(of)];
}

std::span<const InfoItem> info_items() {
    return kItems;
}

Value get_info(TPUEditor& editor, const Value& object, std::string_view item) {
    Buffer& buffer = object.buffer() ? *object.buffer() : *editor.current_buffer;
    Subject subject{editor, object, item, buffer, place_of(object, buffer), window_of(object)};
    if (!subject.window) subject.window = window_that_shows(editor, subject.place.buffer);
    for (const InfoItem& row : kItems) {
        bool named = std::find(row.names.begin(), row.names.end(), item) != row.names.end();
        if (named && !item.empty() && has_part(subject, row.of)) return row.read(subject);
    }
    return tpu_unspecified();
}

}  // namespace tpu
