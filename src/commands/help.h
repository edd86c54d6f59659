// The documentation that HELP shows: prose, and lists made from the tables of the program.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tpu {

class TPUEditor;

struct HelpTopic {
    std::string_view name;         // upper case
    std::string_view summary;      // for the list of topics
    const std::string_view* text;  // whole lines
    // Appends what the tables say on the topic; null: nothing.
    void (*add_lists)(std::string& text);
};

// In the order in which they are listed.
std::span<const HelpTopic> help_topic_rows();

// Their names.
std::vector<std::string> help_topics();
// Of a topic, or of a command, built-in or attribute; for any other name what comes
// close to it. In any case of letters. Without a topic the overview.
std::string help_text(const std::string& topic);
// Shows that in the buffer HELP.
void show_help(TPUEditor& editor, const std::string& topic);

// The prose, in help_topics.cc.
namespace prose {

extern const std::string_view kKeys, kCommands, kMovement, kEditing, kSearch, kPatterns, kBuffers,
    kWindows, kKeymaps, kSet, kBuiltins, kTypes, kLanguage, kEve, kEvents, kWrap;

}  // namespace prose

}  // namespace tpu
