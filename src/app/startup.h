// An interactive session from its first buffer to its exit status.
#pragma once

#include "app/options.h"
#include "editor/ports.h"
#include "text/charset.h"

namespace tpu {

// Runs the editor on this terminal until the user leaves it; its exit status.
int run_session(const Options& options, const StartFiles& files, Ports ports, Charset charset);

}  // namespace tpu
