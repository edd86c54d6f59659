// Learn sequences: statements recorded as they run, to be run again.
#include "builtins/common.h"
#include "builtins/families.h"
#include "editor/editor.h"

namespace tpu::builtins {

namespace {

void learn_begin(Call& call) {
    Learning& learning = call.parser.learning;
    // Nor while one is replayed: nobody would end what it begins.
    if (learning.is_on() || learning.is_replaying()) {
        call.parser.record_error("TPU$_ONELEARN", learning.is_on()
                                                      ? "A learn sequence is being recorded already"
                                                      : "A learn sequence cannot begin another");
        return editor_of(call).set_message(call.parser.error_text);
    }
    learning.begin();
    editor_of(call).set_message("Learning... call LEARN_END or LEARN_ABORT");
}

Value learn_end(Call& call) {
    Learning& learning = call.parser.learning;
    learning.end();
    editor_of(call).set_message("LEARN_END");
    return learning.sequence() ? learn_value(learning.sequence()) : tpu_unspecified();
}

void learn_abort(Call& call) {
    call.parser.learning.abort();
    editor_of(call).set_message("LEARN_ABORT");
}

// The statements, each on a line of its own.
Value expand_learn(Call& call) {
    std::shared_ptr<LearnSequence> learned = learned_of(call.args.value(0));
    if (!learned) return wrong_type(call, "a learn sequence");
    std::string text;
    for (const std::string& statement : learned->statements) {
        if (!text.empty()) text += '\n';
        text += statement;
    }
    return Value::make_str(text);
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "LEARN_BEGIN", .statement = learn_begin, .form = "LEARN_BEGIN",
     .help = "Record the statements that follow."},
    {.name = "LEARN_END", .function = learn_end, .bare = true, .form = "LEARN_END",
     .help = "End recording; as a function, the learn sequence."},
    {.name = "LEARN_ABORT", .statement = learn_abort, .form = "LEARN_ABORT",
     .help = "End recording and forget what was recorded."},
    {.name = "EXPAND_LEARN", .statement = shown<expand_learn>, .function = expand_learn, .form = "EXPAND_LEARN(sequence)",
     .help = "The statements of a learn sequence as text, each on a line."},
};
// clang-format on

}  // namespace

std::span<const Builtin> learn() {
    return kRows;
}

}  // namespace tpu::builtins
