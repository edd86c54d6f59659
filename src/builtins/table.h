// All built-ins of the language.
#pragma once

#include "lang/builtin.h"

namespace tpu {

const BuiltinTable& all_builtins();

}  // namespace tpu
