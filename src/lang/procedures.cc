// Source texts and procedures.
#include <algorithm>

#include "lang/block_parser.h"
#include "lang/compile.h"
#include "lang/deeper.h"
#include "lang/nesting.h"
#include "lang/nodes.h"
#include "lang/parser.h"
#include "lang/source.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr std::string_view kProcedure = "PROCEDURE", kEndProcedure = "ENDPROCEDURE";

bool begins_procedure(const std::string& statement) {
    return statement.size() > kProcedure.size() && ascii::is_space(statement[kProcedure.size()]) &&
           ascii::upper(std::string_view(statement).substr(0, kProcedure.size())) == kProcedure;
}

// name or name(a, b)
Procedure read_header(std::string_view header) {
    Procedure procedure;
    std::size_t open = header.find('(');
    procedure.name = ascii::trim(header.substr(0, open));
    if (open == std::string_view::npos) return procedure;
    std::string_view list = header.substr(open + 1);
    list = list.substr(0, list.find(')'));
    for (std::size_t comma = 0; comma != std::string_view::npos;) {
        comma = list.find(',');
        std::string_view name = ascii::trim(list.substr(0, comma));
        if (!name.empty()) procedure.parameters.emplace_back(name);
        if (comma != std::string_view::npos) list.remove_prefix(comma + 1);
    }
    return procedure;
}

// True when a line ends with "-" and blanks, in a string or not.
bool continues_line(std::string_view source) {
    for (std::size_t at = source.find('-'); at != std::string_view::npos;) {
        std::size_t next = source.find_first_not_of(" \t", at + 1);
        if (next == std::string_view::npos || source[next] == '\n') return true;
        at = source.find('-', at + 1);
    }
    return false;
}

// The text ends the procedure that it begins with its last line, and not before.
bool is_one_procedure(std::string_view source) {
    constexpr std::string_view kLastLine = "\nENDPROCEDURE;\n";
    if (!source.ends_with(kLastLine)) return false;
    source.remove_suffix(kLastLine.size());
    for (char end : {'\n', ';'}) {  // of a statement
        for (std::size_t at = source.find(end); at < source.size(); at = source.find(end, at)) {
            while (++at < source.size() && ascii::is_space(source[at])) {
            }
            std::string_view word = source.substr(at, kEndProcedure.size());
            if (!word.empty() && ascii::to_upper(word[0]) == kEndProcedure[0] &&
                ascii::upper(word) == kEndProcedure) {
                return false;
            }
        }
    }
    return true;
}

std::string source_of(std::span<const std::string> statements) {
    std::string source;
    for (const std::string& statement : statements) {
        if (!source.empty()) source += '\n';
        source += statement;
    }
    return source + ";\n";
}

}  // namespace

// A source text as a list of statements, and the place that compiling has reached.
class SourceWalk {
  public:
    SourceWalk(MiniTPUParser& run, const std::string& text) : run_(run) {
        statements_ = source::split_statements(text, lines_);
        outer_ = std::exchange(run_.current_lines, &lines_);
    }
    ~SourceWalk() { run_.current_lines = outer_; }
    SourceWalk(const SourceWalk&) = delete;
    SourceWalk& operator=(const SourceWalk&) = delete;

    // Defines procedures up to the next run of other statements, which it gives; false
    // at the end of the text.
    bool next_run(std::vector<Stmt>& block) {
        while (index_ < statements_.size()) {
            if (begins_procedure(statements_[index_])) {
                define_procedure();
                continue;
            }
            std::size_t start = index_;
            block = parse(kProcedure);
            if (index_ > start) return true;
            ++index_;
        }
        return false;
    }

  private:
    std::vector<Stmt> parse(std::string_view terminator) {
        bool too_deep = false;
        auto block = parse_block(statements_, lines_, index_, {terminator}, &too_deep);
        if (too_deep) run_.record_error("TPU$_PARSEOVER", "Blocks are nested too deeply");
        return block;
    }

    void define_procedure() {
        std::size_t start = index_++;
        std::string_view header = statements_[start];
        Procedure procedure = read_header(ascii::trim(header.substr(kProcedure.size())));
        procedure.body = parse(kEndProcedure);
        if (index_ < statements_.size() && ascii::upper(statements_[index_]) == kEndProcedure) {
            ++index_;
            procedure.source = source_of(std::span(statements_).subspan(start, index_ - start));
        } else {
            complain_of_missing_end(procedure.name);
        }
        if (!procedure.name.empty()) run_.define(std::move(procedure));
    }

    void complain_of_missing_end(const std::string& name) {
        const std::string text = "missing ENDPROCEDURE for " + name;
        int line = run_.line_at(index_);
        std::string message = "error: " + text;
        if (line >= 1) message += " (near line " + std::to_string(line) + ")";
        run_.add_fault(line, text, message);
    }

    MiniTPUParser& run_;
    std::vector<std::string> statements_;
    std::vector<int> lines_;
    const std::vector<int>* outer_;
    std::size_t index_ = 0;
};

