// FAO: values formatted under a control text of directives such as !5ZL.
#pragma once

#include <cstddef>
#include <ctime>
#include <span>
#include <string>

#include "value/value.h"

namespace tpu {

// A result is cut at this many bytes, and a width above it counts as it.
inline constexpr std::size_t kLongestFormatted = std::size_t{16} << 20;
// How often !F may repeat a directive within one call, all its uses together.
inline constexpr std::size_t kMostFormatRepeats = std::size_t{1} << 20;

// The first of `arguments` is the control text, the others are what it formats; one
// beyond the last reads as the unspecified value. !%D and !%T show `now`. Any text is a control
// text: what is no directive stays as it is. `is_cut` becomes true when some of the result is
// missing.
std::string format_ascii_output(std::span<const Value> arguments, const std::tm& now,
                                bool* is_cut = nullptr);

}  // namespace tpu
