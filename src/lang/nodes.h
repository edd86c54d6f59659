// The nodes of expressions. compile.cc makes them, run.cc says what they compute.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "lang/code.h"

namespace tpu {

class Constant : public Node {
  public:
    explicit Constant(Value value) : Node(&held_), held_(std::move(value)) {}

  private:
    Word compute(MiniTPUParser&) const override { return held_.share(); }

    Value held_;
};

class Variable : public Node {
  public:
    explicit Variable(Symbol& named) : Node(&named.value), symbol(named) {}

    Symbol& symbol;

  private:
    Word compute(MiniTPUParser&) const override { return symbol.value.share(); }
};

// base{a}{b}
class Subscripted : public Node {
  public:
    explicit Subscripted(NodePtr whose, Symbol* named) : base(std::move(whose)), symbol(named) {
        may_stop = symbol || base->may_stop;
    }

    // One subscript after a name that is a variable.
    bool is_plain() const { return subscripts.size() == 1 && symbol && symbol->is_bound(); }

    NodePtr base;
    Symbol* symbol;            // of the name that base is; null: base is a call
    std::size_t name_end = 0;  // where reading stops when the name is no variable
    std::vector<NodePtr> subscripts;

  private:
    Word compute(MiniTPUParser& run) const override;
};

// Operands joined by operators of one level: + and - and &, or * and /, or AND, or OR.
class Chain : public Node {
  public:
    struct Link {
        char op;
        Operand operand;
    };

    explicit Chain(NodePtr operand) : first(std::move(operand)) { may_stop = first.may_stop(); }
    void add(char op, NodePtr operand) {
        may_stop = may_stop || operand->may_stop;
        links.push_back({op, Operand(std::move(operand))});
    }

    Operand first;
    std::vector<Link> links;
};

class Sum : public Chain {
  public:
    using Chain::Chain;

    // Assigns the sum to the variable that is its first operand. A text that grows
    // this way is lengthened in place instead of copied.
    void assign_in_place(MiniTPUParser& run, Symbol& target) const;

  private:
    Word compute(MiniTPUParser& run) const override;
};

class Product : public Chain {
  public:
    using Chain::Chain;

  private:
    Word compute(MiniTPUParser& run) const override;
};

class Conjunction : public Chain {
  public:
    using Chain::Chain;

  private:
    Word compute(MiniTPUParser& run) const override;
};

class Disjunction : public Chain {
  public:
    using Chain::Chain;

  private:
    Word compute(MiniTPUParser& run) const override;
};

class Comparison : public Node {
  public:
    enum class Op : unsigned char { less, equal, greater, not_less, not_equal, not_greater };

    Comparison(NodePtr a, Op compared, NodePtr b)
        : left(std::move(a)), right(std::move(b)), op(compared) {
        may_stop = left.may_stop() || right.may_stop();
    }

    Operand left;
    Operand right;
    Op op;

  private:
    Word compute(MiniTPUParser& run) const override;
    bool compute_truth(MiniTPUParser& run) const override;
    bool compare(MiniTPUParser& run, Word a) const;
};

// Prefix operators before one operand, outermost first: '-' and '!' for NOT.
class Prefixed : public Node {
  public:
    Prefixed(std::string prefixes, NodePtr operand)
        : ops(std::move(prefixes)), inner(std::move(operand)) {
        may_stop = inner->may_stop;
    }

    std::string ops;
    NodePtr inner;

  private:
    Word compute(MiniTPUParser& run) const override;
};

class BuiltinCall : public Node {
  public:
    BuiltinCall(const Builtin& row, CallSite arguments);

    const Builtin& builtin;
    CallSite site;

  private:
    Word compute(MiniTPUParser& run) const override;
};

// A call of what is no built-in: a procedure, if there is one when it runs.
class ProcedureCall : public Node {
  public:
    ProcedureCall(Symbol& named, CallSite arguments);

    Symbol& symbol;
    CallSite site;

  private:
    Word compute(MiniTPUParser& run) const override;
    Word call_with_args(MiniTPUParser& run) const;
};

// Evaluates an expression that is nested deeply, and ends it, where there is stack
// for that.
class Deep : public Node {
  public:
    explicit Deep(NodePtr expression) : inner(std::move(expression)) { may_stop = inner->may_stop; }
    ~Deep() override;

    NodePtr inner;

  private:
    Word compute(MiniTPUParser& run) const override;
};

// Stands for what is nested more deeply than expressions may be.
class TooDeep : public Node {
  private:
    Word compute(MiniTPUParser& run) const override;
};

}  // namespace tpu
