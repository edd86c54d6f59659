// What is wrong with TPU source in files.
#pragma once

#include <cstddef>
#include <string>

namespace tpu {

class MiniTPUParser;

// Writes what the interpreter has found wrong with source text since it knew
// `already` such faults, to standard error, as "FILE:LINE: message".
void print_diagnostics(const MiniTPUParser& parser, std::size_t already, const std::string& file);

}  // namespace tpu
