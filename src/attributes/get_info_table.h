// The items of GET_INFO: which there are, what they are asked of, what they give.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "buffer/marker.h"
#include "value/value.h"

namespace tpu {

class Buffer;
class TPUEditor;
struct TPUWindow;

// What the object of GET_INFO comes to. Any object stands for a buffer, a place and a
// window: what it is not itself is taken from the current buffer.
struct Subject {
    TPUEditor& editor;
    const Value& object;
    std::string_view item;  // upper case
    Buffer& buffer;         // the object if it is one, else the current buffer
    Marker place;           // a marker, or else a cursor: of the window's buffer or the buffer
    TPUWindow* window;      // the window, or one that shows the place; null without any
};

// What an item is asked of: those before the window are objects of just that kind, the
// others are a part of every subject that has it.
enum class Of : unsigned char {
    range,
    screen_word,
    command_line_word,
    buffers_word,
    windows_word,
    key_map,
    key_map_list,
    window,
    place,
    buffer,
    session,
};

// As documents call it.
std::string_view name_of(Of of);

struct InfoItem {
    std::array<std::string_view, 3> names;  // upper case; the rest empty
    Of of;
    Value (*read)(const Subject&);
    std::string_view help;  // what it gives, in a sentence without a verb
};

std::span<const InfoItem> info_items();

// Reads an item of an object; unspecified when the object has no such item.
Value get_info(TPUEditor& editor, const Value& object, std::string_view item);

}  // namespace tpu
