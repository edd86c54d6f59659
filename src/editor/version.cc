#include "editor/version.h"

#include <cstdio>

namespace tpu {

std::string tpu_version_string() {
    char text[64];
    std::snprintf(text, sizeof text, "V%d.%02d-%d", kMajorVersion, kMinorVersion, kBuild);
    return text;
}

std::string tpu_version_banner() {
    return tpu_version_string() + "\nRelease date: " + kReleaseDate;
}

}  // namespace tpu
