// The table of built-ins: dispatch reads it, and so does whatever lists them.
#pragma once

#include <string_view>

namespace tpu {

class TPUEditor;

struct Builtin {
    std::string_view name;  // upper case
    void (*statement)(TPUEditor&);
    std::string_view help;  // one sentence
};

// The row of that name, which is given in upper case; null when there is none.
const Builtin* find_builtin(std::string_view name);

}  // namespace tpu
