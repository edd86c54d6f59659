#include "editor/editor.h"

#include "proc/process.h"

namespace tpu {

TPUEditor::TPUEditor(Ports outside)
    : ports(outside), parser(*this), timer_start(outside.clock.now()) {}

TPUEditor::~TPUEditor() = default;

}  // namespace tpu
