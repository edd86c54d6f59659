// Searching and matching.
#include "pattern/search.h"

#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"
#include "text/ascii.h"

namespace tpu::builtins {

namespace {

// A direction as written, or as the value of the argument; else that of the buffer.
bool goes_backward(Call& call) {
    for (const std::string& text : {std::string(call.args.raw(1)), call.args.text(1)}) {
        std::string word = ascii::upper(ascii::trim(text));
        if (word == "REVERSE") return true;
        if (word == "FORWARD") return false;
    }
    return call.buffer().reverse;
}

std::optional<Range> find(Call& call, bool move_cursor) {
    TPUPattern pattern = pattern_argument(call.args, 0, call.args.raw(0));
    Buffer& buffer = call.buffer();
    Work work = call.parser.interruptible();
    std::optional<Range> found =
        goes_backward(call) ? search_pattern_backward(buffer, pattern, move_cursor, &work)
                            : search_pattern_forward(buffer, pattern, move_cursor, false, &work);
    editor_of(call).search_succeeded = found.has_value();
    if (!found && work.end == Work::End::done)
        call.parser.record_error("TPU$_STRNOTFOUND", "String not found");
    return found;
}

void search_quietly(Call& call) {
    if (call.args.whole().empty()) {
        return editor_of(call).set_message("SEARCH requires a string or pattern");
    }
    find(call, true);
}

void search(Call& call) {
    search_quietly(call);
    if (call.args.whole().empty() || call.parser.interrupted) return;
    editor_of(call).set_message(editor_of(call).search_succeeded ? "Found" : "Not found");
}

Value search_range(Call& call) {
    if (call.args.count() == 0) return wrong_type(call, "a string or a pattern");
    std::optional<Range> found = find(call, false);
    return found ? Value::make_range(*found) : tpu_unspecified();
}

void match(Call& call) {
    TPUPattern pattern = pattern_argument(call.args, 0, call.args.whole());
    Buffer& buffer = call.buffer();
    std::size_t end = 0;
    std::string line = buffer.current_line();  // which puts the cursor into the text
    bool matched = pattern.match_at(line, buffer.cursor_column, end);
    editor_of(call).match_succeeded = matched;
    editor_of(call).set_message(matched ? "MATCH succeeded" : "MATCH failed");
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "SEARCH", .statement = search, .function = search_range,
     .form = "SEARCH(pattern [, FORWARD or REVERSE])",
     .help = "Go to the next match and tell of it; as a function, its range, without going there."},
    {.name = "SEARCH_QUIETLY", .statement = search_quietly, .function = search_range,
     .form = "SEARCH_QUIETLY(pattern [, FORWARD or REVERSE])",
     .help = "The same without a message."},
    {.name = "MATCH", .statement = match,
     .form = "MATCH(pattern)", .help = "Tell whether the pattern matches at the cursor."},
};
// clang-format on

}  // namespace

std::span<const Builtin> search() {
    return kRows;
}

}  // namespace tpu::builtins
