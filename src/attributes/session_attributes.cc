// Attributes of the session.
#include <algorithm>
#include <limits>

#include "attributes/attribute.h"
#include "editor/editor.h"

namespace tpu {

namespace {

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

std::string shown_timer(const TPUEditor& editor) {
    std::string interval = std::to_string(editor.timer.interval) + " ms";
    return editor.timer.action.empty() ? interval : interval + "  -> " + editor.timer.action;
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

// clang-format off
constexpr Attribute kRows[] = {
    {.of = Of::session, .items = {"SCREEN_HEIGHT", "SCREEN_ROWS"}, .field = &TPUEditor::rows,
     .gives = "The rows of the screen."},
    {.of = Of::session, .items = {"SCREEN_WIDTH", "SCREEN_COLS"}, .field = &TPUEditor::cols,
     .gives = "The columns of the screen."},
    {.of = Of::session, .items = {"WINDOW_COUNT"}, .get = [](const Subject& s) { return number_value(s.editor.windows.size()); },
     .gives = "The number of windows."},
    {.of = Of::session, .items = {"BUFFER_COUNT"}, .get = [](const Subject& s) { return number_value(s.editor.buffers.size()); },
     .gives = "The number of buffers."},
    {.of = Of::session, .items = {"LOOP_LIMIT"}, .get = [](const Subject& s) { return number_value(s.editor.parser.loop_limit); },
     .gives = "After how many passes a LOOP ends by itself; 0 for never.",
     .keywords = {{{"LOOP_LIMIT", "After how many passes a LOOP ends by itself, with an error; 100000 unless it is set, OFF for never."}}},
     .values = "passes, or OFF", .set = put_loop_limit},
    {.of = Of::session, .items = {"PROCEDURE_COUNT"}, .get = [](const Subject& s) { return number_value(s.editor.parser.procedures.size()); },
     .gives = "The number of procedures that programs have defined."},
    {.of = Of::session, .items = {"MOUSE_ROW"}, .field = &TPUEditor::mouse_row,
     .gives = "The row on the screen of the last report of the mouse, counting from 0; -1 before any."},
    {.of = Of::session, .items = {"MOUSE_COLUMN"}, .field = &TPUEditor::mouse_column,
     .gives = "The column on the screen of the last report of the mouse, counting from 0; -1 before any."},
    {.of = Of::session, .items = {"BELL"}, .field = &TPUEditor::bell,
     .gives = "1 when BELL rings, else 0.",
     .keywords = {{{"BELL", "Whether BELL rings the terminal's bell."}}},
     .values = "ON or OFF",
     .shown = {.label = "Bell"}},
    {.of = Of::session, .items = {"MOUSE"}, .field = &TPUEditor::mouse,
     .gives = "1 when the mouse is in use, else 0.",
     .keywords = {{{"MOUSE", "Whether the terminal reports the mouse, so that clicks move the cursor."}}},
     .values = "ON or OFF", .set = switch_mouse,
     .shown = {.label = "Mouse"}},
    {.of = Of::session, .items = {"TIMER"}, .get = [](const Subject& s) { return number_value(s.editor.timer.interval); },
     .gives = "The milliseconds between two runs of the timer's statement; 0 when the timer is off.",
     .keywords = {{{"TIMER", "Run a statement again and again, so far apart; 0 or less switches the timer off."}}},
     .values = "milliseconds [, statement]", .set = put_timer,
     .shown = {.label = "Timer", .text = shown_timer}},
    {.of = Of::session, .items = {"PRE_KEY_PROCEDURE"}, .field = &TPUEditor::pre_key_procedure,
     .gives = "The statement that runs before each key; empty without one.",
     .keywords = {{{"PRE_KEY_PROCEDURE", "What runs before each key; nothing when it is empty or OFF."}}},
     .values = "statement", .set = put_procedure<&TPUEditor::pre_key_procedure>,
     .shown = {.label = "Pre-key proc", .none = "<none>"}},
    {.of = Of::session, .items = {"POST_KEY_PROCEDURE"}, .field = &TPUEditor::post_key_procedure,
     .gives = "The statement that runs after each key; empty without one.",
     .keywords = {{{"POST_KEY_PROCEDURE", "What runs after each key; nothing when it is empty or OFF."}}},
     .values = "statement", .set = put_procedure<&TPUEditor::post_key_procedure>,
     .shown = {.label = "Post-key proc", .none = "<none>"}},
    {.of = Of::session, .items = {"UNDEFINED_KEY"}, .field = &TPUEditor::undefined_key_procedure,
     .gives = "The statement for keys without a meaning; empty without one.",
     .keywords = {{{"UNDEFINED_KEY", "What runs for a key that is neither bound nor a character; nothing when it is empty or OFF."}}},
     .values = "statement", .set = put_procedure<&TPUEditor::undefined_key_procedure>,
     .shown = {.label = "Undef-key proc", .none = "<none>"}},
    {.of = Of::session, .items = {"SHIFT_KEY"}, .field = &TPUEditor::shift_key,
     .gives = "The code of the SHIFT key; 0 without one.",
     .keywords = {{{"SHIFT_KEY", "A second key that works like GOLD, given by its name or code."}}},
     .values = "key, or OFF", .set = put_shift_key},
};
// clang-format on

}  // namespace

std::span<const Attribute> session_attributes() {
    return kRows;
}

}  // namespace tpu
