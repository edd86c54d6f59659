// What SET gives the function that sets an attribute.
#pragma once

#include <cstdint>
#include <string>

#include "lang/builtin.h"

namespace tpu {

class TPUEditor;

// The buffer that is to change, and the values.
struct SetCall {
    TPUEditor& editor;
    Buffer& buffer;
    Args& args;
    std::size_t first;  // argument that holds the first value

    // Values; beyond the last one there is the unspecified value.
    std::size_t count() const { return args.count() > first ? args.count() - first : 0; }
    const Value& value(std::size_t i = 0) { return args.value(first + i); }
    // A switch; without a clear value it is on.
    bool on() { return args.on(first, true); }
    // A number, brought within bounds.
    std::uint64_t number(std::size_t i, std::uint64_t least, std::uint64_t most);
    // A text; empty for the unspecified value.
    std::string text(std::size_t i = 0);
    // A word in upper case; switches of any spelling are ON and OFF.
    std::string word(std::size_t i = 0);
};

// Functions that have a file of their own.
void set_tab_stops(SetCall& call);
void set_video(SetCall& call);

}  // namespace tpu
