// What this program calls itself.
#pragma once

#include <string>

namespace tpu {

inline constexpr int kMajorVersion = 1;
inline constexpr int kMinorVersion = 0;
inline constexpr int kBuild = 0;
inline constexpr const char* kReleaseDate = "2026-07-17";

std::string tpu_version_string();  // such as V1.00-0
std::string tpu_version_banner();  // two lines: the version, and when it was released

}  // namespace tpu
