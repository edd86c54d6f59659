// What comes in from the terminal, one piece at a time.
#pragma once

#include <string>

#include "keys/key_code.h"

namespace tpu {

struct MouseEvent {
    int row = 0;  // screen cells, zero-based
    int col = 0;
    bool clicked = false;  // button 1 was pressed or clicked
};

struct Event {
    enum class Kind {
        none,    // the time is up, or something else is to be done
        key,     // was pressed
        paste,   // of a text, in one piece
        lost,    // is such a text, for which memory was too short
        mouse,   // was used
        resize,  // of the screen
        hang_up  // nothing more will come
    };

    Kind kind = Kind::none;
    int key = kNoKey;  // its code, and for one that types something the first byte of that
    // Of a key what it types: a whole character or, where the bytes that came make none, those
    // that would belong to one; empty for other keys. Of a paste its text, with line feeds.
    std::string text = {};
    MouseEvent mouse = {};

    // The key of a code: one that a byte has types that byte.
    static Event of_key(int code) {
        if (code < 0 || code > 255) return {Kind::key, code};
        return {Kind::key, code, std::string(1, static_cast<char>(code))};
    }
};

}  // namespace tpu