void MiniTPUParser::compile_text(const std::string& text) {
    SourceWalk walk(*this, text);
    for (std::vector<Stmt> block; walk.next_run(block);) {
        execute_program(std::make_shared<std::vector<Stmt>>(std::move(block)));
        if (block_depth == 0 && was_interrupted) break;
    }
}

std::vector<Stmt> MiniTPUParser::compile_program(const std::string& text) {
    SourceWalk walk(*this, text);
    std::vector<Stmt> program;
    for (std::vector<Stmt> block; walk.next_run(block);) {
        std::move(block.begin(), block.end(), std::back_inserter(program));
    }
    return program;
}

// Such a text holds nothing which would have to be looked at more closely: what makes a
// comment or continues a line, more behind the header or the procedure, an open string, or
// so much that blocks might be nested too deeply.
bool MiniTPUParser::define_unparsed(const std::string& source) {
    constexpr std::size_t kLargest = 32 << 10;
    std::size_t end = source.find('\n');
    std::string_view header = std::string_view(source).substr(0, end);
    bool plain = source.size() <= kLargest && begins_procedure(source) &&
                 is_one_procedure(source) && source.find('!') == std::string::npos &&
                 header.find_first_of(";\"") == std::string_view::npos && !continues_line(source) &&
                 std::count(source.begin(), source.end(), '"') % 2 == 0;
    if (!plain) return false;
    Procedure procedure = read_header(ascii::trim(header.substr(kProcedure.size())));
    if (procedure.name.empty()) return false;
    procedure.source = source;
    procedure.is_parsed = false;
    define(std::move(procedure));
    return true;
}

namespace {

const std::vector<Stmt>& body_of(const Procedure& procedure) {
    if (procedure.is_parsed) return procedure.body;
    std::vector<int> lines;
    std::vector<std::string> statements = source::split_statements(procedure.source, lines);
    std::size_t index = 1;
    procedure.body = parse_block(statements, lines, index, {kEndProcedure});
    procedure.is_parsed = true;
    return procedure.body;
}

}  // namespace

int MiniTPUParser::line_at(std::size_t index) const {
    if (!current_lines || current_lines->empty()) return 0;
    return (*current_lines)[std::min(index, current_lines->size() - 1)];
}

// The one that is replaced may be running.
void MiniTPUParser::define(Procedure procedure) {
    std::string name = ascii::upper(procedure.name);
    for (const std::string& parameter : procedure.parameters) {
        procedure.symbols.push_back(&symbols.intern(ascii::upper(parameter)));
    }
    // First what needs memory: there are no procedures by half.
    Symbol& symbol = symbols.intern(name);
    auto fresh = std::make_unique<Procedure>(std::move(procedure));
    if (block_depth > 0) retired_.emplace_back();
    std::unique_ptr<Procedure>& place = procedures[name];
    symbol.procedure = fresh.get();
    std::swap(place, fresh);
    if (block_depth > 0) retired_.back() = std::move(fresh);
}

bool MiniTPUParser::execute_procedure(const std::string& name) {
    auto found = procedures.find(ascii::upper(name));
    if (found == procedures.end()) return false;
    Nesting nesting(*this);
    Value::adopt(call(*found->second, {}, false));
    return true;
}

Word MiniTPUParser::call(const Procedure& procedure, std::span<const Word> arguments,
                         bool value_wanted) {
    const char* trouble =
        symbols.depth() >= kDeepestCall ? "Procedure calls are nested too deeply" : nullptr;
    if (!trouble && !stack_is_low(*this)) return call_here(procedure, arguments, value_wanted);
    Word result{};
    auto work = [&] { result = call_here(procedure, arguments, value_wanted); };
    if (!trouble && on_fresh_stack(*this, work)) return result;
    for (Word word : arguments) Value::adopt(word);
    record_error("TPU$_STACKOVER", trouble ? trouble : "No memory for calls nested so deeply");
    return Value().release();
}

Word MiniTPUParser::call_here(const Procedure& procedure, std::span<const Word> arguments,
                              bool value_wanted) {
    std::size_t mark = symbols.enter();
    std::size_t bound = 0;
    for (Symbol* symbol : procedure.symbols) {
        symbols.bind(*symbol, bound < arguments.size() ? Value::adopt(arguments[bound]) : Value());
        ++bound;
    }
    for (; bound < arguments.size(); ++bound) Value::adopt(arguments[bound]);
    Signal outer = std::exchange(control_signal, Signal::none);
    look_for_interrupt();
    if (!interrupted) run_body(body_of(procedure));
    Value result;
    if (value_wanted && control_signal == Signal::returning && returned) {
        control_signal = Signal::none;
        auto code = std::move(returned_from);  // the expression may run another RETURN
        result = eval_root(*returned);
    }
    control_signal = interrupted ? Signal::aborting : outer;
    symbols.leave(mark);
    return std::move(result).release();
}

}  // namespace tpu
