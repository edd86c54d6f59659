// Running code inside of running code.
#pragma once

#include "lang/parser.h"
#include "os/fresh_stack.h"

namespace tpu {

// One level of it. The outermost one leaves the interpreter ready for the next
// statement, whatever happened.
class Nesting {
  public:
    explicit Nesting(MiniTPUParser& run) : run_(run) {
        if (run_.block_depth++ == 0) run_.stack_limit = fresh_stack::first_limit();
    }
    ~Nesting() {
        if (--run_.block_depth == 0) run_.reset();
    }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

    bool is_outermost() const { return run_.block_depth == 1; }

  private:
    MiniTPUParser& run_;
};

}  // namespace tpu
