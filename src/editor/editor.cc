#include "editor/editor.h"

#include "editor/recovery.h"
#include "store/open_files.h"

namespace tpu {

TPUEditor::TPUEditor(Ports outside, const Vocabulary& words)
    : ports(outside), vocabulary(words), parser(*this, words.builtins) {
    timer.start(ports.clock);
    join_sessions();
}

TPUEditor::~TPUEditor() {
    // Where memory is too short, they are asked to end one by one as they go.
    enough_memory([&] { processes.end_all(); });
    leave_sessions();
}

}  // namespace tpu
