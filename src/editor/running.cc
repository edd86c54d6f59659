// What the interpreter asks of the session while it runs code.
#include "editor/editor.h"
#include "editor/journal_entry.h"
#include "editor/undo_step.h"

namespace tpu {

bool TPUEditor::interrupt_waiting() {
    constexpr std::chrono::milliseconds kBetweenLooks(50);
    if (headless) return false;
    Clock::time_point now = ports.clock.now();
    if (now - last_look_ < kBetweenLooks) return false;
    last_look_ = now;
    return ports.terminal.interrupt_waiting();
}

void TPUEditor::step(const Piece& piece) {
    UndoStep step(*this);
    piece();
    step.finish();
}

void TPUEditor::record(const std::function<std::string()>& text, const Piece& piece) {
    JournalEntry entry(*this, text);
    piece();
    entry.finish();
}

void TPUEditor::come_to_rest() {
    free_deleted();
}

}  // namespace tpu
