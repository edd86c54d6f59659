// SET and GET_INFO.
#include "lang/builtins/families.h"

namespace tpu::builtins {

std::span<const Builtin> attributes() {
    return {};
}

}  // namespace tpu::builtins
