// Changing text: lines, characters, case, selections and what was cut.
#include <algorithm>

#include "actions/actions.h"
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "editor/undo_step.h"
#include "pattern/join.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

// The buffer of a value, which is to be changed: a step that fails puts it back.
Buffer* buffer_to_change(Call& call, const Value& value) {
    Buffer* buffer = buffer_of(value);
    if (buffer && editor_of(call).undo_step) editor_of(call).undo_step->protect(*buffer);
    return buffer;
}

void erase_character(Call& call) {
    call.buffer().erase_n_characters(bounded(call.args.number(0)));
}

void shift(Call& call) {
    Args& args = call.args;
    Buffer* target = &call.buffer();
    if (args.count() >= 2) {
        const Value& where = args.value(0);
        bool names_one = where.is(Value::Type::window) || where.is(Value::Type::buffer);
        if (names_one && buffer_of(where)) target = buffer_to_change(call, where);
    }
    Work work = call.parser.interruptible();
    target->shift_columns(args.count() > 0 ? bounded(args.number(args.count() - 1)) : 0, &work);
    tell_of_end(call, work);
}

void fill(Call& call) {
    Work work = call.parser.interruptible();
    if (actions::fill(editor_of(call), "FILL needs a range", work)) tell_of_end(call, work);
}

Buffer::Case case_mode(Args& args) {
    return actions::case_named(args.text(1));
}

void change_case(Call& call) {
    const Value& target = call.args.value(0);
    Buffer* buffer = buffer_to_change(call, target);
    if (!buffer) return;
    Work work = call.parser.interruptible();
    if (target.is(Value::Type::range)) {
        buffer->change_case_range(*target.range(), case_mode(call.args), &work);
    } else if (target.is(Value::Type::buffer)) {
        buffer->change_case_buffer(case_mode(call.args), &work);
    }
}

void translate(Call& call) {
    const Value& target = call.args.value(0);
    Buffer* buffer = buffer_to_change(call, target);
    if (!buffer) return;
    std::string from = call.args.text(1), to = call.args.text(2);
    Work work = call.parser.interruptible();
    if (target.is(Value::Type::range)) {
        buffer->translate_range(*target.range(), from, to, &work);
    } else if (target.is(Value::Type::buffer)) {
        buffer->translate(from, to, &work);
    }
}

void erase(Call& call) {
    const Value& what = call.args.value(0);
    if (!what.is(Value::Type::range)) return;
    if (Buffer* buffer = buffer_to_change(call, what)) buffer->erase_range(*what.range());
}

// REPLACE_TEXT(offset, count, text [, ON]); negative numbers count as 0.
void replace_text(Call& call) {
    auto bytes = [&](std::size_t i) {
        return static_cast<std::uint64_t>(std::max(0LL, call.args.number(i)));
    };
    const std::uint64_t offset = bytes(0), count = bytes(1);
    const std::string text = call.args.text(2);
    TextBuilder line;
    line.append(text);
    const bool is_line = call.args.count() > 3 && ascii::upper(call.args.raw(3)) == "ON";
    call.buffer().replace_text(offset, count, is_line ? line.take() : LineStore::from_text(text));
}

Range insert(Call& call, std::string_view text) {
    Work work = call.parser.interruptible();
    Range inserted = call.buffer().copy_text(text, editor_of(call).charset, &work);
    tell_of_end(call, work);
    return inserted;
}

// The inserted text as a range.
Value copy_text_range(Call& call) {
    return Value::make_range(insert(call, call.args.text(0)));
}

void copy_text(Call& call) {
    if (call.args.count() == 0) return;
    if (ascii::upper(call.args.whole()) == "SELECT_RANGE") {
        actions::copy(editor_of(call));
        return;
    }
    const Value& text = call.args.value(0);
    if (text.is(Value::Type::string)) {
        insert(call, text.text());
    } else {
        insert(call, text.as_string());
    }
}

Value select_range(Call& call) {
    std::optional<Range> selection = call.buffer().select_range();
    return selection ? Value::make_range(*selection) : tpu_unspecified();
}

void set_mark(Call& call) {
    actions::begin_selection(editor_of(call),
                             call.buffer().free_cursor ? "MARK (FREE_CURSOR) set" : "MARK set");
}

Value mark(Call& call) {
    bool free = ascii::upper(call.args.text(0)) == "FREE_CURSOR";
    return Value::make_marker(call.buffer().mark(free));
}

void store_paste(Call& call) {
    if (call.args.count() == 0) return editor_of(call).set_message("STORE_PASTE(name)");
    actions::store_paste(editor_of(call), call.args.text(0));
}

