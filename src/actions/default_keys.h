// The bindings that a session starts with.
#pragma once

#include <span>

#include "editor/default_key.h"

namespace tpu {

std::span<const DefaultKey> default_keys();

}  // namespace tpu
