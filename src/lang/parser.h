// The interpreter of an editor session.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lang/stmt.h"

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

    // Reading source text: doors to lang/source.h and lang/block_parser.h.
    static std::string trim(const std::string& text);
    static std::string upper(const std::string& text);
    static std::string strip_quotes(const std::string& text);
    static std::string first_call_argument(const std::string& text);
    static std::string strip_comments(const std::string& text);
    static std::string join_continuations(const std::string& text);
    static std::vector<std::string> split_statements(const std::string& text,
                                                     std::vector<int>& lines);
    static std::vector<std::string> split_statements(const std::string& text);
    static std::vector<Stmt> parse_block(const std::vector<std::string>& statements,
                                         const std::vector<int>& lines, std::size_t& index,
                                         const std::vector<std::string_view>& terminators);

    // Records a failure: a status name ("TPU$_FAILURE" when empty) and a text
    // (the status name when empty).
    void record_error(const std::string& code, const std::string& text);
};

}  // namespace tpu
