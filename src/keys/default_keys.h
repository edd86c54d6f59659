// The bindings that a session starts with.
#pragma once

#include <span>

namespace tpu {

class TPUEditor;

struct DefaultKey {
    int code;
    void (*action)(TPUEditor&);  // null: the text is run
    const char* text;
    const char* comment;
};

std::span<const DefaultKey> default_keys();

}  // namespace tpu
