// The texts of status lines.
#pragma once

#include <string>
#include <string_view>

namespace tpu {

class Buffer;

// A window's status text: by the template, or in the fixed layout when it is empty.
std::string window_status(const Buffer& buffer, bool is_current, std::string_view format);

// The global status line.
std::string global_status(const Buffer& buffer, std::string_view key_map_list);

}  // namespace tpu
