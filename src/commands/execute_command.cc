#include "commands/command_words.h"
#include "editor/editor.h"

namespace tpu {

void TPUEditor::execute_command(const std::string& line) {
    CommandLine words(line);
    if (words.words.empty()) return;
    if (const Command* command = find_command(words)) {
        if (current_buffer) command->run(*this, words);
    } else {
        parser.execute_statement(line);
    }
}

bool TPUEditor::is_command(const std::string& line) {
    return find_command(CommandLine(line)) != nullptr;
}

}  // namespace tpu
