// Commands of the shell that have the whole screen to themselves.
#include <cstdlib>

#include "editor/editor.h"

namespace tpu {

void TPUEditor::def_endwin_then_run(const std::string& command) {
    if (command.empty()) return set_message("SPAWN requires a command");
    if (!headless) ports.terminal.leave();
    // Deliberate: the raw wait status is shown, not the command's own.
    int status = std::system(command.c_str());
    if (!headless) ports.terminal.enter();
    set_message("SPAWN exit code " + std::to_string(status));
}

}  // namespace tpu
