// The one value type of the language.
//
// A Value is two machine words: a type tag with a short text, and a payload. An
// integer, or a text of up to 13 bytes, lies in the words themselves; a longer text
// is a counted block, shared by all copies. Patterns, ranges, markers, arrays,
// programs, learn sequences and processes are shared: copying the Value counts a
// reference, and both copies then speak of one object. Buffers and windows belong
// to the editor; a Value only points at them, and whoever deletes one sees to it
// that no Value still does.
//
// What the folders above hold in a Value is an Object. They have the functions that put
// one in and take it out again, such as pattern_value and pattern_of.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tpu {

class Buffer;
struct Marker;
struct Range;
struct TPUArray;

// All that a Value needs to know of what it holds.
class Object {
  public:
    virtual ~Object() = default;
    // What as_string gives; empty: the name of the type in angle brackets.
    virtual std::string text() const { return {}; }
    virtual bool truth() const { return true; }

  protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

// The bits of a Value. They pass through registers, which is what makes evaluating
// an expression fast; whoever holds a Word owns what it refers to. A head of 0
// says that the tail is an integer.
struct Word {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
};

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

    Value() noexcept : word_{kNone, 0} {}
    Value(const Value& other) noexcept : Value(other.share()) {}
    Value(Value&& other) noexcept : Value(std::move(other).release()) {}
    // What `other` lives in may be what this one lets go: that goes last.
    Value& operator=(const Value& other) noexcept { return *this = Value(other); }
    Value& operator=(Value&& other) noexcept {
        Word incoming = std::move(other).release();
        Value outgoing(std::move(*this).release());
        word_.head = incoming.head;
        word_.tail = incoming.tail;
        return *this;
    }
    ~Value() {
        if (counted()) drop();
    }

    // Takes over what the word refers to, and gives it away.
    static Value adopt(Word word) noexcept { return Value(word); }
    Word release() && noexcept {
        Word word{word_.head, word_.tail};
        word_.head = kNone;
        return word;
    }
    // A word of its own, for another owner.
    Word share() const noexcept {
        retain();
        return {word_.head, word_.tail};
    }
    // The bits, still owned by this value.
    Word word() const { return {word_.head, word_.tail}; }

    static constexpr Word integer_word(long long integer) {
        return {0, static_cast<std::uint64_t>(integer)};
    }

    static Value make_int(long long integer) { return Value(integer_word(integer)); }
    static Value make_str(std::string_view text) { return {Type::string, text}; }
    static Value make_kw(std::string_view name) { return {Type::keyword, name}; }
    // The string that is one text behind the other.
    static Value make_joined(std::string_view first, std::string_view second);
    static Value make_range(Range range);
    static Value make_marker(Marker marker);
    static Value make_buffer(Buffer* buffer) { return {Type::buffer, buffer}; }
    static Value make_window(Object* window) { return {Type::window, static_cast<void*>(window)}; }
    // A new array that the walk over all arrays will find.
    static Value make_array();
    // The same with `count` elements, at least 1 and at most 65535, for the integer
    // subscripts from `low` on. They hold the unspecified value.
    static Value make_array(long long count, long long low);
    static Value make_array(std::shared_ptr<TPUArray> array);  // shares it
    // Of the types pattern, program, learn and process; null: a value without any.
    static Value make_object(Type type, std::shared_ptr<Object> object);

    Type type() const { return static_cast<Type>(word_.head & 0xff); }
    bool is(Type type) const { return this->type() == type; }

    // The payload; 0, empty or null when the value is of another type. The text
    // lives as long as this very value is neither changed nor moved.
    long long integer() const { return word_.head == 0 ? static_cast<long long>(word_.tail) : 0; }
    std::string_view text() const {
        if (counted() == kText) return {long_text()->bytes(), long_text()->size};
        return {short_text(), is_text(type()) ? short_size() : 0};
    }
    Buffer* buffer() const { return plain<Buffer>(Type::buffer); }
    Object* window() const { return plain<Object>(Type::window); }
    std::shared_ptr<Range> range() const { return shared<Range>(Type::range); }
    std::shared_ptr<Marker> marker() const { return shared<Marker>(Type::marker); }
    std::shared_ptr<TPUArray> array() const { return shared<TPUArray>(Type::array); }
    // What make_object was given; null when the value is not of that type.
    template <class T>
    std::shared_ptr<T> object(Type type) const {
        return std::static_pointer_cast<T>(shared<Object>(type));
    }
    // The array without a share in it.
    TPUArray* array_here() const {
        return is(Type::array) ? static_cast<TPUArray*>(held()->object.get()) : nullptr;
    }

