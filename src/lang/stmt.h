// The parsed form of source text: statements and procedures.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "value/value.h"

namespace tpu {

struct StmtCode;
struct Symbol;

struct Stmt {
    enum Kind : int { kPlain, kAssignment, kIf, kLoop, kExitIf, kReturn, kAbort, kBreak, kOnError };

    Stmt() = default;
    Stmt(Stmt&&) = default;
    Stmt(const Stmt&) = default;
    Stmt& operator=(Stmt&&) = default;
    Stmt& operator=(const Stmt&) = default;
    // Takes apart blocks within blocks without nesting calls as deeply.
    ~Stmt();

    Kind kind = kPlain;
    std::string text;        // by kind: the statement, target, condition or RETURN's expression
    std::string expression;  // an assignment's right-hand side
    int line = 0;            // source line, counting from 1; 0: unknown
    std::vector<Stmt> body;
    std::vector<Stmt> else_body;
    // What the texts say, from the first run on. Code belongs to the interpreter
    // that ran it.
    mutable std::shared_ptr<const StmtCode> code;
};

struct Program : Object {
    bool truth() const override { return !statements.empty(); }

    std::vector<Stmt> statements;
};

// A value that is executed later.
Value program_value(std::vector<Stmt> statements);
// Null for a value of another type.
std::shared_ptr<const std::vector<Stmt>> program_of(const Value& value);

struct Procedure {
    std::string name;                     // as in the header
    std::vector<std::string> parameters;  // as in the header
    mutable std::vector<Stmt> body;       // see is_parsed
    std::string source;                   // from PROCEDURE to ENDPROCEDURE, one statement a line
    std::vector<Symbol*> symbols;         // of the parameters
    mutable bool is_parsed = true;        // false: the source says what the body will be
};

}  // namespace tpu
