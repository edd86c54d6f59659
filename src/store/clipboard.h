// The system's clipboard, reached through the commands that people have for it.
//
// Several commands are tried, one after the other, until one succeeds. One that
// hangs is ended, so that no call takes noticeably longer than its wait.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "os/failure.h"
#include "os/system.h"

namespace tpu {

// With what it takes to end a command that hangs: less than two seconds.
constexpr std::chrono::milliseconds kClipboardWait{1900};

// Puts `text` on the clipboard. False when no command took it, within `wait` in all.
[[nodiscard]] bool clipboard_write_system(System& system, std::string_view text,
                                          std::chrono::milliseconds wait = kClipboardWait);

// Replaces `text` by what is on the clipboard. False, and an empty text, when no
// command gave anything within `wait` in all; an empty clipboard is such a failure.
[[nodiscard]] bool clipboard_read_system(System& system, std::string& text, Failure& why,
                                         std::chrono::milliseconds wait = kClipboardWait);

}  // namespace tpu
