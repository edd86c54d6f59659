// The families of built-ins. Each is a table at the end of the file that holds its
// handlers; table.cc lists the families in the order in which names are matched.
#pragma once

#include <span>

#include "lang/builtin.h"

namespace tpu::builtins {

std::span<const Builtin> attributes();
std::span<const Builtin> buffers();
std::span<const Builtin> clipboard();
std::span<const Builtin> control();
std::span<const Builtin> display();
std::span<const Builtin> editing();
std::span<const Builtin> input();
std::span<const Builtin> journal();
std::span<const Builtin> keys();
std::span<const Builtin> learn();
std::span<const Builtin> movement();
std::span<const Builtin> names();
std::span<const Builtin> objects();
std::span<const Builtin> patterns();
std::span<const Builtin> processes();
std::span<const Builtin> search();
std::span<const Builtin> sections();
std::span<const Builtin> testing();
std::span<const Builtin> texts();
std::span<const Builtin> toolkit();
std::span<const Builtin> windows();

}  // namespace tpu::builtins
