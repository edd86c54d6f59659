// The keywords of SET: which there are, what values they take, what they change.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "lang/builtin.h"

namespace tpu {

class TPUEditor;

// What the row of a keyword gets: the buffer that is to change, and the values.
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

struct SetKeyword {
    std::string_view name;  // upper case
    void (*apply)(SetCall&);
    std::string_view value = "";  // how its values are written; empty: it takes none
    bool takes_buffer = false;    // a buffer may stand before the values
    std::string_view help;        // one sentence
};

std::span<const SetKeyword> set_keywords();

// The keywords that are accepted and change nothing, since they are about what this
// editor does not have.
std::span<const std::string_view> ignored_set_keywords();

// Handlers that have a file of their own.
void set_tab_stops(SetCall& call);
void set_video(SetCall& call);

}  // namespace tpu
