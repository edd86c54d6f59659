// Section files: the text form in which a session's procedures, names and keys are
// saved.
#pragma once

#include <string>
#include <string_view>

namespace tpu {

inline constexpr std::string_view kSectionMagic = "#ZKSECT";
inline constexpr int kSectionVersion = 1;

// A text on one line: backslashes are doubled, line feeds and carriage returns become
// \n and \r.
std::string tpu_escape_line(std::string_view text);
// The inverse. A backslash before anything else stands for itself.
std::string tpu_unescape_line(std::string_view line);

// The part of a file to which a line belongs.
enum class SectionPart { none, procedures, variables, constants, key_maps, key_map_lists, end };

// Frames a part with its begin and end lines.
std::string begin_line(SectionPart part);
std::string end_line(SectionPart part);

// True when a whole line begins or ends a part, or the file; `part` is then the one that
// follows.
bool switches_part(std::string_view line, SectionPart& part);

// The source of a procedure as it is saved: verbatim, unless a string in it has lines
// that would be taken for those of the file.
std::string saved_source(const std::string& source);

}  // namespace tpu
