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

}  // namespace tpu
