// The interpreter of an editor session.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tpu {

class TPUEditor;

class MiniTPUParser {
  public:
    explicit MiniTPUParser(TPUEditor& owner) : editor(owner) {}
    MiniTPUParser(const MiniTPUParser&) = delete;
    MiniTPUParser& operator=(const MiniTPUParser&) = delete;

    TPUEditor& editor;
    std::string error_code;
    std::string error_text;
    int error_line = 0;
    int error_count = 0;   // unknown commands and errors in source texts
    int current_line = 0;  // source line of the running statement; 0: none
    int statement_depth = 0;
    std::vector<std::string> error_list;  // what error_count counted, in order

    // Runs one statement. An unknown one is reported as a message. True when the
    // statement was executed, which includes having been reported.
    bool execute_statement(const std::string& text);

    // True when the leading word of `text` names something execute_statement runs.
    static bool knows(std::string_view text);

    // Records a failure: a status name ("TPU$_FAILURE" when empty) and a text
    // (the status name when empty).
    void record_error(const std::string& code, const std::string& text);
};

}  // namespace tpu
