#include "editor/editor.h"

#include "editor/process.h"
#include "editor/recovery.h"
#include "store/open_files.h"

namespace tpu {

TPUEditor::TPUEditor(Ports outside, const Vocabulary& words)
    : ports(outside),
      vocabulary(words),
      parser(*this, words.builtins),
      timer_start(outside.clock.now()) {
    join_sessions();
}

TPUEditor::~TPUEditor() {
    // Where memory is too short, they are asked to end one by one as they go.
    enough_memory([&] {
        std::vector<std::shared_ptr<TPUProcess>> all = processes;
        all.insert(all.end(), dismissed_processes_.begin(), dismissed_processes_.end());
        TPUProcess::end_all(all);
    });
    leave_sessions();
}

}  // namespace tpu
