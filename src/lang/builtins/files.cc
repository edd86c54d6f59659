// Names of files.
#include "lang/builtins/families.h"

namespace tpu::builtins {

std::span<const Builtin> files() {
    return {};
}

}  // namespace tpu::builtins
