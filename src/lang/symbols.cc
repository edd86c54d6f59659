#include "lang/symbols.h"

namespace tpu {

SymbolTable::SymbolTable(const BuiltinTable& builtins) : builtins_(builtins) {
    static std::uint64_t last = 0;
    number_ = ++last;
}

Symbol& SymbolTable::intern(std::string_view name) {
    auto place = symbols_.lower_bound(name);
    if (place == symbols_.end() || place->first != name) {
        place = symbols_.emplace_hint(place, std::string(name), Symbol(name));
    }
    return place->second;
}

Symbol* SymbolTable::find(std::string_view name) {
    auto place = symbols_.find(name);
    return place == symbols_.end() ? nullptr : &place->second;
}

void SymbolTable::leave(std::size_t mark) {
    while (covered_.size() > mark) {
        Covered& last = covered_.back();
        Symbol& symbol = *last.symbol;
        symbol.value = std::move(last.value);
        symbol.level = last.level;
        covered_.pop_back();
        if (symbol.global_at == covered_.size()) symbol.global_at = Symbol::kNowhere;
    }
    --depth_;
}

void SymbolTable::leave_all() {
    leave(0);
    depth_ = 0;
}

void SymbolTable::bind(Symbol& symbol, Value value) {
    if (symbol.level != depth_) {
        if (depth_ > 0) {
            covered_.push_back({&symbol, Value(), symbol.level});
            covered_.back().value = std::move(symbol.value);
            if (symbol.level <= Symbol::kGlobal) symbol.global_at = covered_.size() - 1;
        }
        symbol.level = depth_;
    }
    symbol.value = std::move(value);
}

void SymbolTable::declare_global(Symbol& symbol, Value value) {
    Covered* covered = symbol.global_at == Symbol::kNowhere ? nullptr : &covered_[symbol.global_at];
    int& level = covered ? covered->level : symbol.level;
    if (level != Symbol::kUnbound) return;
    level = Symbol::kGlobal;
    (covered ? covered->value : symbol.value) = std::move(value);
}

const Value* SymbolTable::global(const Symbol& symbol) const {
    if (symbol.level == Symbol::kGlobal) return &symbol.value;
    if (symbol.global_at == Symbol::kNowhere) return nullptr;
    const Covered& covered = covered_[symbol.global_at];
    return covered.level == Symbol::kGlobal ? &covered.value : nullptr;
}

}  // namespace tpu
