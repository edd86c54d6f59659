// The interpreter of an editor session.
//
// Statements are kept as text and run as code: compile.h makes code of a text when it
// first runs. The members stand here under the files that hold them.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lang/code_cache.h"
#include "lang/learning.h"
#include "lang/stmt.h"
#include "lang/symbols.h"
#include "os/work.h"
#include "pattern/pattern.h"
#include "value/value.h"

namespace tpu {

class BuiltinTable;
class Host;
class Node;
struct Builtin;
struct CallSite;

// What a statement says to those around it.
enum class Signal : int { none, returning, aborting, breaking, leaving_loop, failing };

// A message about source text, with the line that it is about; 0: unknown.
struct Diagnostic {
    int line;
    std::string text;
    long long times = 1;  // that it came without another between
};

class MiniTPUParser {
  public:
    // Calls may be nested so deeply; one that is nested deeper fails.
    static constexpr int kDeepestCall = 100'000;

    // Programs and texts that are executed by others may be nested so deeply. Each holds
    // its whole source and code.
    static constexpr int kDeepestProgram = 1'000;

    // So many faults are kept, since a program may make them without end.
    static constexpr std::size_t kMostFaults = 1'000;

    // What it is given outlives it.
    MiniTPUParser(Host& owner, const BuiltinTable& builtins) : host(owner), symbols(builtins) {}
    MiniTPUParser(const MiniTPUParser&) = delete;
    MiniTPUParser& operator=(const MiniTPUParser&) = delete;

    Host& host;
    std::map<std::string, std::unique_ptr<Procedure>> procedures;  // by upper-case name
    SymbolTable symbols;  // variables at all depths, and which names are constant
    Signal control_signal = Signal::none;
    std::string error_code;
    std::string error_text;
    int error_line = 0;
    long long error_count = 0;  // unknown commands, errors in source texts, ended loops
    int current_line = 0;       // source line of the running statement; 0: none
    int statement_depth = 0;
    // What error_count counted, in order, repetitions left out. When there are too many the
    // last place is that of the latest.
    std::vector<std::string> error_list;
    std::vector<Diagnostic> diagnostics;              // the same, for those who look them up
    long long diagnostics_left_out = 0;               // for which there was no room
    const std::vector<int>* current_lines = nullptr;  // of the source being compiled

    // State of the code that runs; nodes and built-ins read and set it.
    bool stopped = false;            // see Node::may_stop
    std::size_t stopped_at = 0;      // byte of the expression where reading stopped
    const Node* returned = nullptr;  // what the RETURN that set the signal returns
    std::shared_ptr<const std::vector<Stmt>> returned_from;  // its code, if nobody else keeps it
    bool was_interrupted = false;       // the outermost statement that ended last
    bool interrupted = false;           // everything is to end, the outermost statement too
    int block_depth = 0;                // blocks and statements under way
    int program_depth = 0;              // programs and texts among them
    const char* stack_limit = nullptr;  // where the running stack is nearly used up
    CodeCache code_cache;
    Learning learning;

    // Passes after which a loop ends, a guard against those that never end; 0: none.
    std::uint64_t loop_limit = 100'000;

    // Bytes; an expression whose text would be longer fails, and what adds more to a buffer.
    std::size_t longest_text = std::size_t{1} << 30;

    // execute.cc
    void execute_block(const std::vector<Stmt>& statements);
    // The same for code that may be gone afterwards, while its RETURN is still pending.
    void execute_program(std::shared_ptr<const std::vector<Stmt>> program);
    void run_body(const std::vector<Stmt>& statements);  // of a procedure, in its scope
    Value eval_root(const Node& node);                   // of a whole expression
    void abort();                                        // the statement ABORT
    // Ends all running code like ABORT, but for good: no handler catches it.
    void interrupt();
    // Does that when the user has pressed Ctrl-C. Cheap enough for every pass of a loop.
    void look_for_interrupt() {
        constexpr unsigned kStepsBetweenLooks = 256;
        if (++steps_ % kStepsBetweenLooks == 0 && interrupt_wanted()) interrupt();
    }
    bool interrupt_wanted();
    // Work that Ctrl-C stops, and with it the code that runs.
    Work interruptible();
    // A loop has used up its passes. Each says so once, until nothing runs any more.
    void end_loop(const Stmt& loop);

    // statement.cc
    // Runs one statement. An unknown one is reported as a message. True when the
    // statement was executed, which includes having been reported.
    bool execute_statement(const std::string& text);
    // Runs one statement, which may be a block.
    void execute_whole(const std::string& statement);
    // Runs what a text says: several statements, blocks and procedures, or just one.
    void execute_text(const std::string& text);
    // True when the leading word of `text` names something execute_statement runs.
    bool knows(std::string_view text) const;
    void run_statement(const StmtCode& code, const std::string& text);
    void run_assignment(const StmtCode& code);
    void record_assignment(const Stmt& stmt);  // the same while a learn sequence is recorded
    // Runs a learn sequence; one that comes to run itself ends with a recorded error.
    void replay(const std::shared_ptr<LearnSequence>& learned);
    bool can_run(const Builtin& builtin) const;  // most need a current buffer
    void run_builtin(const Builtin& builtin, const CallSite& site);

    // procedures.cc
    // Defines the procedures of a source text and runs its other statements.
    void compile_text(const std::string& text);
    // Parses a source text: its procedures are defined, its other statements returned.
    std::vector<Stmt> compile_program(const std::string& text);
    // Defines the procedure that a text consists of, which is parsed when it is called.
    // False, and nothing is defined, when it is not so plain that nothing can be wrong.
    bool define_unparsed(const std::string& source);
    int line_at(std::size_t index) const;  // of the statement of the source being compiled
    // False: there is no such procedure.
    bool execute_procedure(const std::string& name);
    // Calls a procedure with as many arguments as `arguments` has, which it takes over,
    // from code that runs. The value of its RETURN, if the value is wanted and there is
    // one, else the value of no type.
    Word call(const Procedure& procedure, std::span<const Word> arguments, bool value_wanted);

    // variables.cc
    void assign(Symbol& symbol, Value value) {
        if (symbol.constant) return assign_constant(symbol, std::move(value));
        symbols.assign(symbol, std::move(value));
    }
    void assign_constant(Symbol& symbol, Value value);
    void assign_element(Symbol& symbol, const Value& index, Value value);
    // Records a failure: a status name ("TPU$_FAILURE" when empty) and a text
    // (the status name when empty).
    void record_error(const std::string& code, const std::string& text);
    // Counts and keeps a fault of the source: its text, and that with the line for people.
    void add_fault(int line, const std::string& text, const std::string& message);

    // Leaves the interpreter ready for the next statement when the outermost one ends.
    void reset();
    // The same when an exception has ended it.
    void recover();

  private:
    friend class SourceWalk;

    void define(Procedure procedure);
    Word call_here(const Procedure& procedure, std::span<const Word> arguments, bool value_wanted);
    void call_statement(const Procedure& procedure, const CallSite& site);
    void run_plain(const StmtCode& code, const std::string& text);
    void report_unknown(const std::string& text);

    std::vector<std::unique_ptr<Procedure>> retired_;  // redefined while they may have run
    std::vector<const Stmt*> ended_loops_;             // those that have said so
    unsigned steps_ = 0;
};

}  // namespace tpu
