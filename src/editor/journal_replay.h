// Running again what journals and recovery files have recorded.
#pragma once

#include <string>

namespace tpu {

class TPUEditor;

// Runs all that was in a journal when it was opened, one statement after the other, and
// shows how many there were and where it stopped. None of it is recorded again. A
// journal that comes to replay itself does nothing. False, and nothing has changed: it
// cannot be opened, or for a reason that is put into `trouble`.
bool replay_journal(TPUEditor& editor, const std::string& path, std::string* trouble = nullptr);

// The same for a file that the user has not named: unsaved work. Nothing of it runs if the
// file is not the user's own, or if it holds more than statements that change the text and
// the cursor of the current buffer.
enum class Replayed { nothing, part, all };
Replayed bring_back(TPUEditor& editor, const std::string& path);

}  // namespace tpu
