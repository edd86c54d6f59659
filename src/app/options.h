// The command line of the program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tpu {

struct Options {
    enum class Mode { edit, version, help };

    Mode mode = Mode::edit;
    std::string command_file;  // source to run after the start-up file
    std::string section_file;  // section to restore
    std::string file;          // to edit; empty: none
    std::uint64_t line = 0;    // to start on, counting from 1; 0: the first

    // Reads the arguments after the program's name. Unknown options are ignored.
    static Options parse(const std::vector<std::string>& arguments);
};

// What the environment says about the files of the editor.
struct StartFiles {
    std::string source;               // TPU_STARTUP; empty: unset
    std::optional<std::string> home;  // HOME, where .tpurc is looked for
    std::string recovery_folder;      // where unsaved work and old texts are kept; empty: nowhere
    std::string open_files;           // where sessions tell each other of them; empty: nowhere
};

// What --help prints.
extern const char* const kUsage;

}  // namespace tpu
