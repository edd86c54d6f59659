// The compiled form of the language: trees of nodes that compute values.
//
// The language is defined by reading text from left to right, and what a piece of
// text means may hang on the state of the moment. Nodes consume what reading would
// consume. Names are looked up when a node runs: only built-ins are bound early,
// since their table cannot change.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lang/symbols.h"
#include "value/value.h"

namespace tpu {

class MiniTPUParser;
struct Builtin;

class Node {
  public:
    virtual ~Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // The value of the expression; the caller owns it. Inline for what needs no
    // computing, constants and variables, since most operands are that.
    Word eval(MiniTPUParser& run) const { return value_ ? value_->share() : compute(run); }
    // Where the value is, if it need not be computed; else null.
    const Value* in_place() const { return value_; }
    // Whether that value is true.
    bool truth(MiniTPUParser& run) const { return value_ ? value_->truthy() : compute_truth(run); }

    // A subscript counts only after a variable. Where the name before it turns out to
    // be none, reading stops there: the node says so in MiniTPUParser::stopped, and
    // nodes around it leave the rest of their text alone. False: cannot happen.
    bool may_stop = false;

  protected:
    explicit Node(const Value* value = nullptr) : value_(value) {}

  private:
    virtual Word compute(MiniTPUParser& run) const = 0;
    virtual bool compute_truth(MiniTPUParser& run) const {
        Word word = compute(run);
        return word.head == 0 ? word.tail != 0 : Value::adopt(word).truthy();
    }

    const Value* value_;  // where the value is, if it need not be computed
};

using NodePtr = std::unique_ptr<Node>;

// What an operator works on. Knows itself where a constant or variable has its value.
class Operand {
  public:
    explicit Operand(NodePtr node) : node_(std::move(node)), value_(node_->in_place()) {}

    Word eval(MiniTPUParser& run) const { return value_ ? value_->share() : node_->eval(run); }
    bool truth(MiniTPUParser& run) const { return node_->truth(run); }
    bool may_stop() const { return node_->may_stop; }
    const Node& node() const { return *node_; }

  private:
    NodePtr node_;
    const Value* value_;
};

// One argument of a call: as written, trimmed, and what it says.
struct Argument {
    std::string_view text;
    mutable NodePtr code;  // null: not needed yet
};

// The arguments of a call. Their texts are parts of a text that calls within calls share.
struct CallSite {
    std::shared_ptr<const std::string> source;
    std::string_view text;  // all of them as written, trimmed
    std::vector<Argument> arguments;
};

// The target of an assignment: a name, or an element under a name.
struct Target {
    Symbol* symbol = nullptr;
    NodePtr subscript;
};

// LOCAL, VARIABLE or CONSTANT: one name with its first value.
struct Declared {
    Symbol* symbol = nullptr;
    NodePtr value;  // null: none given
};

// What a statement's text says, by kind of statement.
struct StmtCode {
    std::uint64_t table = 0;  // the number of the symbol table that its names are in
    NodePtr expression;       // right-hand side, condition, RETURN's expression
    Target target;
    bool in_place = false;  // the expression is a sum that begins with the target
    // A plain statement is an assignment (it has a target) or a call.
    const Builtin* builtin = nullptr;
    std::vector<Declared> declared;  // by a built-in that declares names
    CallSite site;
    Symbol* procedure = nullptr;  // what is called when it is no built-in; null: nothing can be
};

}  // namespace tpu
