#include "lang/compile.h"

#include <algorithm>
#include <utility>

#include "lang/builtin.h"
#include "lang/nodes.h"
#include "lang/source.h"
#include "lang/words.h"
#include "os/fresh_stack.h"
#include "text/ascii.h"

namespace tpu {

namespace {

constexpr int kNestedDeeply = 50;  // levels for which the stack always has room

// The value of a digit in any radix up to 16; 16 for what is none.
unsigned digit_value(char c) {
    if (ascii::is_digit(c)) return static_cast<unsigned>(c - '0');
    c = ascii::to_upper(c);
    return c >= 'A' && c <= 'F' ? static_cast<unsigned>(c - 'A' + 10) : 16;
}

unsigned radix_of(char letter) {
    switch (ascii::to_upper(letter)) {
        case 'X':
        case 'H': return 16;
        case 'O': return 8;
        case 'B': return 2;
        case 'D': return 10;
        default: return 0;
    }
}

// How tightly the operators of an expression bind.
enum class Level { or_, and_, compare, add, multiply, unary, primary };

// Passes blanks.
void skip_blanks(std::string_view text, std::size_t& position) {
    while (position < text.size() && ascii::is_space(text[position])) ++position;
}

// Passes blanks and then `word` in any case, unless more of a word follows it. True
// when the word stood there; otherwise only blanks are passed.
bool match_word(std::string_view text, std::size_t& position, std::string_view word) {
    skip_blanks(text, position);
    std::string_view here = text.substr(position);
    if (here.size() < word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (ascii::to_upper(here[i]) != word[i]) return false;
    }
    if (here.size() > word.size()) {
        char next = here[word.size()];
        if (ascii::is_letter(next) || ascii::is_digit(next) || next == '_') return false;
    }
    position += word.size();
    return true;
}

class Compiler {
  public:
    Compiler(std::string_view text, SymbolTable& symbols) : text_(text), symbols_(symbols) {}

    // The expression, wrapped for where it is nested deeply.
    NodePtr whole() {
        NodePtr node;
        auto work = [&] { node = read(Level::or_); };
        if (!with_stack_for_it(work)) node = too_deep();
        return wrapped(std::move(node));
    }

  private:
    // Reading goes as deep as there are parentheses and braces, at most.
    template <class Work>
    bool with_stack_for_it(Work& work) {
        auto opens = [](char c) { return c == '(' || c == '{'; };
        if (std::count_if(text_.begin(), text_.end(), opens) > kNestedDeeply) {
            return fresh_stack::run([](void* it, const char*) { (*static_cast<Work*>(it))(); },
                                    &work);
        }
        work();
        return true;
    }

    NodePtr wrapped(NodePtr node) const {
        return deepest_ > kNestedDeeply ? std::make_unique<Deep>(std::move(node)) : std::move(node);
    }

    NodePtr too_deep() {
        at_ = text_.size();
        return std::make_unique<TooDeep>();
    }

    CallSite arguments() {
        CallSite site;
        if (!source_) source_ = std::make_shared<const std::string>(text_);
        site.source = source_;
        std::size_t open = at_++;
        skip_blanks(text_, at_);
        if (take(')')) return site;
        for (;;) {
            std::size_t start = at_;
            NodePtr code = nested();
            site.arguments.push_back({kept(start, at_), std::move(code)});
            skip_blanks(text_, at_);
            if (!take(',')) break;
        }
        std::size_t end = at_;
        take(')');
        site.text = kept(open + 1, end);
        return site;
    }

    // What stands there, trimmed, as long as the source is kept.
    std::string_view kept(std::size_t from, std::size_t to) const {
        return ascii::trim(std::string_view(*source_).substr(from, to - from));
    }

    NodePtr read(Level level) {
        switch (level) {
            case Level::or_: return words<Disjunction>("OR", Level::and_);
            case Level::and_: return words<Conjunction>("AND", Level::compare);
            case Level::compare: return comparison();
            case Level::add: return signs<Sum>("+-&", Level::multiply);
            case Level::multiply: return signs<Product>("*/", Level::unary);
            case Level::unary: return unary();
            case Level::primary: return primary();
        }
        return none();
    }

    // A whole expression inside of another one.
    NodePtr nested() {
        if (depth_ == kDeepestExpression) return too_deep();
        deepest_ = std::max(deepest_, ++depth_);
        NodePtr node = read(Level::or_);
        --depth_;
        return node;
    }

    template <class Kind>
    NodePtr words(std::string_view word, Level operands) {
        NodePtr first = read(operands);
        if (!match_word(text_, at_, word)) return first;
        auto chain = std::make_unique<Kind>(std::move(first));
        do {
            chain->add(word.front(), read(operands));
        } while (match_word(text_, at_, word));
        return chain;
    }

    template <class Kind>
    NodePtr signs(std::string_view ops, Level operands) {
        NodePtr first = read(operands);
        std::unique_ptr<Kind> chain;
        for (char op; (op = take_one_of(ops)) != 0;) {
            if (!chain) chain = std::make_unique<Kind>(std::move(first));
            chain->add(op, read(operands));
        }
        return chain ? std::move(chain) : std::move(first);
    }

