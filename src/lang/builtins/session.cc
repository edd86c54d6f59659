// Learn sequences and commands of the operating system.
#include "editor/editor.h"
#include "lang/builtins/common.h"
#include "lang/builtins/families.h"

namespace tpu::builtins {

namespace {

void spawn(Call& call) {
    call.editor.def_endwin_then_run(call.args.count() > 0 ? call.args.text(0) : std::string());
}

// clang-format off
constexpr Builtin kRows[] = {
    {.name = "SPAWN", .statement = spawn, .most = 1, .form = "SPAWN(command)",
     .help = "Run a command of the shell on the whole screen."},
};
// clang-format on

}  // namespace

std::span<const Builtin> session() {
    return kRows;
}

}  // namespace tpu::builtins
