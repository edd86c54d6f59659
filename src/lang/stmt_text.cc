#include "lang/stmt_text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tpu {

namespace {

// Keeps what is still to be written on a stack of its own: blocks may be nested deeply.
class Writer {
  public:
    std::string write(const Stmt& stmt) {
        push(stmt);
        while (!pending_.empty()) {
            Pending next = pending_.back();
            pending_.pop_back();
            next.stmt ? begin(*next.stmt) : void(text_ += next.words);
        }
        return std::move(text_);
    }

  private:
    struct Pending {
        const Stmt* stmt;  // null: the words
        std::string_view words;
    };

    void push(const Stmt& stmt) { pending_.push_back({&stmt, {}}); }
    void push(std::string_view words) { pending_.push_back({nullptr, words}); }
    void push_body(const std::vector<Stmt>& body) {
        for (std::size_t i = body.size(); i-- > 0;) {
            push(body[i]);
            push("; ");
        }
    }

    // Writes how a statement begins; what follows comes next.
    void begin(const Stmt& stmt) {
        switch (stmt.kind) {
            case Stmt::kPlain: return add(stmt.text);
            case Stmt::kAssignment: return add(stmt.text, " := ", stmt.expression);
            case Stmt::kIf: return begin_if(stmt);
            case Stmt::kLoop: return begin_block("LOOP", "; ENDLOOP", stmt);
            case Stmt::kExitIf: return add("EXITIF ", stmt.text);
            case Stmt::kReturn: return add(stmt.text.empty() ? "RETURN" : "RETURN ", stmt.text);
            case Stmt::kAbort: return add("ABORT");
            case Stmt::kBreak: return add("BREAK");
            case Stmt::kOnError: return begin_block("ON_ERROR", "; ENDON_ERROR", stmt);
        }
    }

    void begin_if(const Stmt& stmt) {
        add("IF ", stmt.text, " THEN");
        push("; ENDIF");
        push_body(stmt.else_body);
        if (!stmt.else_body.empty()) push("; ELSE");
        push_body(stmt.body);
    }

    void begin_block(std::string_view word, std::string_view end, const Stmt& stmt) {
        add(word);
        push(end);
        push_body(stmt.body);
    }

    template <class... T>
    void add(const T&... parts) {
        (text_.append(parts), ...);
    }

    std::string text_;
    std::vector<Pending> pending_;  // last first
};

// The control text that makes FAO give these bytes; it takes 34, the code of a double
// quote, for each quote among them.
std::string call_for(std::string_view text) {
    std::string control, arguments;
    for (char c : text) {
        switch (c) {
            case '!': control += "!!"; break;
            case '\n': control += "!/"; break;
            case '"':
                control += "!%C";
                arguments += ", 34";
                break;
            default: control += c;
        }
    }
    return "FAO(\"" + control + "\"" + arguments + ")";
}

}  // namespace

std::string text_of(const Stmt& stmt) {
    return Writer().write(stmt);
}

std::string on_one_line(std::string_view statement) {
    std::string result;
    while (!statement.empty()) {
        std::size_t open = std::min(statement.find('"'), statement.size());
        result += statement.substr(0, open);
        statement.remove_prefix(open);
        if (statement.empty()) break;
        std::size_t close = statement.find('"', 1);
        std::string_view string = statement.substr(1, close - 1);
        bool is_closed = close != std::string_view::npos;
        if (string.find('\n') == std::string_view::npos) {
            result += statement.substr(0, is_closed ? close + 1 : close);
        } else {
            result += call_for(string);
        }
        statement.remove_prefix(is_closed ? close + 1 : statement.size());
    }
    return result;
}

std::string expression_for(std::string_view text) {
    if (text.find_first_of("\"\n") != std::string_view::npos) return call_for(text);
    return std::string("\"").append(text).append("\"");
}

}  // namespace tpu
