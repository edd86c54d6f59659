// The parsed form of source text: statements and procedures.
#pragma once

#include <string>
#include <vector>

namespace tpu {

struct Stmt {
    enum Kind : int { kPlain, kAssignment, kIf, kLoop, kExitIf, kReturn, kAbort, kBreak, kOnError };

    Kind kind = kPlain;
    std::string text;        // by kind: the statement, target, condition or RETURN's expression
    std::string expression;  // an assignment's right-hand side
    int line = 0;            // source line, counting from 1; 0: unknown
    std::vector<Stmt> body;
    std::vector<Stmt> else_body;
};

}  // namespace tpu