    // An integer as it is, the number that a string begins with, else 0. A number
    // that is out of range counts as none.
    long long as_int() const { return is(Type::string) ? number_in_text() : integer(); }
    // The text of a string or keyword, an integer in decimal, a buffer's name, the
    // text that a range covers; a rendering in angle brackets for most others.
    std::string as_string() const;
    // Any integer but 0, any string but the empty one, the keywords ON and TRUE; of
    // the others whatever is there and not empty. An empty array counts as true.
    bool truthy() const { return word_.head == 0 ? word_.tail != 0 : is_there(); }

    // Lengthens a string. At no cost beyond the new bytes, on average, when no other
    // value shares the text.
    void append(std::string_view text);
    // True when both are one long text, pattern or the like that no third value holds.
    bool only_shares_with(const Value& other) const {
        return counted() && word_.tail == other.word_.tail && count() == 2;
    }
    // How many values hold the long text, pattern, array or the like that this one does.
    std::size_t holders() const { return counted() ? count() : 1; }
    // True when nobody else holds the pattern or the like that this value does: it may be
    // changed in place.
    bool is_only_holder() const {
        return counted() == kHeld && count() == 1 && held()->object.use_count() == 1;
    }

  private:
    // What the second byte of the head says of the payload.
    enum Counted : unsigned { kPlain, kText, kHeld };

    struct LongText {
        std::size_t count;
        std::size_t size;
        std::size_t capacity;

        char* bytes() { return reinterpret_cast<char*>(this + 1); }
    };
    struct Held {
        std::size_t count;
        std::shared_ptr<void> object;
    };

    static constexpr std::uint64_t kNone = static_cast<std::uint64_t>(Type::none);
    static constexpr std::size_t kShortest = 13;  // bytes of text that fit into the words
    static constexpr std::size_t kTextOffset = sizeof(Word) - kShortest;
    // The head's low bytes must be the first ones in memory: text fills the rest.
    static_assert(std::endian::native == std::endian::little);

    static constexpr bool is_text(Type type) {
        return type == Type::string || type == Type::keyword;
    }

    // The words are copied one by one, here and above: a processor stalls when it loads
    // in one piece what was just stored in two.
    explicit Value(Word word) noexcept {
        word_.head = word.head;
        word_.tail = word.tail;
    }
    Value(Type type, std::string_view text);
    Value(Type type, void* object) noexcept
        : word_{static_cast<std::uint64_t>(type), reinterpret_cast<std::uintptr_t>(object)} {}
    Value(Type type, std::shared_ptr<void> object);

    Counted counted() const { return static_cast<Counted>(word_.head >> 8 & 0xff); }
    std::size_t short_size() const { return word_.head >> 16 & 0xff; }
    char* short_text() { return reinterpret_cast<char*>(&word_) + kTextOffset; }
    const char* short_text() const { return reinterpret_cast<const char*>(&word_) + kTextOffset; }
    void* pointer() const {
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(word_.tail));
    }
    LongText* long_text() const { return static_cast<LongText*>(pointer()); }
    Held* held() const { return static_cast<Held*>(pointer()); }
    // Both counted payloads begin with their count.
    std::size_t& count() const { return *static_cast<std::size_t*>(pointer()); }

    void retain() const {
        if (counted()) ++count();
    }
    void drop() {
        if (--count() == 0) free_payload();
    }
    void free_payload();
    void hold_text(Type type, std::size_t size, std::size_t capacity);
    char* text_bytes() { return counted() == kText ? long_text()->bytes() : short_text(); }
    long long number_in_text() const;
    bool is_there() const;

    template <class T>
    T* plain(Type type) const {
        return is(type) ? static_cast<T*>(pointer()) : nullptr;
    }
    template <class T>
    std::shared_ptr<T> shared(Type type) const {
        return is(type) ? std::static_pointer_cast<T>(held()->object) : nullptr;
    }

    Word word_;
};

static_assert(sizeof(Value) == 16);

// What an absent element, an empty walk or a failed lookup gives: the keyword UNSPECIFIED.
Value tpu_unspecified();

// True for that keyword in any case, for TPU$K_UNSPECIFIED and for a value of no type.
bool tpu_value_is_unspecified(const Value& value);

// The name of a type in lower case: "integer", "string", "keyword", "none", ...
std::string_view type_name(Value::Type type);

}  // namespace tpu
