// All that a session of this program understands.
#pragma once

#include "editor/vocabulary.h"

namespace tpu {

const Vocabulary& vocabulary();

}  // namespace tpu
