// The bindings that a session starts with.
#pragma once

#include <functional>
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

// What a session does by itself for the key of that code; empty when that is nothing.
std::function<void()> default_action(TPUEditor& editor, int code);

}  // namespace tpu
