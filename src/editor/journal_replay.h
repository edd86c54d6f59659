// Running again what journals and recovery files have recorded.
#pragma once

#include <string>

#include "os/failure.h"

namespace tpu {

class TPUEditor;

// Runs all that was in a journal when it was opened, one statement after the other, and
// shows how many there were and where it stopped. None of it is recorded again. A
// journal that comes to replay itself does nothing. False, and nothing has changed: it
// cannot be opened, or, with words of our own, not be read.
bool replay_journal(TPUEditor& editor, const std::string& path, Failure& why);

// The same for a file that the user has not named: unsaved work. Nothing of it runs if the
// file is not the user's own, or if it holds more than statements that change the text and
// the cursor of the current buffer; `reason` says so.
enum class Replayed { nothing, part, all };
Replayed bring_back(TPUEditor& editor, const std::string& path, std::string& reason);

}  // namespace tpu
