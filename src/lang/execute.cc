// Running statements and blocks of them.
#include <algorithm>
#include <functional>

#include "lang/compile.h"
#include "lang/deeper.h"
#include "lang/host.h"
#include "lang/nesting.h"
#include "lang/nodes.h"
#include "lang/parser.h"
#include "lang/stmt_text.h"
#include "value/array.h"

namespace tpu {

namespace {

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

inline Value value_of(MiniTPUParser& run, const Node& node) {
    return node.may_stop ? run.eval_root(node) : Value::adopt(node.eval(run));
}

inline bool is_true(MiniTPUParser& run, const NodePtr& condition) {
    if (!condition) return false;
    return condition->may_stop ? run.eval_root(*condition).truthy() : condition->truth(run);
}

void run_nested(MiniTPUParser& run, const std::vector<Stmt>& statements);

void run_loop(MiniTPUParser& run, const Stmt& loop) {
    // The limit is looked at each time: the loop may set it.
    for (std::uint64_t pass = 0; run.loop_limit == 0 || pass < run.loop_limit; ++pass) {
        run_nested(run, loop.body);
        run.look_for_interrupt();
        Signal signal = run.control_signal;
        if (signal == Signal::none) continue;
        bool ends_here = signal == Signal::breaking || signal == Signal::leaving_loop;
        if (ends_here) run.control_signal = Signal::none;
        return;
    }
    run.end_loop(loop);
}

inline void run_one(MiniTPUParser& run, const Stmt& stmt) {
    if (stmt.line > 0) run.current_line = stmt.line;
    const StmtCode& code = code_of(stmt, run.symbols);
    switch (stmt.kind) {
        case Stmt::kPlain: run.run_statement(code, stmt.text); break;
        case Stmt::kAssignment:
            run.learning.is_on() ? run.record_assignment(stmt) : run.run_assignment(code);
            break;
        case Stmt::kIf:
            run_nested(run, is_true(run, code.expression) ? stmt.body : stmt.else_body);
            break;
        case Stmt::kLoop: run_loop(run, stmt); break;
        case Stmt::kExitIf:
            if (is_true(run, code.expression)) run.control_signal = Signal::leaving_loop;
            break;
        case Stmt::kReturn:
            run.control_signal = Signal::returning;
            run.returned = code.expression.get();
            if (run.returned_from) run.returned_from.reset();
            break;
        case Stmt::kAbort: run.abort(); break;
        case Stmt::kBreak: run.control_signal = Signal::breaking; break;
        case Stmt::kOnError: break;
    }
}

const Stmt* take_handler(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    const Stmt* handler = run.interrupted ? nullptr : find_handler(statements);
    if (!handler || !can_be_handled(run.control_signal)) return nullptr;
    run.control_signal = Signal::none;
    return handler;
}

void run_handler(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    const Stmt* handler = take_handler(run, statements);
    if (!handler) return;
    for (const Stmt& stmt : handler->body) {
        run_one(run, stmt);
        if (run.control_signal != Signal::none) return;
    }
}

void run_on_fresh_stack(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    auto work = [&] { run_nested(run, statements); };
    if (!on_fresh_stack(run, work)) {
        run.record_error("TPU$_STACKOVER", "No memory for blocks nested so deeply");
    }
}

// Statements inside of a statement.
void run_nested(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    if (stack_is_low(run)) return run_on_fresh_stack(run, statements);
    for (const Stmt& stmt : statements) {
        run_one(run, stmt);
        if (run.control_signal != Signal::none) return run_handler(run, statements);
    }
}

// References to functions need no memory of their own in a std::function.
void run_recorded(MiniTPUParser& run, const Stmt& stmt) {
    auto text = [&] { return text_of(stmt); };
    auto piece = [&] { run_one(run, stmt); };
    run.host.record(std::ref(text), std::ref(piece));
}

// Handlers are looked for here: the host is told of what they do as well. False: the
// statement has failed, and none that follow are to run.
bool run_with_handler(MiniTPUParser& run, const Stmt& stmt, const std::vector<Stmt>& around) {
    run_recorded(run, stmt);
    if (run.control_signal == Signal::none) return true;
    const Stmt* handler = take_handler(run, around);
    for (std::size_t i = 0; handler && i < handler->body.size(); ++i) {
        run_recorded(run, handler->body[i]);
        if (run.control_signal != Signal::none) break;
    }
    return false;
}

void run_outermost(MiniTPUParser& run, const std::vector<Stmt>& statements) {
    for (const Stmt& stmt : statements) {
        if (stmt.kind == Stmt::kOnError) continue;
        bool goes_on = true;
        auto piece = [&] { goes_on = run_with_handler(run, stmt, statements); };
        run.host.step(std::ref(piece));
        if (!goes_on) return;
    }
}

// By way of the list of live arrays a program may come from another session, and speak
// of the names of that one.
bool is_foreign(const std::vector<Stmt>& program, const SymbolTable& symbols) {
    return std::any_of(program.begin(), program.end(), [&](const Stmt& stmt) {
        return stmt.code && stmt.code->table != symbols.number();
    });
}

void drop_code(std::vector<Stmt>& statements) {
    for (Stmt& stmt : statements) {
        stmt.code.reset();
        drop_code(stmt.body);
        drop_code(stmt.else_body);
    }
}

std::shared_ptr<const std::vector<Stmt>> without_code(const std::vector<Stmt>& program) {
    auto copy = std::make_shared<std::vector<Stmt>>(program);
    drop_code(*copy);
    return copy;
}

}  // namespace

void MiniTPUParser::execute_block(const std::vector<Stmt>& statements) {
    Nesting nesting(*this);
    if (control_signal != Signal::none) return;
    nesting.is_outermost() ? run_outermost(*this, statements) : run_nested(*this, statements);
}

void MiniTPUParser::execute_program(std::shared_ptr<const std::vector<Stmt>> program) {
    look_for_interrupt();
    if (control_signal != Signal::none) return;
    if (program_depth == kDeepestProgram) {
        return record_error("TPU$_STACKOVER", "Texts that execute texts are nested too deeply");
    }
    if (is_foreign(*program, symbols)) program = without_code(*program);
    ++program_depth;
    execute_block(*program);
    --program_depth;
    bool is_pending = control_signal == Signal::returning && returned;
    if (is_pending && !returned_from) returned_from = std::move(program);
}

void MiniTPUParser::run_body(const std::vector<Stmt>& statements) {
    run_nested(*this, statements);
}

Value MiniTPUParser::eval_root(const Node& node) {
    if (!node.may_stop) return Value::adopt(node.eval(*this));
    bool outer = std::exchange(stopped, false);
    Value value = Value::adopt(node.eval(*this));
    stopped = outer;
    return value;
}

void MiniTPUParser::run_assignment(const StmtCode& code) {
    const Value::Type held = code.target.symbol->value.type();
    if (code.in_place && (held == Value::Type::string || held == Value::Type::pattern)) {
        static_cast<const Sum&>(*code.expression).assign_in_place(*this, *code.target.symbol);
        return;
    }
    Value value = value_of(*this, *code.expression);
    if (code.target.subscript) {
        // An index that need not be computed is not copied either.
        const Value* there = code.target.subscript->in_place();
        TPUArray* array = there ? code.target.symbol->value.array_here() : nullptr;
        if (array) return array->set(*there, std::move(value));
        Value index = value_of(*this, *code.target.subscript);
        assign_element(*code.target.symbol, index, std::move(value));
    } else {
        assign(*code.target.symbol, std::move(value));
    }
}

void MiniTPUParser::record_assignment(const Stmt& stmt) {
    bool outermost = statement_depth == 0 && symbols.depth() == 0;
    bool recorded = outermost && learning.record_begin(stmt.text + " := " + stmt.expression);
    run_assignment(*stmt.code);
    if (recorded) learning.record_end();
}

void MiniTPUParser::interrupt() {
    interrupted = true;
    abort();
}

// The outermost statement has ended.
void MiniTPUParser::reset() {
    control_signal = Signal::none;
    was_interrupted = std::exchange(interrupted, false);
    stack_limit = nullptr;
    current_line = 0;
    retired_.clear();
    ended_loops_.clear();
    returned_from.reset();
    host.come_to_rest();
}

void MiniTPUParser::recover() {
    symbols.leave_all();
    statement_depth = 0;
    program_depth = 0;
    learning.leave_all();
    returned = nullptr;
    stopped = false;
    reset();
}

void MiniTPUParser::abort() {
    control_signal = Signal::aborting;
    record_error("TPU$_CONTROLC", "ABORT");
    host.set_message("ABORT");
}

void MiniTPUParser::end_loop(const Stmt& loop) {
    if (loop.line > 0) current_line = loop.line;
    const std::string text = "LOOP ended after " + std::to_string(loop_limit) + " passes";
    record_error("TPU$_LOOPLIMIT", text);
    if (std::find(ended_loops_.begin(), ended_loops_.end(), &loop) != ended_loops_.end()) return;
    ended_loops_.push_back(&loop);
    std::string message = text;
    if (loop.line > 0) message += "  (line " + std::to_string(loop.line) + ")";
    host.set_message(message);
    add_fault(loop.line, text, message);
}

Work MiniTPUParser::interruptible() {
    auto ask = [](void* whom) {
        auto& run = *static_cast<MiniTPUParser*>(whom);
        if (!run.interrupt_wanted()) return false;
        if (run.block_depth > 0) run.interrupt();
        return true;
    };
    return {ask, this, longest_text};
}

bool MiniTPUParser::interrupt_wanted() {
    return !interrupted && host.interrupt_waiting();
}

}  // namespace tpu
