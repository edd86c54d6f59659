// Statements for windowing toolkits: accepted, and without effect on a terminal.
#include "builtins/families.h"
#include "editor/editor.h"

namespace tpu::builtins {

namespace {

void accept(Call& call) {
    editor_of(call).set_message(std::string(call.name) + ": accepted (no-op in ncurses build)");
}

constexpr Builtin row(std::string_view name) {
    return {.name = name,
            .statement = accept,
            .form = name,
            .help = "Accepted, and without effect on a terminal."};
}

constexpr Builtin kRows[] = {
    row("DEFINE_WIDGET_CLASS"),
    row("CREATE_WIDGET"),
    row("MANAGE_WIDGET"),
    row("RAISE_WIDGET"),
    row("LOWER_WIDGET"),
    row("REALIZE_WIDGET"),
    row("UNMANAGE_WIDGET"),
    row("READ_GLOBAL_SELECT"),
    row("WRITE_GLOBAL_SELECT"),
    row("SEND_CLIENT_MESSAGE"),
    row("GET_DEFAULT"),
    row("GET_GLOBAL_SELECT"),
    row("CONVERT"),
};

}  // namespace

std::span<const Builtin> toolkit() {
    return kRows;
}

}  // namespace tpu::builtins
