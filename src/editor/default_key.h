// A binding that sessions start with; the table of them is handed in.
#pragma once

#include <functional>

namespace tpu {

class TPUEditor;

struct DefaultKey {
    // What has to be there, or else the key does nothing. With `character` the cursor goes
    // before to the beginning of the character that it is within.
    enum class Needs : unsigned char { nothing, buffer, character };

    int code;
    void (*action)(TPUEditor&);  // null: the text is run
    const char* text;
    const char* comment;
    Needs needs = Needs::buffer;
};

// What a session does by itself for the key of that code; empty when that is nothing.
std::function<void()> default_action(TPUEditor& editor, int code);

}  // namespace tpu
