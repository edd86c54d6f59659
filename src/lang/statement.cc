// Running one plain statement: an assignment, a declaration, a call.
#include <algorithm>
#include <functional>

#include "lang/builtin.h"
#include "lang/compile.h"
#include "lang/host.h"
#include "lang/nesting.h"
#include "lang/parser.h"
#include "lang/source.h"
#include "text/ascii.h"

namespace tpu {

namespace {

void declare(MiniTPUParser& run, Declares kind, const Declared& declared) {
    Symbol& symbol = *declared.symbol;
    SymbolTable& symbols = run.symbols;
    bool global = kind == Declares::variable || symbols.depth() == 0;
    if (kind == Declares::variable && symbols.global(symbol)) return;
    std::optional<Value> value;
    if (declared.value) value = run.eval_root(*declared.value);
    if (kind == Declares::constant) {
        // One from a section file still waits for its value.
        if (symbol.is_bound() && tpu_value_is_unspecified(symbol.value)) symbol.constant = false;
        if (value) run.assign(symbol, *std::move(value));
        symbol.constant = true;
    } else if (kind == Declares::variable) {
        symbols.declare_global(symbol, value ? *std::move(value) : tpu_unspecified());
    } else if (global) {
        if (value) return run.assign(symbol, *std::move(value));
        symbols.declare_global(symbol, tpu_unspecified());
    } else if (value || !symbols.is_bound_here(symbol)) {
        symbols.bind(symbol, value ? *std::move(value) : tpu_unspecified());
    }
}

bool is_control_word(std::string_view word) {
    for (std::string_view opener : {"IF", "LOOP", "ON_ERROR", "PROCEDURE", "RETURN", "EXITIF"}) {
        if (word == opener) return true;
    }
    return false;
}

}  // namespace

bool MiniTPUParser::knows(std::string_view text) const {
    text = ascii::trim(text);
    if (source::find_assignment(text) != std::string_view::npos) return true;
    std::string word = ascii::upper(source::leading_word(text));
    const Builtin* row = symbols.builtins().find(word);
    bool is_call = ascii::trim(text.substr(word.size())).starts_with('(');
    return (row && (is_call || !row->only_called)) || is_control_word(word) ||
           procedures.contains(word) || procedures.contains(ascii::upper(text));
}

bool MiniTPUParser::execute_statement(const std::string& text) {
    std::string statement(ascii::trim(text));
    if (statement.empty()) return true;
    auto code = code_cache.get(statement, [&] { return compile_plain(statement, symbols); });
    Nesting nesting(*this);
    if (nesting.is_outermost()) {
        auto text_itself = [&] { return statement; };
        auto piece = [&] { run_statement(*code, statement); };
        auto recorded = [&] { host.record(std::ref(text_itself), std::ref(piece)); };
        host.step(std::ref(recorded));
    } else {
        run_statement(*code, statement);
    }
    return true;
}

void MiniTPUParser::execute_whole(const std::string& statement) {
    if (is_control_word(ascii::upper(source::leading_word(ascii::trim(statement))))) {
        compile_text(statement);
    } else {
        execute_statement(statement);
    }
}

void MiniTPUParser::execute_text(const std::string& text) {
    std::vector<std::string> statements = source::split_statements(text);
    if (statements.size() == 1) {
        execute_whole(statements.front());
    } else {
        compile_text(text);
    }
}

void MiniTPUParser::replay(const std::shared_ptr<LearnSequence>& learned) {
    if (!learning.enter(*learned)) {
        record_error("TPU$_RECURLEARN", "A learn sequence cannot run itself");
        host.set_message(error_text);
        return;
    }
    Nesting nesting(*this);
    Unrecorded unrecorded_replay(learning);
    for (const std::string& statement : learned->statements) {
        look_for_interrupt();
        if (control_signal != Signal::none) break;
        host.run_key_text(statement);
    }
    learning.leave();
}

void MiniTPUParser::run_statement(const StmtCode& code, const std::string& text) {
    bool recorded = ++statement_depth == 1 && symbols.depth() == 0 && learning.record_begin(text);
    run_plain(code, text);
    if (recorded) learning.record_end();
    --statement_depth;
}

void MiniTPUParser::run_plain(const StmtCode& code, const std::string& text) {
    if (code.target.symbol) return run_assignment(code);
    if (!code.declared.empty()) {
        for (const Declared& one : code.declared) declare(*this, code.builtin->declares, one);
    } else if (code.builtin) {
        run_builtin(*code.builtin, code.site);
    } else if (code.procedure && code.procedure->procedure) {
        call_statement(*code.procedure->procedure, code.site);
    } else {
        report_unknown(text);
    }
}

void MiniTPUParser::call_statement(const Procedure& procedure, const CallSite& site) {
    Args args(*this, site);
    std::vector<Word> words;
    words.reserve(args.count());
    for (Value& value : args.values()) words.push_back(std::move(value).release());
    Value::adopt(call(procedure, words, false));
}

bool MiniTPUParser::can_run(const Builtin& builtin) const {
    return builtin.without_buffer || host.buffer();
}

void MiniTPUParser::run_builtin(const Builtin& builtin, const CallSite& site) {
    if (!can_run(builtin)) return;
    Args args(*this, site);
    Call call{host, *this, builtin.name, args, true};
    if (builtin.statement) {
        builtin.statement(call);
    } else if (builtin.function) {
        args.values();
        builtin.function(call);
    }
    look_for_interrupt();  // some take long, and many may follow each other
}

void MiniTPUParser::report_unknown(const std::string& text) {
    std::string message = "Unknown command: " + text;
    const std::string bare = message;
    if (current_line > 0) message += "  (line " + std::to_string(current_line) + ")";
    host.set_message(message);
    add_fault(current_line, bare, message);
}

}  // namespace tpu
