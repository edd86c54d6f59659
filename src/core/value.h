// The one value type of the language.
//
// A Value is a type tag and a payload of that type. Integers and strings are held
// in place. Patterns, ranges, markers, arrays, programs, learn sequences and
// processes are shared: copying the Value copies a counted pointer, and both
// copies then speak of one object. Buffers and windows belong to the editor; a
// Value only points at them, and whoever deletes one sees to it that no Value
// still does.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tpu {

class Buffer;
class TPUProcess;
struct Marker;
struct Range;
struct Stmt;
struct TPUArray;
struct TPUPattern;
struct TPUWindow;

class Value {
  public:
    enum class Type : std::int32_t {
        integer,
        string,
        keyword,
        none,
        pattern,
        range,
        marker,
        buffer,
        window,
        array,
        program,
        learn,
        process,
    };
    using Program = std::vector<Stmt>;
    using Learn = std::vector<std::string>;

    Value() noexcept : scalar_{.integer = 0} {}
    Value(const Value& other);
    Value(Value&& other) noexcept { take(other); }
    // The argument is a value: what `other` lives in may be what this one lets go.
    Value& operator=(Value other) noexcept {
        release();
        take(other);
        return *this;
    }
    ~Value() { release(); }

    static Value make_int(long long integer) { return {Type::integer, {.integer = integer}}; }
    static Value make_str(std::string text) { return {Type::string, std::move(text)}; }
    static Value make_kw(std::string name) { return {Type::keyword, std::move(name)}; }
    static Value make_pattern(TPUPattern pattern);
    static Value make_range(Range range);
    static Value make_marker(Marker marker);
    static Value make_buffer(Buffer* buffer) { return {Type::buffer, {.buffer = buffer}}; }
    static Value make_window(TPUWindow* window) { return {Type::window, {.window = window}}; }
    // A new array that the walk over all arrays will find.
    static Value make_array();
    // The same with `count` elements, at least 1 and at most 65535, for the integer
    // subscripts from `low` on. They hold the unspecified value.
    static Value make_array(long long count, long long low);
    static Value make_array(std::shared_ptr<TPUArray> array);  // shares it
    static Value make_program(std::shared_ptr<Program> program);
    static Value make_learn(std::shared_ptr<Learn> keys);
    static Value make_process(std::shared_ptr<TPUProcess> process);

    Type type() const { return type_; }
    bool is(Type type) const { return type_ == type; }

    // The payload; 0, empty or null when the value is of another type.
    long long integer() const { return type_ == Type::integer ? scalar_.integer : 0; }
    const std::string& text() const { return held(type_) == Held::text ? text_ : kNoText; }
    Buffer* buffer() const { return type_ == Type::buffer ? scalar_.buffer : nullptr; }
    TPUWindow* window() const { return type_ == Type::window ? scalar_.window : nullptr; }
    std::shared_ptr<TPUPattern> pattern() const { return shared<TPUPattern>(Type::pattern); }
    std::shared_ptr<Range> range() const { return shared<Range>(Type::range); }
    std::shared_ptr<Marker> marker() const { return shared<Marker>(Type::marker); }
    std::shared_ptr<TPUArray> array() const { return shared<TPUArray>(Type::array); }
    std::shared_ptr<Program> program() const { return shared<Program>(Type::program); }
    std::shared_ptr<Learn> learn() const { return shared<Learn>(Type::learn); }
    std::shared_ptr<TPUProcess> process() const { return shared<TPUProcess>(Type::process); }

    // An integer as it is, the number that a string begins with, else 0. A number
    // that is out of range counts as none.
    long long as_int() const;
    // The text of a string or keyword, an integer in decimal, a buffer's name, the
    // text that a range covers; a rendering in angle brackets for most others.
    std::string as_string() const;
    // Any integer but 0, any string but the empty one, the keywords ON and TRUE; of
    // the others whatever is there and not empty. An empty array counts as true.
    bool truthy() const;

  private:
    union Scalar {
        long long integer;
        Buffer* buffer;
        TPUWindow* window;
    };
    // Which member of the union below a type uses.
    enum class Held { scalar, text, shared };

    static constexpr Held held(Type type) {
        switch (type) {
            case Type::integer:
            case Type::none:
            case Type::buffer:
            case Type::window: return Held::scalar;
            case Type::string:
            case Type::keyword: return Held::text;
            default: return Held::shared;
        }
    }

    Value(Type type, Scalar scalar) noexcept : type_(type), scalar_(scalar) {}
    Value(Type type, std::string text) noexcept : type_(type), text_(std::move(text)) {}
    Value(Type type, std::shared_ptr<void> object) noexcept
        : type_(type), shared_(std::move(object)) {}

    template <class T>
    std::shared_ptr<T> shared(Type type) const {
        return type_ == type ? std::static_pointer_cast<T>(shared_) : nullptr;
    }
    // Begin to hold what `other` holds, moved out of it; end holding anything. Each is
    // right only in its turn: take after construction or release.
    void take(Value& other) noexcept;
    void release() noexcept;

    static const std::string kNoText;

    Type type_ = Type::none;
    union {
        Scalar scalar_;
        std::string text_;
        std::shared_ptr<void> shared_;
    };
};

static_assert(sizeof(Value) <= 40);

// What an absent element, an empty walk or a failed lookup gives: the keyword UNSPECIFIED.
Value tpu_unspecified();

// True for that keyword in any case, for TPU$K_UNSPECIFIED and for a value of no type.
bool tpu_value_is_unspecified(const Value& value);

// The name of a type in lower case: "integer", "string", "keyword", "none", ...
std::string_view type_name(Value::Type type);

// Inline, since evaluating an expression does little else than copy and drop values.

inline Value::Value(const Value& other) : type_(other.type_) {
    switch (held(type_)) {
        case Held::scalar: std::construct_at(&scalar_, other.scalar_); break;
        case Held::text: std::construct_at(&text_, other.text_); break;
        case Held::shared: std::construct_at(&shared_, other.shared_); break;
    }
}

inline void Value::take(Value& other) noexcept {
    type_ = other.type_;
    switch (held(type_)) {
        case Held::scalar: std::construct_at(&scalar_, other.scalar_); break;
        case Held::text: std::construct_at(&text_, std::move(other.text_)); break;
        case Held::shared: std::construct_at(&shared_, std::move(other.shared_)); break;
    }
}

inline void Value::release() noexcept {
    switch (held(type_)) {
        case Held::scalar: break;
        case Held::text: std::destroy_at(&text_); break;
        case Held::shared: std::destroy_at(&shared_); break;
    }
}

}  // namespace tpu
