#include "commands/vocabulary.h"

#include "actions/default_keys.h"
#include "builtins/table.h"
#include "commands/command_words.h"
#include "commands/show.h"

namespace tpu {

const Vocabulary& vocabulary() {
    static const Vocabulary kAll = {all_builtins(), default_keys(),   execute_command,
                                    is_command,     complete_command, show_command};
    return kAll;
}

}  // namespace tpu
