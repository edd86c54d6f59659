// What this program calls itself.
#pragma once

namespace tpu {

inline constexpr const char* kVersion = "1.00-0";

}  // namespace tpu