void recall_paste(Call& call) {
    if (call.args.count() == 0) return editor_of(call).set_message("RECALL_PASTE(name)");
    actions::insert_paste(editor_of(call), call.args.text(0));
}

// The text that is kept under a name.
Value named_paste(Call& call) {
    auto found = editor_of(call).named_pastes.find(ascii::upper(call.args.text(0)));
    if (found == editor_of(call).named_pastes.end()) return tpu_unspecified();
    return Value::make_str(found->second.text());
}

Value store_paste_value(Call& call) {
    store_paste(call);
    return named_paste(call);
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "SHIFT", .statement = shift,
     .form = "SHIFT([window or buffer,] columns)",
     .help = "Shift the lines of the buffer right, or left by a negative number."},
    {.name = "SPLIT_LINE", .statement = does<&Buffer::split_line>,
     .form = "SPLIT_LINE", .help = "Split the line at the cursor."},
    {.name = "APPEND_LINE", .statement = does<&Buffer::append_line>,
     .form = "APPEND_LINE", .help = "Append the cursor line to the line above."},
    {.name = "ERASE_LINE", .statement = does<&Buffer::erase_line>,
     .form = "ERASE_LINE", .help = "Remove the cursor line."},
    {.name = "ERASE_CHARACTER", .statement = erase_character,
     .form = "ERASE_CHARACTER(n)", .help = "Erase characters at the cursor, or to the left of it for a negative number."},
    {.name = "FILL", .statement = fill,
     .form = "FILL", .help = "Fill the selected lines between the margins."},
    {.name = "CHANGE_CASE", .statement = change_case,
     .form = "CHANGE_CASE(buffer or range [, UPPER or LOWER or INVERT])",
     .help = "Change the case of letters; without a word, each to the other case."},
    {.name = "TRANSLATE", .statement = translate,
     .form = "TRANSLATE(buffer or range, from, to)",
     .help = "Replace each character of one text by the one at the same place of the other."},
    {.name = "SELECT", .statement = does<&Buffer::select>,
     .form = "SELECT", .help = "Begin a selection at the cursor."},
    {.name = "SELECT_RANGE", .statement = does<actions::tell_of_selection>, .function = select_range, .bare = true,
     .form = "SELECT_RANGE", .help = "Tell whether there is a selection; as a function, its range."},
    {.name = "MOVE_TEXT", .statement = does<actions::cut>,
     .form = "MOVE_TEXT", .help = "Move the selection to the paste register."},
    {.name = "COPY_TEXT", .statement = copy_text, .function = copy_text_range,
     .form = "COPY_TEXT(text or SELECT_RANGE)",
     .help = "Insert the text at the cursor, or copy the selection to the paste register."},
    {.name = "REPLACE_TEXT", .statement = replace_text,
     .form = "REPLACE_TEXT(offset, count, text [, ON])",
     .help = "Put a text in the place of so many bytes behind so many others, whatever the modes are; the cursor goes behind it. With ON its line feeds end no lines."},
    {.name = "ERASE", .statement = erase,
     .form = "ERASE(range)", .help = "Erase the text of a range."},
    {.name = "LINE_BEGIN", .statement = does<actions::go_to_line_begin>,
     .function = [](Call&) { return pattern_value({{{TPUPatternToken::kLineBegin, "", 0, 0}}, false}); },
     .bare = true, .form = "LINE_BEGIN",
     .help = "Go to the beginning of the line; as a function, the pattern that matches there."},
    {.name = "LINE_END", .statement = does<actions::go_to_line_end>,
     .function = [](Call&) { return pattern_value({{{TPUPatternToken::kLineEnd, "", 0, 0}}, false}); },
     .bare = true, .form = "LINE_END",
     .help = "Go to the end of the line; as a function, the pattern that matches there."},
    {.name = "STORE_PASTE", .statement = store_paste, .function = store_paste_value,
     .form = "STORE_PASTE(name)", .help = "Keep the text that was cut or copied last under a name."},
    {.name = "RECALL_PASTE", .statement = recall_paste, .function = named_paste,
     .form = "RECALL_PASTE(name)", .help = "Insert the text kept under a name; as a function, that text."},
    {.name = "MARK", .statement = set_mark, .function = mark, .bare = true,
     .form = "MARK[(FREE_CURSOR)]",
     .help = "Begin a selection at the cursor; as a function, the marker of the cursor's place."},
    {.name = "UNDO", .statement = does<actions::undo>, .form = "UNDO", .help = "Undo what the running statement has changed, or else the last step."},
    {.name = "REDO", .statement = does<actions::redo>, .form = "REDO", .help = "Do again what was undone last."},
};
// clang-format on

}  // namespace

std::span<const Builtin> editing() {
    return kRows;
}

}  // namespace tpu::builtins
