// The command REPLACE.
#pragma once

namespace tpu {

class TPUEditor;
struct CommandLine;

namespace commands {

// REPLACE [old new [count or ALL]]. What is not given is asked for; an answer that was
// cancelled ends the command before anything is changed.
void replace(TPUEditor& editor, const CommandLine& line);

}  // namespace commands

}  // namespace tpu
