// Running statements and blocks of them.
#include "editor/editor.h"
#include "editor/undo_step.h"
#include "lang/compile.h"
#include "lang/deeper.h"
#include "lang/nesting.h"
#include "lang/nodes.h"
#include "lang/parser.h"

namespace tpu {

namespace {

constexpr int kMostPasses = 100'000;  // of a loop; a guard against those that never end

bool can_be_handled(Signal signal) {
    return signal == Signal::aborting || signal == Signal::failing;
}

const Stmt* find_handler(const std::vector<Stmt>& statements) {
    for (const Stmt& stmt : statements) {
        if (stmt.kind == Stmt::kOnError) return &stmt;
    }
    return nullptr;
}

const StmtCode& code_of(const Stmt& stmt, SymbolTable& symbols) {
    if (!stmt.code) stmt.code = compile_statement(stmt, symbols);
    return *stmt.code;
}

bool is_true(MiniTPUParser& run, const NodePtr& condition) {
    if (!condition) return false;
    return condition->may_stop ? run.eval_root(*condition).truthy() : condition->truth(run);
}

void run_loop(MiniTPUParser& run, const std::vector<Stmt>& body) {
    for (int pass = 0; pass < kMostPasses; ++pass) {
        run.execute_block(body);
        run.look_for_interrupt();
        Signal signal = run.control_signal;
        if (signal == Signal::none) continue;
        bool ends_here = signal == Signal::breaking || signal == Signal::leaving_loop;
        if (ends_here) run.control_signal = Signal::none;
        return;
    }
}

void run_statements(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    for (const Stmt& stmt : statements) {
        if (run.control_signal != Signal::none) return;
        if (stmt.kind != Stmt::kOnError) run.execute_stmt(stmt);
    }
}

// Each statement outside of all others is one step of undo.
void run_outermost_statements(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    for (const Stmt& stmt : statements) {
        if (run.control_signal != Signal::none) return;
        UndoStep step(run.editor);
        if (stmt.kind != Stmt::kOnError) run.execute_stmt(stmt);
    }
}

void run_block(MiniTPUParser& run, const std::vector<Stmt>& statements, bool outermost) {
    outermost ? run_outermost_statements(run, statements) : run_statements(run, statements);
    if (!can_be_handled(run.control_signal) || run.interrupted) return;
    const Stmt* handler = find_handler(statements);
    if (!handler) return;
    run.control_signal = Signal::none;
    run_statements(run, handler->body);
}

}  // namespace

void MiniTPUParser::execute_block(const std::vector<Stmt>& statements) {
    Nesting nesting(*this);
    if (!stack_is_low(*this)) return run_block(*this, statements, nesting.is_outermost());
    auto work = [&] { run_block(*this, statements, nesting.is_outermost()); };
    if (!on_fresh_stack(*this, work)) {
        record_error("TPU$_STACKOVER", "No memory for blocks nested so deeply");
    }
}

void MiniTPUParser::execute_stmt(const Stmt& stmt) {
    if (stmt.line > 0) current_line = stmt.line;
    const StmtCode& code = code_of(stmt, symbols);
    switch (stmt.kind) {
        case Stmt::kPlain: run_statement(code, stmt.text); break;
        case Stmt::kAssignment: run_assignment(code); break;
        case Stmt::kIf:
            execute_block(is_true(*this, code.expression) ? stmt.body : stmt.else_body);
            break;
        case Stmt::kLoop: run_loop(*this, stmt.body); break;
        case Stmt::kExitIf:
            if (is_true(*this, code.expression)) control_signal = Signal::leaving_loop;
            break;
        case Stmt::kReturn:
            control_signal = Signal::returning;
            returned = code.expression.get();
            break;
        case Stmt::kAbort:
            control_signal = Signal::aborting;
            editor.set_message("ABORT");
            break;
        case Stmt::kBreak: control_signal = Signal::breaking; break;
        case Stmt::kOnError: break;
    }
}

void MiniTPUParser::run_assignment(const StmtCode& code) {
    if (code.in_place && code.target.symbol->value.is(Value::Type::string)) {
        static_cast<const Sum&>(*code.expression).assign_in_place(*this, *code.target.symbol);
        return;
    }
    Value value = eval_root(*code.expression);
    if (code.target.subscript) {
        Value index = eval_root(*code.target.subscript);
        assign_element(*code.target.symbol, index, std::move(value));
    } else {
        assign(*code.target.symbol, std::move(value));
    }
}

void MiniTPUParser::interrupt() {
    interrupted = true;
    control_signal = Signal::aborting;
    record_error("TPU$_CONTROLC", "ABORT");
    editor.set_message("ABORT");
}

bool MiniTPUParser::interrupt_wanted() {
    constexpr std::chrono::milliseconds kBetweenLooks(50);
    if (editor.headless || interrupted) return false;
    Clock::time_point now = editor.ports.clock.now();
    if (now - last_look_ < kBetweenLooks) return false;
    last_look_ = now;
    return editor.ports.terminal.interrupt_waiting();
}

}  // namespace tpu
