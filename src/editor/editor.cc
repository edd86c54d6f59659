#include "editor/editor.h"

#include "proc/process.h"

namespace tpu {

TPUEditor::TPUEditor(Ports outside)
    : ports(outside), parser(*this), timer_start(outside.clock.now()) {
    join_sessions();
}

TPUEditor::~TPUEditor() {
    constexpr std::chrono::milliseconds kPatience(800);
    TPUProcess::end_all(processes, kPatience);
    leave_sessions();
}

}  // namespace tpu
