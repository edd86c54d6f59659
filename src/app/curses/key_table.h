// What the keys of this terminal send.
#pragma once

#include <vector>

#include "app/curses/key_decoder.h"

namespace tpu {

// The keys that curses knows of its current terminal, then what terminals commonly
// send whatever their description says. Keypad translation has been switched on.
std::vector<KeySequence> terminal_keys();

}  // namespace tpu
