// The value of an expression that is given as text.
#include "lang/builtin.h"
#include "lang/compile.h"
#include "lang/nesting.h"
#include "lang/nodes.h"
#include "lang/parser.h"

namespace tpu {

namespace {

Value eval_level(MiniTPUParser& run, const std::string& text, std::size_t& position, Level level) {
    NodePtr node = compile_level(text, position, level, run.symbols);
    run.stopped = false;
    Nesting nesting(run);
    Value value = Value::adopt(node->eval(run));
    if (std::exchange(run.stopped, false)) position = run.stopped_at;
    return value;
}

}  // namespace

Value MiniTPUParser::eval_root(const Node& node) {
    if (!node.may_stop) return Value::adopt(node.eval(*this));
    bool outer = std::exchange(stopped, false);
    Value value = Value::adopt(node.eval(*this));
    stopped = outer;
    return value;
}

Value MiniTPUParser::eval_expression(const std::string& text) {
    auto code = code_cache.expressions.get(text, [&]() -> std::shared_ptr<const Node> {
        NodePtr node = compile_expression(text, symbols);
        return node ? std::shared_ptr<const Node>(std::move(node))
                    : std::make_shared<Constant>(Value());
    });
    Nesting nesting(*this);
    return eval_root(*code);
}

Value MiniTPUParser::eval_or(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::or_);
}

Value MiniTPUParser::eval_and(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::and_);
}

Value MiniTPUParser::eval_compare(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::compare);
}

Value MiniTPUParser::eval_add(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::add);
}

Value MiniTPUParser::eval_mul(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::multiply);
}

Value MiniTPUParser::eval_unary(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::unary);
}

Value MiniTPUParser::eval_primary(const std::string& text, std::size_t& position) {
    return eval_level(*this, text, position, Level::primary);
}

void MiniTPUParser::skip_ws(const std::string& text, std::size_t& position) {
    skip_blanks(text, position);
}

bool MiniTPUParser::match_word(const std::string& text, std::size_t& position,
                               const std::string& word) {
    return tpu::match_word(text, position, word);
}

std::vector<Value> MiniTPUParser::parse_args(const std::string& text, std::size_t& position) {
    CallSite site = compile_arguments(text, position, symbols);
    stopped = false;
    Nesting nesting(*this);
    Args args(*this, site);
    args.evaluate_all();
    if (std::exchange(stopped, false)) position = stopped_at;
    std::span<Value> values = args.values();
    return {values.begin(), values.end()};
}

Value MiniTPUParser::eval_function(const std::string& name, const std::vector<Value>& arguments) {
    CallSite site;
    for (const Value& value : arguments) {
        site.arguments.push_back({"", std::make_unique<Constant>(value)});
    }
    Nesting nesting(*this);
    if (const Builtin* row = symbols.builtins().find(name)) {
        return eval_root(BuiltinCall(*row, std::move(site)));
    }
    return eval_root(ProcedureCall(symbols.intern(name), std::move(site)));
}

}  // namespace tpu
