// Attributes of ranges, key maps, the screen and the program, and the walks over what there is.
#include <algorithm>

#include "attributes/attribute.h"
#include "editor/editor.h"

namespace tpu {

namespace {

// Of a range.

Value range_length(const Subject& s) {
    std::shared_ptr<Range> range = s.object.range();
    Buffer* buffer = range->buffer();
    return buffer ? number_value(buffer->lines_of_range(*range).bytes()) : tpu_unspecified();
}

template <auto end>
Value range_end(const Subject& s) {
    std::shared_ptr<Range> range = s.object.range();
    return range->valid ? Value::make_marker((*range).*end) : tpu_unspecified();
}

// Of a key map or a list of them, which the object names.

Value own_name(const Subject& s) {
    return Value::make_str(s.object.text());
}

template <class Map>
auto* named(const Map& owned, const Value& object) {
    return owned.find(std::string(object.text()))->second.get();
}

Value bound_keys(const Subject& s) {
    return number_value(named(s.editor.key_maps, s.object)->bindings.size());
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
    return number_value(named(s.editor.key_map_lists, s.object)->maps.size());
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
    return buffer ? Value::make_buffer(const_cast<Buffer*>(buffer)) : number_value(0);
}

Value walk_windows(const Subject& s) {
    TPUEditor& editor = s.editor;
    auto* window = step(editor.windows, editor.walked_window, editor.current_window, s.item);
    return window ? window_value(const_cast<TPUWindow*>(window)) : number_value(0);
}

// clang-format off
constexpr Attribute kRows[] = {
    {.of = Of::range, .items = {"LENGTH"}, .get = range_length,
     .gives = "The characters of its text, where a line end counts as one."},
    {.of = Of::range, .items = {"BEGIN", "START"}, .get = range_end<&Range::start>,
     .gives = "The marker at its beginning."},
    {.of = Of::range, .items = {"END"}, .get = range_end<&Range::end>,
     .gives = "The marker just past its end."},

    {.of = Of::screen_word, .items = {"HEIGHT", "VISIBLE_LENGTH"}, .field = &TPUEditor::rows,
     .gives = "The rows of the screen."},
    {.of = Of::screen_word, .items = {"WIDTH"}, .field = &TPUEditor::cols,
     .gives = "The columns of the screen."},

    {.of = Of::command_line_word, .items = {"FILE_NAME", "INPUT_FILE", "OUTPUT_FILE"}, .field = &TPUEditor::named_file,
     .gives = "The file that the program was started with; empty without one."},
    {.of = Of::command_line_word, .items = {"ROW", "CURRENT_ROW"}, .field = &TPUEditor::named_line,
     .gives = "The line that the program was told to start on, counting from 1; 0 without one."},

    {.of = Of::buffers_word, .items = {"FIRST", "LAST"}, .get = walk_buffers,
     .gives = "The oldest or the newest buffer; the walk is there then."},
    {.of = Of::buffers_word, .items = {"CURRENT"}, .get = walk_buffers,
     .gives = "The current buffer; the walk is there then."},
    {.of = Of::buffers_word, .items = {"NEXT", "PREVIOUS"}, .get = walk_buffers,
     .gives = "The buffer that follows or precedes in the walk; the integer 0 when there is none."},
    {.of = Of::windows_word, .items = {"FIRST", "LAST"}, .get = walk_windows,
     .gives = "The first or the last window; the walk is there then."},
    {.of = Of::windows_word, .items = {"CURRENT"}, .get = walk_windows,
     .gives = "The current window; the walk is there then."},
    {.of = Of::windows_word, .items = {"NEXT", "PREVIOUS"}, .get = walk_windows,
     .gives = "The window that follows or precedes in the walk; the integer 0 when there is none."},

    {.of = Of::key_map, .items = {"NAME"}, .get = own_name,
     .gives = "Its name."},
    {.of = Of::key_map, .items = {"LENGTH", "RECORD_COUNT"}, .get = bound_keys,
     .gives = "The number of keys that it binds."},
    {.of = Of::key_map, .items = {"KEY_MAP_LIST"}, .get = list_of_key_map,
     .gives = "The name of the first key-map list that holds it; empty without one."},
    {.of = Of::key_map_list, .items = {"NAME"}, .get = own_name,
     .gives = "Its name."},
    {.of = Of::key_map_list, .items = {"LENGTH", "RECORD_COUNT"}, .get = maps_in_list,
     .gives = "The number of its key maps."},
};
// clang-format on

}  // namespace

std::span<const Attribute> object_attributes() {
    return kRows;
}

}  // namespace tpu
