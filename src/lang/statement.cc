// Running one statement.
#include "core/ascii.h"
#include "editor/editor.h"
#include "editor/undo_step.h"
#include "lang/builtins/table.h"
#include "lang/parser.h"

namespace tpu {

namespace {

// The leading run of letters, digits, "_" and "$".
std::string_view leading_word(std::string_view text) {
    std::size_t size = 0;
    auto in_word = [](char c) {
        return (c >= '0' && c <= '9') || ascii::to_upper(c) != c || ascii::to_lower(c) != c ||
               c == '_' || c == '$';
    };
    while (size < text.size() && in_word(text[size])) ++size;
    return text.substr(0, size);
}

// The built-in that a statement calls: its name alone, since no row takes arguments.
const Builtin* called_builtin(std::string_view statement) {
    std::string_view word = leading_word(statement);
    if (!ascii::trim(statement.substr(word.size())).empty()) return nullptr;
    return find_builtin(ascii::upper(word));
}

}  // namespace

bool MiniTPUParser::knows(std::string_view text) {
    return called_builtin(ascii::trim(text)) != nullptr;
}

bool MiniTPUParser::execute_statement(const std::string& text) {
    std::string statement(ascii::trim(text));
    if (statement.empty()) return true;
    UndoStep step(editor);
    ++statement_depth;
    if (const Builtin* builtin = called_builtin(statement)) {
        if (editor.current_buffer) builtin->statement(editor);
    } else {
        std::string message = "Unknown command: " + statement;
        if (current_line > 0) message += "  (line " + std::to_string(current_line) + ")";
        editor.set_message(message);
        ++error_count;
        error_list.push_back(message);
    }
    --statement_depth;
    return true;
}

void MiniTPUParser::record_error(const std::string& code, const std::string& text) {
    error_code = code.empty() ? "TPU$_FAILURE" : code;
    error_text = text.empty() ? error_code : text;
    if (current_line >= 1) error_line = current_line;
}

}  // namespace tpu