    NodePtr comparison() {
        using Op = Comparison::Op;
        constexpr std::pair<std::string_view, Op> kOps[] = {
            {"<>", Op::not_equal}, {"<=", Op::not_greater}, {">=", Op::not_less},
            {"=", Op::equal},      {"<", Op::less},         {">", Op::greater},
        };
        NodePtr left = read(Level::add);
        skip_blanks(text_, at_);
        for (auto [sign, op] : kOps) {
            if (!text_.substr(at_).starts_with(sign)) continue;
            at_ += sign.size();
            NodePtr right = read(Level::add);
            return std::make_unique<Comparison>(std::move(left), op, std::move(right));
        }
        return left;
    }

    NodePtr unary() {
        std::string ops;
        for (;;) {
            skip_blanks(text_, at_);
            if (take('-')) {
                ops += '-';
            } else if (match_word(text_, at_, "NOT")) {
                ops += '!';
            } else {
                break;
            }
        }
        NodePtr operand = primary();
        if (ops.empty()) return operand;
        return std::make_unique<Prefixed>(std::move(ops), std::move(operand));
    }

    NodePtr primary() {
        skip_blanks(text_, at_);
        if (at_ == text_.size()) return none();
        if (take('(')) {
            NodePtr node = nested();
            skip_blanks(text_, at_);
            take(')');
            return node;
        }
        if (take('"')) return literal();
        char c = text_[at_];
        if (ascii::is_digit(c)) return number(10);
        if (c == '%') return radix_number();
        if (!ascii::is_letter(c) && c != '_') return none();
        return named();
    }

    NodePtr literal() {
        std::size_t end = text_.find('"', at_);
        std::string_view text = text_.substr(at_, end - at_);
        at_ = end == std::string_view::npos ? text_.size() : end + 1;
        return constant(Value::make_str(text));
    }

    NodePtr number(unsigned radix) {
        std::uint64_t value = 0;
        for (; at_ < text_.size() && digit_value(text_[at_]) < radix; ++at_) {
            value = value * radix + digit_value(text_[at_]);
        }
        return constant(Value::make_int(static_cast<long long>(value)));
    }

    NodePtr radix_number() {
        std::string_view rest = text_.substr(at_);
        unsigned radix = rest.size() > 2 ? radix_of(rest[1]) : 0;
        if (radix == 0 || digit_value(rest[2]) >= radix) return none();
        at_ += 2;
        return number(radix);
    }

    NodePtr named() {
        std::string_view written = source::leading_word(text_.substr(at_));
        at_ += written.size();
        std::size_t name_end = at_;
        std::string name = ascii::upper(written);
        skip_blanks(text_, at_);
        if (at_ < text_.size() && text_[at_] == '(') return subscripted(call(name), nullptr, 0);
        if (const Value* value = constant_word(name)) return constant(*value);
        const Builtin* row = symbols_.builtins().find(name);
        if (row && row->bare) {
            return subscripted(std::make_unique<BuiltinCall>(*row, CallSite()), nullptr, 0);
        }
        Symbol& symbol = symbols_.intern(name);
        return subscripted(std::make_unique<Variable>(symbol), &symbol, name_end);
    }

    NodePtr call(const std::string& name) {
        CallSite site = arguments();
        if (const Builtin* row = symbols_.builtins().find(name)) {
            return std::make_unique<BuiltinCall>(*row, std::move(site));
        }
        return std::make_unique<ProcedureCall>(symbols_.intern(name), std::move(site));
    }

    NodePtr subscripted(NodePtr base, Symbol* symbol, std::size_t name_end) {
        std::unique_ptr<Subscripted> node;
        for (;;) {
            std::size_t before_blanks = at_;
            skip_blanks(text_, at_);
            if (!take('{')) {
                at_ = before_blanks;
                break;
            }
            if (!node) node = std::make_unique<Subscripted>(std::move(base), symbol);
            node->name_end = name_end;
            NodePtr subscript = nested();
            node->may_stop = node->may_stop || subscript->may_stop;
            node->subscripts.push_back(std::move(subscript));
            skip_blanks(text_, at_);
            if (!take('}')) break;
        }
        return node ? std::move(node) : std::move(base);
    }

    static NodePtr constant(Value value) { return std::make_unique<Constant>(std::move(value)); }
    static NodePtr none() { return constant(Value()); }

    bool take(char c) {
        if (at_ >= text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    // The sign that stands here behind blanks, which it passes; 0 when none of them does.
    char take_one_of(std::string_view signs) {
        skip_blanks(text_, at_);
        if (at_ == text_.size() || signs.find(text_[at_]) == std::string_view::npos) return 0;
        return text_[at_++];
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::shared_ptr<const std::string> source_;  // a copy of the text, once a call needs it
    SymbolTable& symbols_;
    int depth_ = 0;
    int deepest_ = 0;
};

}  // namespace

NodePtr compile_expression(std::string_view text, SymbolTable& symbols) {
    text = ascii::trim(text);
    if (text.empty()) return nullptr;
    return Compiler(text, symbols).whole();
}

std::vector<std::string_view> split_top_args(std::string_view text) {
    std::vector<std::string_view> pieces;
    if (ascii::trim(text).empty()) return pieces;
    std::size_t start = 0;
    int depth = 0;
    for (SourceScan scan(text); scan.next();) {
        const char c = scan.byte();
        if (scan.in_string()) continue;
        if (c == '(' || c == '{') ++depth;
        if ((c == ')' || c == '}') && depth > 0) --depth;
        if (c == ',' && depth == 0) {
            pieces.push_back(text.substr(start, scan.at() - start));
            start = scan.at() + 1;
        }
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

}  // namespace tpu
