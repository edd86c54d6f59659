#include "attributes/attribute.h"

#include <algorithm>

#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu {

namespace {

using Type = Value::Type;

// clang-format off
constexpr std::string_view kIgnored[] = {
    "WIDTH", "HEIGHT", "PAD", "TEXT", "SCROLLING", "SCREEN_UPDATE", "PROMPT_AREA", "DISPLAY_VALUE",
    "TRACEBACK", "DEBUG", "INFORMATIONAL", "SUCCESS", "MESSAGE_FLAGS", "AUTO_REPEAT",
    "FACILITY_NAME", "DEFAULT_DIRECTORY", "RECORD_MODE", "RECORD_ATTRIBUTE", "LEFT_MARGIN_ACTION",
    "RIGHT_MARGIN_ACTION", "COLUMN_MOVE_VERTICAL", "CROSS_WINDOW_BOUNDS", "DETACHED_ACTION",
    "MOVE_VERTICAL_CONTEXT", "MESSAGE_ACTION_LEVEL", "MESSAGE_ACTION_TYPE", "SELF_INSERT",
    "SPECIAL_ERROR_SYMBOL", "ERASE_UNMODIFIABLE", "OUTPUT_FILE", "KEYSTROKE_RECOVERY",
    "ACTIVE_AREA", "CLIENT_MESSAGE", "DEFAULT_FILE", "DRM_HIERARCHY", "ENABLE_RESIZE",
    "FIRST_INPUT_ACTION", "GLOBAL_SELECT", "GLOBAL_SELECT_GRAB", "GLOBAL_SELECT_READ",
    "GLOBAL_SELECT_TIME", "GLOBAL_SELECT_UNGRAB", "ICON_NAME", "ICON_PIXMAP", "INPUT_FOCUS",
    "INPUT_FOCUS_GRAB", "INPUT_FOCUS_UNGRAB", "MAPPED_WHEN_MANAGED", "MENU_POSITION",
    "PAD_OVERSTRUCK_TABS", "RESIZE_ACTION", "SCREEN_LIMITS", "SCROLL_BAR",
    "SCROLL_BAR_AUTO_THUMB", "UID", "WIDGET", "WIDGET_CALLBACK", "WIDGET_CALL_DATA",
    "WIDGET_CONTEXT_HELP", "WIDGET_RESOURCE_TYPES", "STATUS", "CLI",
};
// clang-format on

// Whether the object is that word, as a string or a keyword.
bool is_word(const Value& object, std::string_view word) {
    bool is_text = object.is(Type::string) || object.is(Type::keyword);
    return is_text && ascii::upper(object.text()) == word;
}

// Key maps and lists of them stand for themselves under their names.
template <class Map>
bool names_one(const Map& owned, const Value& object) {
    bool is_text = object.is(Type::string) || object.is(Type::keyword);
    return is_text && owned.contains(std::string(object.text()));
}

bool has_part(const Subject& s, Of of) {
    switch (of) {
        case Of::range: return s.object.is(Type::range);
        case Of::screen_word: return is_word(s.object, "SCREEN");
        case Of::command_line_word: return is_word(s.object, "COMMAND_LINE");
        case Of::buffers_word: return is_word(s.object, "BUFFERS");
        case Of::windows_word: return is_word(s.object, "WINDOWS");
        case Of::key_map: return names_one(s.editor.key_maps, s.object);
        case Of::key_map_list: return names_one(s.editor.key_map_lists, s.object);
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

// Calls use(value) with the value of the attribute's field, if it has one.
template <class Use>
void with_field(const Attribute& row, TPUEditor& editor, Buffer* buffer, Use use) {
    auto use_field = [&](auto field) {
        if constexpr (requires { buffer->*field; }) {
            use(buffer->*field);
        } else if constexpr (requires { editor.*field; }) {
            use(editor.*field);
        }
    };
    std::visit(use_field, row.field);
}

Value value_of(bool on, const Attribute& row) {
    return row.reads_as_keyword ? Value::make_kw(row.keywords[on ? 0 : 1].name) : number_value(on);
}

Value value_of(const std::string& text, const Attribute&) {
    return Value::make_str(text);
}

template <class Integer>
Value value_of(Integer n, const Attribute&) {
    return number_value(n);
}

Value read(const Attribute& row, const Subject& subject) {
    if (row.get) return row.get(subject);
    Value value = tpu_unspecified();
    with_field(row, subject.editor, &subject.buffer,
               [&](const auto& field) { value = value_of(field, row); });
    return value;
}

std::string shown(bool on, const Attribute& row) {
    if (row.reads_as_keyword) return std::string(row.keywords[on ? 0 : 1].name);
    return std::string(on ? row.shown.on : row.shown.off);
}

std::string shown(const std::string& text, const Attribute& row) {
    return text.empty() ? std::string(row.shown.none) : text;
}

template <class Integer>
std::string shown(Integer n, const Attribute&) {
    return std::to_string(n);
}

// What the values of SET say, or the keyword alone.
void take(SetCall& call, const NamedAttribute& named, bool& on) {
    on = named.row->values.empty() ? named.switches_on() : call.on();
}

void take(SetCall& call, const NamedAttribute&, std::string& text) {
    text = call.text();
}

template <class Integer>
void take(SetCall& call, const NamedAttribute& named, Integer& n) {
    n = static_cast<Integer>(call.number(0, 0, named.row->most));
}

// SET(keyword [, buffer], value, ...)
void set(const NamedAttribute& named, TPUEditor& editor, Args& args) {
    const Attribute& row = *named.row;
    Buffer* given = nullptr;
    if (row.takes_buffer() && args.count() >= 3) given = args.value(1).buffer();
    Buffer& buffer = given ? *given : *editor.current_buffer;
    SetCall call{editor, buffer, args, given ? 2u : 1u};
    if (row.set) return row.set(call);
    with_field(row, editor, &buffer, [&](auto& field) { take(call, named, field); });
}

}  // namespace

std::string_view name_of(Of of) {
    constexpr std::string_view kNames[] = {
        "range",        "`SCREEN`", "`COMMAND_LINE`",   "`BUFFERS`", "`WINDOWS`", "key map",
        "key-map list", "window",   "marker or cursor", "buffer",    "session",
    };
    return kNames[static_cast<std::size_t>(of)];
}

bool Attribute::takes_buffer() const {
    if (values.empty()) return false;
    return of == Of::place || of == Of::buffer || ignores_buffer;
}

const std::vector<const Attribute*>& all_attributes() {
    static const std::vector<const Attribute*> kAll = [] {
        std::vector<const Attribute*> all;
        for (auto table :
             {object_attributes, window_attributes, buffer_attributes, session_attributes}) {
            for (const Attribute& row : table()) all.push_back(&row);
        }
        return all;
    }();
    return kAll;
}

std::span<const std::string_view> ignored_set_keywords() {
    return kIgnored;
}

Value get_info(TPUEditor& editor, const Value& object, std::string_view item) {
    Buffer& buffer = object.buffer() ? *object.buffer() : *editor.current_buffer;
    Subject subject{editor, object, item, buffer, place_of(object, buffer), window_of(object)};
    if (!subject.window) subject.window = window_that_shows(editor, subject.place.buffer);
    for (const Attribute* row : all_attributes()) {
        bool named = std::find(row->items.begin(), row->items.end(), item) != row->items.end();
        if (named && !item.empty() && has_part(subject, row->of)) return read(*row, subject);
    }
    return tpu_unspecified();
}

std::string shown_text(const Attribute& row, TPUEditor& editor) {
    if (row.shown.text) return row.shown.text(editor);
    std::string text;
    with_field(row, editor, editor.current_buffer,
               [&](const auto& field) { text = shown(field, row); });
    return text;
}

NamedAttribute find_keyword(std::string_view name) {
    for (const Attribute* row : all_attributes()) {
        for (const Keyword& keyword : row->keywords) {
            if (keyword.name == name && !name.empty()) return {row, &keyword};
        }
    }
    return {};
}

bool set_attribute(TPUEditor& editor, std::string_view keyword, Args& args) {
    NamedAttribute named = find_keyword(keyword);
    if (named.row) {
        set(named, editor, args);
        return true;
    }
    return std::find(std::begin(kIgnored), std::end(kIgnored), keyword) != std::end(kIgnored);
}

}  // namespace tpu
