// TPU source in files.
#pragma once

#include <optional>
#include <string>

namespace tpu {

class MiniTPUParser;

// All bytes of a file; nothing when it cannot be read.
std::optional<std::string> read_source(const std::string& path);

// Writes what the interpreter has found wrong with source text since it knew
// `already` such faults, to standard error, as "FILE:LINE: message".
void print_diagnostics(const MiniTPUParser& parser, std::size_t already, const std::string& file);

}  // namespace tpu
