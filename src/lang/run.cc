// What the nodes of expressions compute.
#include <array>
#include <limits>

#include "lang/builtin.h"
#include "lang/compile.h"
#include "lang/deeper.h"
#include "lang/nodes.h"
#include "lang/parser.h"
#include "pattern/join.h"
#include "value/array.h"

namespace tpu {

namespace {

constexpr Word kTrue = Value::integer_word(1), kFalse = Value::integer_word(0);

bool both_integers(Word a, Word b) {
    return (a.head | b.head) == 0;
}

bool truth_of(Word word) {
    return word.head == 0 ? word.tail != 0 : Value::adopt(word).truthy();
}

long long number_of(Word word) {
    return word.head == 0 ? static_cast<long long>(word.tail) : Value::adopt(word).as_int();
}

// Arithmetic is that of 64-bit words, which wraps silently.
std::uint64_t bits_of(Word word) {
    return static_cast<std::uint64_t>(number_of(word));
}

// Whether a result of so many bytes may be; if not, an error is recorded.
bool fits(MiniTPUParser& run, std::size_t bytes) {
    if (bytes <= run.longest_text) return true;
    run.record_error("TPU$_STRTOOLARGE", "The result is longer than any text may be");
    return false;
}

Value join_texts(MiniTPUParser& run, Value left, const Value& right) {
    using Type = Value::Type;
    if (left.is(Type::string) && right.is(Type::string)) {
        if (!fits(run, left.text().size() + right.text().size())) return tpu_unspecified();
        left.append(right.text());
        return left;
    }
    const std::string first = left.as_string(), second = right.as_string();
    if (!fits(run, first.size() + second.size())) return tpu_unspecified();
    return Value::make_joined(first, second);
}

Value join_patterns(MiniTPUParser& run, Value left, const Value& right, char op) {
    if (!fits(run, pattern_bytes(left) + pattern_bytes(right))) return tpu_unspecified();
    return concat_patterns(std::move(left), right, op);
}

Value add_values(MiniTPUParser& run, Value left, char op, const Value& right) {
    using Type = Value::Type;
    if (op == '-')
        return Value::adopt(
            {0, bits_of(std::move(left).release()) - static_cast<std::uint64_t>(right.as_int())});
    if (left.is(Type::pattern) || right.is(Type::pattern))
        return join_patterns(run, std::move(left), right, op);
    if (left.is(Type::string) || right.is(Type::string)) {
        return join_texts(run, std::move(left), right);
    }
    return Value::adopt({0, static_cast<std::uint64_t>(left.as_int()) +
                                static_cast<std::uint64_t>(right.as_int())});
}

Word add_words(MiniTPUParser& run, Word left, char op, Word right) {
    if (both_integers(left, right)) {
        return {0, op == '-' ? left.tail - right.tail : left.tail + right.tail};
    }
    Value b = Value::adopt(right);
    return add_values(run, Value::adopt(left), op, b).release();
}

Word multiply(Word left, char op, Word right) {
    std::uint64_t a = bits_of(left), b = bits_of(right);
    if (op == '*') return {0, a * b};
    if (b == 0) return {0, 0};
    if (b + 1 == 0) return {0, 0 - a};  // the smallest integer by -1 would trap
    return Value::integer_word(static_cast<long long>(a) / static_cast<long long>(b));
}

template <class T>
bool compare_as(Comparison::Op op, const T& a, const T& b) {
    using Op = Comparison::Op;
    switch (op) {
        case Op::less: return a < b;
        case Op::equal: return a == b;
        case Op::greater: return a > b;
        case Op::not_less: return a >= b;
        case Op::not_equal: return a != b;
        case Op::not_greater: return a <= b;
    }
    return false;
}

bool compare_values(Comparison::Op op, const Value& a, const Value& b) {
    using Type = Value::Type;
    if (a.is(Type::string) && b.is(Type::string)) return compare_as(op, a.text(), b.text());
    if (a.is(Type::string) || b.is(Type::string))
        return compare_as(op, a.as_string(), b.as_string());
    return compare_as(op, a.as_int(), b.as_int());
}

}  // namespace

namespace {

// Null: there is no such element, or no array.
const Value* element_of(const Value& value, const Value& index) {
    TPUArray* array = value.array_here();
    return array ? array->find(index) : nullptr;
}

}  // namespace

Word Subscripted::compute(MiniTPUParser& run) const {
    // Nothing runs between looking at the variable and at its element.
    if (const Value* index = subscripts.front()->in_place(); index && is_plain()) {
        const Value* element = element_of(symbol->value, *index);
        return element ? element->share() : tpu_unspecified().release();
    }
    Value value = Value::adopt(base->eval(run));
    if (symbol && !symbol->is_bound()) {
        run.stopped = true;
        run.stopped_at = name_end;
    }
    if (may_stop && run.stopped) return std::move(value).release();
    for (const NodePtr& subscript : subscripts) {
        Value index = Value::adopt(subscript->eval(run));
        const Value* element = element_of(value, index);
        value = element ? *element : tpu_unspecified();
        if (may_stop && run.stopped) break;
    }
    return std::move(value).release();
}

Word Sum::compute(MiniTPUParser& run) const {
    Word left = first.eval(run);
    for (const Link& link : links) {
        if (may_stop && run.stopped) break;
        left = add_words(run, left, link.op, link.operand.eval(run));
    }
    return left;
}

void Sum::assign_in_place(MiniTPUParser& run, Symbol& target) const {
    Value sum = target.value;
    constexpr std::size_t kMost = 8;
    bool grows = sum.is(Value::Type::string) || sum.is(Value::Type::pattern);
    if (!grows || may_stop || links.size() > kMost) {
        sum = Value::adopt(compute(run));
    } else {
        // First all operands, since they may still look at the variable.
        std::array<Value, kMost> operands;
        for (std::size_t i = 0; i < links.size(); ++i) {
            operands[i] = Value::adopt(links[i].operand.eval(run));
            // A range speaks of text that what follows may change.
            if (operands[i].is(Value::Type::range) && links[i].op != '-') {
                operands[i] = Value::make_str(operands[i].as_string());
            }
        }
        if (sum.only_shares_with(target.value) && !target.constant) target.value = Value();
        for (std::size_t i = 0; i < links.size(); ++i) {
            sum = add_values(run, std::move(sum), links[i].op, operands[i]);
        }
    }
    run.assign(target, std::move(sum));
}

Word Product::compute(MiniTPUParser& run) const {
    Word left = first.eval(run);
    for (const Link& link : links) {
        if (may_stop && run.stopped) break;
        left = multiply(left, link.op, link.operand.eval(run));
    }
    return left;
}

// Both sides are always evaluated: they may have effects.
Word Conjunction::compute(MiniTPUParser& run) const {
    Word left = first.eval(run);
    for (const Link& link : links) {
        if (may_stop && run.stopped) break;
        bool a = truth_of(left);
        bool b = link.operand.truth(run);
        left = a && b ? kTrue : kFalse;
    }
    return left;
}

Word Disjunction::compute(MiniTPUParser& run) const {
    Word left = first.eval(run);
    for (const Link& link : links) {
        if (may_stop && run.stopped) break;
        bool a = truth_of(left);
        bool b = link.operand.truth(run);
        left = a || b ? kTrue : kFalse;
    }
    return left;
}

bool Comparison::compare(MiniTPUParser& run, Word a) const {
    Word b = right.eval(run);
    if (both_integers(a, b)) {
        return compare_as(op, static_cast<long long>(a.tail), static_cast<long long>(b.tail));
    }
    Value value = Value::adopt(a);
    return compare_values(op, value, Value::adopt(b));
}

Word Comparison::compute(MiniTPUParser& run) const {
    Word a = left.eval(run);
    if (may_stop && run.stopped) return a;
    return compare(run, a) ? kTrue : kFalse;
}

bool Comparison::compute_truth(MiniTPUParser& run) const {
    Word a = left.eval(run);
    if (may_stop && run.stopped) return truth_of(a);
    return compare(run, a);
}

Word Prefixed::compute(MiniTPUParser& run) const {
    Word word = inner->eval(run);
    for (auto op = ops.rbegin(); op != ops.rend(); ++op) {
        word = *op == '-' ? Word{0, 0 - bits_of(word)} : truth_of(word) ? kFalse : kTrue;
    }
    return word;
}

namespace {

bool any_may_stop(const CallSite& site) {
    for (const Argument& argument : site.arguments) {
        if (argument.code->may_stop) return true;
    }
    return false;
}

}  // namespace

BuiltinCall::BuiltinCall(const Builtin& row, CallSite arguments)
    : builtin(row), site(std::move(arguments)) {
    may_stop = any_may_stop(site);
}

Word BuiltinCall::compute(MiniTPUParser& run) const {
    Args args(run, site);
    args.evaluate_all();
    if (!run.can_run(builtin)) return tpu_unspecified().release();
    Call call{run.host, run, builtin.name, args};
    if (builtin.function) return builtin.function(call).release();
    if (builtin.statement) builtin.statement(call);  // else it declares names, and is no call
    return tpu_unspecified().release();
}

ProcedureCall::ProcedureCall(Symbol& named, CallSite arguments)
    : symbol(named), site(std::move(arguments)) {
    may_stop = any_may_stop(site);
}

Word ProcedureCall::compute(MiniTPUParser& run) const {
    constexpr std::size_t kFew = 4;
    if (!symbol.procedure || may_stop || site.arguments.size() > kFew) return call_with_args(run);
    // The values go from here to their names without a stop between.
    Word words[kFew];
    std::size_t count = 0;
    for (const Argument& argument : site.arguments) words[count++] = argument.code->eval(run);
    return run.call(*symbol.procedure, {words, count}, true);
}

Word ProcedureCall::call_with_args(MiniTPUParser& run) const {
    Args args(run, site);
    args.evaluate_all();
    if (const Procedure* procedure = symbol.procedure) {
        std::vector<Word> words;
        for (Value& value : args.values()) words.push_back(std::move(value).release());
        return run.call(*procedure, words, true);
    }
    run.record_error("TPU$_UNDEFINEDPROC", "Undefined procedure " + symbol.name);
    return tpu_unspecified().release();
}

Deep::~Deep() {
    auto drop = [](void* expression, const char*) { static_cast<NodePtr*>(expression)->reset(); };
    if (!fresh_stack::run(drop, &inner)) inner.reset();
}

Word Deep::compute(MiniTPUParser& run) const {
    Word word;
    on_roomy_stack(run, [&] { word = inner->eval(run); });
    return word;
}

Word TooDeep::compute(MiniTPUParser& run) const {
    run.record_error("TPU$_EXPCOMPLEX", "Expression is nested too deeply");
    return Value().release();
}

}  // namespace tpu
