// What people can say to a session: the tables above it, handed in.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "editor/default_key.h"
#include "editor/line_input.h"
#include "lang/builtin.h"

namespace tpu {

class TPUEditor;

struct Vocabulary {
    const BuiltinTable& builtins;
    std::span<const DefaultKey> default_keys;
    // Runs a command line, which may be a statement too.
    void (*execute_command)(TPUEditor& editor, const std::string& line);
    // True when the first words of the line name a command.
    bool (*is_command)(const std::string& line);
    // What the last word of an unfinished command line may become.
    Completion (*complete_command)(TPUEditor& editor, std::string_view line);
    // The command SHOW, which is the first of the words.
    void (*show)(TPUEditor& editor, const std::vector<std::string>& words);
};

}  // namespace tpu
