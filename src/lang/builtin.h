// What a built-in is, and what it gets when it is called.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "lang/code.h"
#include "value/value.h"

namespace tpu {

class Buffer;
class Host;
class MiniTPUParser;

// The arguments of one call. A statement's are evaluated once and only when they are
// asked for; a function's are evaluated beforehand, from left to right.
class Args {
  public:
    Args(MiniTPUParser& run, const CallSite& site);

    std::size_t count() const { return count_; }
    // As written, trimmed; empty beyond the last one.
    std::string_view raw(std::size_t i) const {
        return i < site_.arguments.size() ? site_.arguments[i].text : std::string_view();
    }
    // All of them as written, trimmed.
    std::string_view whole() const { return site_.text; }

    // Beyond the last one the unspecified value.
    const Value& value(std::size_t i);
    long long number(std::size_t i) { return value(i).as_int(); }
    std::string text(std::size_t i) { return value(i).as_string(); }
    // All of them, evaluated; the caller may move them away.
    std::span<Value> values();
    // A switch: ON, OFF, TRUE or FALSE as written, or else the text of the value, where
    // 1 and 0 count too. Anything else is `otherwise`.
    bool on(std::size_t i, bool otherwise);

    // Evaluates from left to right until reading stops at one.
    void evaluate_all();

  private:
    static constexpr std::size_t kFew = 6;

    MiniTPUParser& run_;
    const CallSite& site_;
    std::size_t count_;
    std::array<Value, kFew> few_;
    std::uint32_t few_done_ = 0;  // a bit for each
    std::unique_ptr<Value[]> many_;
    std::unique_ptr<bool[]> many_done_;
};

struct Call {
    Host& host;
    MiniTPUParser& parser;
    std::string_view name;  // upper case
    Args& args;
    bool is_statement = false;  // nobody will see what it gives
    bool told = false;          // a message says already what went wrong

    // The current buffer; a built-in runs only while there is one.
    Buffer& buffer() const;
};

// Statements that declare names are no calls: NAME a, b := 2.
enum class Declares : unsigned char { nothing, local, variable, constant };

struct Builtin {
    std::string_view name;               // upper case
    void (*statement)(Call&) = nullptr;  // null: runs as a function, its value dropped
    Value (*function)(Call&) = nullptr;  // null: runs as a statement, gives nothing
    Declares declares = Declares::nothing;
    bool bare = false;            // stands in an expression without parentheses
    bool without_buffer = false;  // can do without a current buffer
    bool only_called = false;     // of a text that may be a command, only when "(" follows
    std::string_view form;        // how it is written
    std::string_view help;        // one sentence
};

class BuiltinTable {
  public:
    // The families outlive the table; no name occurs twice in them.
    explicit BuiltinTable(std::span<const std::span<const Builtin>> families);

    std::span<const std::span<const Builtin>> families() const { return families_; }
    // The row of that name, which is given in upper case; null when there is none.
    const Builtin* find(std::string_view name) const;

  private:
    std::span<const std::span<const Builtin>> families_;
    std::unordered_map<std::string_view, const Builtin*> by_name_;
};

}  // namespace tpu
