// Running a script without a terminal and reporting its assertions.
#pragma once

#include <string>

#include "editor/ports.h"
#include "text/charset.h"

namespace tpu {

// Runs the script and prints its report on standard output. The exit status: 0, 1
// when an assertion failed, 2 when the script cannot be read.
int run_test_script(const std::string& path, Ports ports, Charset charset);

}  // namespace tpu
