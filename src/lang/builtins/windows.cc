// Windows.
#include "lang/builtins/families.h"

namespace tpu::builtins {

std::span<const Builtin> windows() {
    return {};
}

}  // namespace tpu::builtins
