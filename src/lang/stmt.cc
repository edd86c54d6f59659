#include "lang/stmt.h"

#include <iterator>
#include <new>
#include <utility>

namespace tpu {

namespace {

void move_to_end(std::vector<Stmt>& list, std::vector<Stmt>& from) {
    std::move(from.begin(), from.end(), std::back_inserter(list));
    from.clear();
}

}  // namespace

Stmt::~Stmt() {
    try {
        std::vector<Stmt> doomed;
        move_to_end(doomed, body);
        move_to_end(doomed, else_body);
        while (!doomed.empty()) {
            Stmt next = std::move(doomed.back());
            doomed.pop_back();
            move_to_end(doomed, next.body);
            move_to_end(doomed, next.else_body);
        }
    } catch (const std::bad_alloc&) {
        // What is left goes by calls that nest.
    }
}

Value program_value(std::vector<Stmt> statements) {
    auto program = std::make_shared<Program>();
    program->statements = std::move(statements);
    return Value::make_object(Value::Type::program, std::move(program));
}

std::shared_ptr<const std::vector<Stmt>> program_of(const Value& value) {
    auto program = value.object<Program>(Value::Type::program);
    if (!program) return nullptr;
    return {program, &program->statements};
}

}  // namespace tpu
