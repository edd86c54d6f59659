#include "lang/builtin.h"

#include "lang/compile.h"
#include "lang/host.h"
#include "lang/parser.h"
#include "text/ascii.h"

namespace tpu {

Args::Args(MiniTPUParser& run, const CallSite& site)
    : run_(run), site_(site), count_(site.arguments.size()) {
    if (count_ <= kFew) return;
    many_ = std::make_unique<Value[]>(count_);
    many_done_ = std::make_unique<bool[]>(count_);
}

const Value& Args::value(std::size_t i) {
    static const Value kMissing = tpu_unspecified();
    if (i >= count_) return kMissing;
    Value& value = many_ ? many_[i] : few_[i];
    bool done = many_ ? many_done_[i] : (few_done_ >> i & 1) != 0;
    if (done) return value;
    if (many_) {
        many_done_[i] = true;
    } else {
        few_done_ |= 1u << i;
    }
    const Argument& argument = site_.arguments[i];
    if (!argument.code && !argument.text.empty()) {
        argument.code = compile_expression(argument.text, run_.symbols);
    }
    if (argument.code) value = run_.eval_root(*argument.code);
    return value;
}

std::span<Value> Args::values() {
    for (std::size_t i = 0; i < count_; ++i) value(i);
    return {many_ ? many_.get() : few_.data(), count_};
}

void Args::evaluate_all() {
    for (std::size_t i = 0; i < count_; ++i) {
        Word word = site_.arguments[i].code->eval(run_);
        if (many_) {
            many_[i] = Value::adopt(word);
            many_done_[i] = true;
        } else {
            few_[i] = Value::adopt(word);
            few_done_ |= 1u << i;
        }
        if (site_.arguments[i].code->may_stop && run_.stopped) count_ = i + 1;
    }
}

bool Args::on(std::size_t i, bool otherwise) {
    auto word_of = [](std::string_view text) -> std::optional<bool> {
        std::string word = ascii::upper(ascii::trim(text));
        if (word == "ON" || word == "TRUE") return true;
        if (word == "OFF" || word == "FALSE") return false;
        return {};
    };
    if (std::optional<bool> written = word_of(raw(i))) return *written;
    const Value& switched = value(i);
    if (switched.is(Value::Type::integer)) {
        return switched.integer() == 1 || (switched.integer() != 0 && otherwise);
    }
    return word_of(switched.as_string()).value_or(otherwise);
}

Buffer& Call::buffer() const {
    return *host.buffer();
}

BuiltinTable::BuiltinTable(std::span<const std::span<const Builtin>> families)
    : families_(families) {
    for (std::span<const Builtin> family : families_) {
        for (const Builtin& row : family) by_name_.emplace(row.name, &row);
    }
}

const Builtin* BuiltinTable::find(std::string_view name) const {
    auto found = by_name_.find(name);
    return found == by_name_.end() ? nullptr : found->second;
}

}  // namespace tpu
