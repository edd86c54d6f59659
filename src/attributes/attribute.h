// Attributes of buffers, windows, the session and what else there is: a row says what one is
// called, what it belongs to, where it is kept and what there is to say on it. SET, GET_INFO,
// commands, HELP, SHOW and documents read the rows.
//
// Most attributes are just a field. What is more has functions that read or set it. A row
// without names of items cannot be read, and one without keywords cannot be set.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "attributes/set_call.h"
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

// What an attribute belongs to: those before the window are objects of just that kind, the
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

// A command SET on the command line. Its words in upper case are SET and the keyword.
struct SetCommand {
    std::string_view form = {};  // how it is written; empty: there is none
    std::string_view help = {};  // one sentence
    std::size_t values = 0;      // that it needs at least
    std::uint64_t lowest = 0;    // number that it takes
};

// A name by which SET changes an attribute.
struct Keyword {
    std::string_view name;    // upper case
    std::string_view help;    // one sentence
    SetCommand command = {};  // on the command line
};

// A line of SHOW.
struct Shown {
    std::string_view label = {};  // empty: SHOW leaves the attribute out
    std::string_view on = "on", off = "off";
    std::string_view none = {};                       // for an empty text
    std::string (*text)(const TPUEditor&) = nullptr;  // goes before the field
};

struct Attribute {
    using Field = std::variant<std::monostate, bool Buffer::*, std::uint64_t Buffer::*,
                               std::string Buffer::*, bool TPUEditor::*, int TPUEditor::*,
                               std::uint64_t TPUEditor::*, std::string TPUEditor::*>;

    Of of;
    std::array<std::string_view, 3> items = {};  // of GET_INFO, upper case; the rest empty
    Field field = {};                            // what GET_INFO reads and SET sets ...
    Value (*get)(const Subject&) = nullptr;      // ... but for those that have a function
    bool reads_as_keyword = false;               // a switch; any other reads as 1 or 0
    std::string_view gives = {};                 // GET_INFO, in a sentence without a verb
    std::array<Keyword, 2> keywords = {};        // of SET; the rest empty
    // How the values of SET are written. Empty: it takes none, and the first keyword
    // switches on, the second one off.
    std::string_view values = {};
    std::uint64_t most = INT64_MAX;  // of a number in the field
    void (*set)(SetCall&) = nullptr;
    bool ignores_buffer = false;  // that may stand before the values all the same
    Shown shown = {};

    bool is_readable() const { return !items[0].empty(); }
    // Whether a buffer may stand before the values of SET.
    bool takes_buffer() const;
};

// In the order of matching: of those that have an item and fit the object, the first counts.
const std::vector<const Attribute*>& all_attributes();

// The keywords that are accepted and change nothing, since they are about what this
// editor does not have.
std::span<const std::string_view> ignored_set_keywords();

// Reads an item of an object; unspecified when the object has no such item. The item is in
// upper case.
Value get_info(TPUEditor& editor, const Value& object, std::string_view item);

// A keyword of SET with its attribute.
struct NamedAttribute {
    const Attribute* row = nullptr;  // null: none has that name
    const Keyword* keyword = nullptr;

    // Of the keywords of a switch that takes no values.
    bool switches_on() const { return keyword == &row->keywords[0]; }
};

// The name is in upper case.
NamedAttribute find_keyword(std::string_view name);

// Does what SET does for a keyword in upper case: its values, and a buffer before them where
// the attribute takes one, are the arguments from the second on. False: it names nothing.
bool set_attribute(TPUEditor& editor, std::string_view keyword, Args& args);

// What SHOW tells of an attribute of the session, or of the current buffer, which there is then.
std::string shown_text(const Attribute& row, TPUEditor& editor);

template <class Integer>
Value number_value(Integer n) {
    return Value::make_int(static_cast<long long>(n));
}

// The tables.
std::span<const Attribute> object_attributes();
std::span<const Attribute> window_attributes();
std::span<const Attribute> buffer_attributes();
std::span<const Attribute> session_attributes();

}  // namespace tpu
