// Saving what a session has built up (procedures, names, keys), and bringing it back.
#pragma once

#include <string>

namespace tpu {

class TPUEditor;

// Each shows what it did, or why it could not: then it gives false and has changed
// nothing.

// Writes a section file. It takes its name only when it is complete. Without an
// identification it gets the version of the editor.
bool tpu_section_save(TPUEditor& editor, const std::string& path, const std::string& ident);

// Reads one into the session. Faults in its source are shown and end nothing.
bool tpu_section_restore(TPUEditor& editor, const std::string& path);

// Shows the lines of one in a buffer that cannot be changed.
bool tpu_section_expand(TPUEditor& editor, const std::string& path);

}  // namespace tpu
