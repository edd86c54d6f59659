// Names and what they are bound to.
//
// Scoping is dynamic: a name means its innermost binding, whichever active call made
// it. So each name keeps just that one at hand, and a stack keeps those that calls
// have covered: looking a name up costs the same at any depth of calls.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "value/value.h"

namespace tpu {

class BuiltinTable;
struct Procedure;

struct Symbol {
    static constexpr int kUnbound = -1;
    static constexpr int kGlobal = 0;

    explicit Symbol(std::string_view text) : name(text), value(Value::make_kw(text)) {}

    bool is_bound() const { return level != kUnbound; }

    std::string name;      // upper case
    Value value;           // of the innermost binding; without one the keyword of that name
    int level = kUnbound;  // of that binding: the depth of its call, or kGlobal
    bool constant = false;
    Procedure* procedure = nullptr;
    std::size_t global_at = kNowhere;  // where the stack keeps the covered global level

    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
};

class SymbolTable {
  public:
    using Symbols = std::map<std::string, Symbol, std::less<>>;

    // Names may be those of built-ins, too. The table of these outlives this one.
    explicit SymbolTable(const BuiltinTable& builtins);

    const BuiltinTable& builtins() const { return builtins_; }

    // Tells this table from any other one, those that are gone included.
    std::uint64_t number() const { return number_; }

    // The symbol of an upper-case name, which is made when it is new. It stays where it is.
    Symbol& intern(std::string_view name);
    // The same, or null when that name was never seen.
    Symbol* find(std::string_view name);

    // The depth of the running call; 0 outside of all.
    int depth() const { return depth_; }
    // Begins a call's scope; give the result to leave(), which undoes its bindings.
    std::size_t enter() {
        ++depth_;
        return covered_.size();
    }
    void leave(std::size_t mark);
    void leave_all();

    // Binds a name in the running call, or globally outside of all. A name that is
    // bound there already gets the new value.
    void bind(Symbol& symbol, Value value);
    // Assigns to the innermost binding; without any a global is made.
    void assign(Symbol& symbol, Value value) {
        if (!symbol.is_bound()) symbol.level = Symbol::kGlobal;
        symbol.value = std::move(value);
    }
    bool is_bound_here(const Symbol& symbol) const { return symbol.level == depth_; }
    // Makes a global with that value unless there is one.
    void declare_global(Symbol& symbol, Value value);
    // The value that the name has outside all calls; null: there is no such global.
    const Value* global(const Symbol& symbol) const;

    // Every name, in byte order.
    Symbols& all() { return symbols_; }
    const Symbols& all() const { return symbols_; }
    // Calls f on every value that any name is bound to at any depth.
    template <class F>
    void for_each_value(F f) {
        for (auto& [name, symbol] : symbols_) {
            if (symbol.is_bound()) f(symbol.value);
        }
        for (Covered& covered : covered_) {
            if (covered.level != Symbol::kUnbound) f(covered.value);
        }
    }

  private:
    struct Covered {
        Symbol* symbol;
        Value value;
        int level;
    };

    const BuiltinTable& builtins_;
    std::uint64_t number_;
    Symbols symbols_;
    std::vector<Covered> covered_;  // innermost last
    int depth_ = 0;
};

}  // namespace tpu
