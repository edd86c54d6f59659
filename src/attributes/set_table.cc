#include "attributes/set_table.h"

#include <algorithm>
#include <limits>

#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu {

std::uint64_t SetCall::number(std::size_t i, std::uint64_t least, std::uint64_t most) {
    long long given = std::max(0LL, args.number(first + i));
    return std::clamp(static_cast<std::uint64_t>(given), least, most);
}

std::string SetCall::text(std::size_t i) {
    return tpu_value_is_unspecified(value(i)) ? std::string() : value(i).as_string();
}

std::string SetCall::word(std::size_t i) {
    bool on_or_else_on = args.on(first + i, true), on_or_else_off = args.on(first + i, false);
    if (on_or_else_on == on_or_else_off) return on_or_else_on ? "ON" : "OFF";
    return ascii::upper(text(i));
}

namespace {

constexpr std::uint64_t kLastMargin = 65'535;

template <auto flag, bool state>
void put(SetCall& call) {
    call.buffer.*flag = state;
}

template <auto flag>
void switch_buffer(SetCall& call) {
    call.buffer.*flag = call.on();
}

template <auto flag>
void switch_editor(SetCall& call) {
    call.editor.*flag = call.on();
}

template <auto field>
void put_text(SetCall& call) {
    call.buffer.*field = call.text();
}

template <auto margin>
void put_margin(SetCall& call) {
    call.buffer.*margin = call.number(0, 0, kLastMargin);
}

void put_margins(SetCall& call) {
    put_margin<&Buffer::left_margin>(call);
    if (call.count() > 1) call.buffer.right_margin = call.number(1, 0, kLastMargin);
}

void put_max_lines(SetCall& call) {
    call.buffer.max_lines = call.number(0, 0, std::numeric_limits<std::int64_t>::max());
}

void switch_free_cursor(SetCall& call) {
    call.buffer.free_cursor = call.on();
    call.buffer.clamp_cursor();
}

void switch_mouse(SetCall& call) {
    call.editor.mouse = call.on();
    if (!call.editor.headless) call.editor.ports.terminal.set_mouse(call.editor.mouse);
}

// Takes over a statement: its text, or none for OFF and the like.
void put_statement(SetCall& call, std::size_t i, std::string& statement) {
    using Type = Value::Type;
    const Value& value = call.value(i);
    bool is_text = value.is(Type::string) || value.is(Type::keyword);
    bool is_off = value.is(Type::integer) && value.integer() == 0;
    if (!is_text && !is_off) {
        return call.editor.set_message("SET needs the text of a statement");
    }
    statement = is_text && call.word(i) != "OFF" ? call.text(i) : std::string();
}

template <auto procedure>
void put_procedure(SetCall& call) {
    put_statement(call, 0, call.editor.*procedure);
}

// Without a procedure the timer keeps the one that it has.
void put_timer(SetCall& call) {
    TPUEditor& editor = call.editor;
    editor.timer.interval = static_cast<int>(call.number(0, 0, std::numeric_limits<int>::max()));
    if (call.count() > 1) put_statement(call, 1, editor.timer.action);
    editor.timer.start(editor.ports.clock);
}

// A number, or OFF.
void put_loop_limit(SetCall& call) {
    constexpr std::uint64_t kNever = 0;
    bool is_number = call.value().is(Value::Type::integer) && call.value().integer() > 0;
    if (!is_number && call.word() != "OFF") {
        return call.editor.set_message("SET(LOOP_LIMIT) needs a number of passes or OFF");
    }
    call.editor.parser.loop_limit = is_number ? call.number(0, 1, INT64_MAX) : kNever;
}

// A key is a code or the name of a key.
void put_shift_key(SetCall& call) {
    const Value& key = call.value();
    std::string word = call.word();
    int code = 0;
    if (key.is(Value::Type::integer)) {
        code = static_cast<int>(
            std::clamp<long long>(key.integer(), 0, std::numeric_limits<int>::max()));
    } else if (!word.empty() && word != "OFF") {
        code = TPUEditor::key_name_to_code(word);
    }
    if (code == kNoKey) return call.editor.set_message("Unknown key name");
    call.editor.shift_key = code;
}

void put_status_line(SetCall& call) {
    TPUWindow* window = window_of(call.value(0));
    if (!window) return;
    std::string word = call.word(1);
    if (word == "ON" || word == "TEXT") {
        window->has_status = true;
        window->status_format = call.text(2);
    } else if (word == "OFF" || word == "NONE") {
        window->has_status = false;
    } else {
        call.editor.set_message("SET(STATUS_LINE) needs ON, TEXT, OFF or NONE");
    }
}

// clang-format off
constexpr SetKeyword kKeywords[] = {
    {.name = "INSERT", .apply = put<&Buffer::insert_mode, true>,
     .help = "Typed characters push the text before them."},
    {.name = "OVERSTRIKE", .apply = put<&Buffer::insert_mode, false>,
     .help = "Typed characters replace those under the cursor."},
    {.name = "WRAP", .apply = put<&Buffer::auto_wrap, true>,
     .help = "A blank typed past the right margin wraps the line."},
    {.name = "NO_WRAP", .apply = put<&Buffer::auto_wrap, false>,
     .help = "Lines are not wrapped."},
    {.name = "BACKUP", .apply = switch_buffer<&Buffer::backup_on_write>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Whether writing keeps the previous file under its name with .bak."},
    {.name = "FORWARD", .apply = put<&Buffer::reverse, false>,
     .help = "Searches go forward."},
    {.name = "REVERSE", .apply = put<&Buffer::reverse, true>,
     .help = "Searches go backward."},
    {.name = "MODIFIED", .apply = switch_buffer<&Buffer::modified>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Whether the text counts as changed since it was written."},
    {.name = "MODIFIABLE", .apply = switch_buffer<&Buffer::modifiable>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Whether the text can be changed."},
    {.name = "NO_WRITE", .apply = switch_buffer<&Buffer::no_write>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Marks the buffer as one that is not written: trying to fails."},
    {.name = "PERMANENT", .apply = put<&Buffer::permanent, true>,
     .help = "The buffer cannot be deleted from now on."},
    {.name = "SYSTEM", .apply = switch_buffer<&Buffer::system>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Marks the buffer as one of the editor's own."},
    {.name = "JOURNALING", .apply = switch_buffer<&Buffer::journaling>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Whether an open journal gets records of the buffer."},
    {.name = "EOB_TEXT", .apply = put_text<&Buffer::eob_text>, .value = "text", .takes_buffer = true,
     .help = "What is shown behind the last line."},
    {.name = "LEFT_MARGIN", .apply = put_margin<&Buffer::left_margin>, .value = "column", .takes_buffer = true,
     .help = "The column in which filled and wrapped lines begin; 0 is the first one too."},
    {.name = "RIGHT_MARGIN", .apply = put_margin<&Buffer::right_margin>, .value = "column", .takes_buffer = true,
     .help = "The column up to which lines are filled; 0 for none, which ends wrapping and the mark of the margin."},
    {.name = "MARGINS", .apply = put_margins, .value = "left [, right]", .takes_buffer = true,
     .help = "Both margins; a right one that is not given stays."},
    {.name = "MAX_LINES", .apply = put_max_lines, .value = "lines", .takes_buffer = true,
     .help = "How many lines the buffer is meant to have at most, 0 for any number; a note for programs, nothing is cut off."},
    {.name = "TAB_STOPS", .apply = set_tab_stops, .value = "distance, or columns", .takes_buffer = true,
     .help = "Where the tab key goes: every so many columns, or to several columns, or to those in a text such as \"5 10 20\"."},
    {.name = "LINE_NUMBER", .apply = switch_editor<&TPUEditor::show_line_numbers>, .value = "ON or OFF", .takes_buffer = true,
     .help = "Whether windows show line numbers; it holds for all buffers."},
    {.name = "BELL", .apply = switch_editor<&TPUEditor::bell>, .value = "ON or OFF",
     .help = "Whether BELL rings the terminal's bell."},
    {.name = "KEY_MAP_LIST", .apply = put_text<&Buffer::key_map_list>, .value = "name", .takes_buffer = true,
     .help = "The key-map list for keys in the buffer; while there is none of that name, the editor's."},
    {.name = "MOUSE", .apply = switch_mouse, .value = "ON or OFF",
     .help = "Whether the terminal reports the mouse, so that clicks move the cursor."},
    {.name = "TIMER", .apply = put_timer, .value = "milliseconds [, statement]",
     .help = "Run a statement again and again, so far apart; 0 or less switches the timer off."},
    {.name = "LOOP_LIMIT", .apply = put_loop_limit, .value = "passes, or OFF",
     .help = "After how many passes a LOOP ends by itself, with an error; 100000 unless it is set, OFF for never."},
    {.name = "PRE_KEY_PROCEDURE", .apply = put_procedure<&TPUEditor::pre_key_procedure>, .value = "statement",
     .help = "What runs before each key; nothing when it is empty or OFF."},
    {.name = "POST_KEY_PROCEDURE", .apply = put_procedure<&TPUEditor::post_key_procedure>, .value = "statement",
     .help = "What runs after each key; nothing when it is empty or OFF."},
    {.name = "UNDEFINED_KEY", .apply = put_procedure<&TPUEditor::undefined_key_procedure>, .value = "statement",
     .help = "What runs for a key that is neither bound nor a character; nothing when it is empty or OFF."},
    {.name = "SHIFT_KEY", .apply = put_shift_key, .value = "key, or OFF",
     .help = "A second key that works like GOLD, given by its name or code."},
    {.name = "VIDEO", .apply = set_video, .value = "OFF, or attributes", .takes_buffer = true,
     .help = "How the selection, or else the cursor line, looks: BOLD, REVERSE, UNDERLINE, DIM, BLINK, STANDOUT or NORMAL; OFF takes away all that touches it."},
    {.name = "STATUS_LINE", .apply = put_status_line, .value = "window, ON or TEXT or OFF or NONE [, text]",
     .help = "Whether a window has a status line, and its text, in which %n, %f, %l and the like stand for the buffer's name, file, line; an empty text is the usual line."},
    {.name = "FREE_CURSOR", .apply = switch_free_cursor, .value = "ON or OFF", .takes_buffer = true,
     .help = "Whether the cursor can stand past the end of its line."},
};

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

}  // namespace

std::span<const SetKeyword> set_keywords() {
    return kKeywords;
}

std::span<const std::string_view> ignored_set_keywords() {
    return kIgnored;
}

}  // namespace tpu
