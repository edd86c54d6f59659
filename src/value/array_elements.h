// The elements of an array, in the order of their subscripts.
#pragma once

#include <cassert>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "value/array_key.h"
#include "value/dense_run.h"
#include "value/value.h"

namespace tpu {

// Values of any type but none under subscripts. Most arrays are filled one integer
// after the other, so one run of neighbours lies in a vector; other integers and the
// strings are in maps. An integer next to the run always joins it, and a longer run
// that comes about in the map takes its place, so that the order in which an array
// is filled does not matter much.
class ArrayElements {
  public:
    std::size_t size() const { return run_.size() + sparse_.size() + strings_.size(); }

    // The element, or null. A pointer holds until the next set or erase.
    const Value* find(long long key) const {
        if (const Value* value = run_.find(key)) return value;
        return sparse_.empty() ? nullptr : find_sparse(key);
    }
    const Value* find(std::string_view key) const;
    bool contains(const ArrayKey& key) const {
        return key.kind == ArrayKey::Kind::integer ? find(key.integer) : find(key.text);
    }

    // Creates or replaces an element.
    void set(long long key, Value&& value) {
        if (Value* element = run_.find(key)) {
            *element = std::move(value);
        } else if (sparse_.empty() && run_.ends_before(key)) {
            run_.append(std::move(value));
        } else {
            insert(key, std::move(value));
        }
    }
    void set(std::string_view key, Value&& value);
    // Removes an element if it is there.
    void erase(long long key);
    void erase(std::string_view key);

    // The first and last subscript and the neighbours of one, be it there or not;
    // none when there is no such element.
    std::optional<ArrayKey> first() const;
    std::optional<ArrayKey> last() const;
    std::optional<ArrayKey> after(const ArrayKey& key);
    std::optional<ArrayKey> before(const ArrayKey& key);

    // Calls visit(const ArrayKey&, value) for each element in order. The visitor may
    // put a value of a type into a mutable one, but not add or remove elements.
    template <class Visit>
    void for_each(Visit&& visit) const {
        visit_all(*this, visit);
    }
    template <class Visit>
    void for_each(Visit&& visit) {
        visit_all(*this, [&](const ArrayKey& key, Value& value) {
            visit(key, value);
            assert(!value.is(Value::Type::none));
        });
    }

  private:
    static constexpr std::size_t kFewSparse = 16;

    template <class Self, class Visit>
    static void visit_all(Self& self, Visit&& visit);

    const Value* find_sparse(long long key) const;
    void insert(long long key, Value&& value);
    void insert_sparse(long long key, Value&& value);
    void join_above();
    void join_below();
    void scatter_run();
    void prefer_longest_run();

    std::optional<ArrayKey> last_integer() const;
    std::optional<ArrayKey> integer_after(long long key);
    std::optional<ArrayKey> integer_before(long long key);

    DenseRun run_;
    // Integers below and above the run, none within it or next to it.
    std::map<long long, Value> sparse_;
    std::size_t look_at_ = kFewSparse;  // size of the map at which to look for a longer run
    std::map<std::string, Value, std::less<>> strings_;
};

template <class Self, class Visit>
void ArrayElements::visit_all(Self& self, Visit&& visit) {
    ArrayKey key;
    auto visit_integer = [&](long long integer, auto& value) {
        key.integer = integer;
        visit(std::as_const(key), value);
    };
    auto sparse = self.sparse_.begin();
    auto above = self.run_.empty() ? sparse : self.sparse_.lower_bound(self.run_.first());
    for (; sparse != above; ++sparse) visit_integer(sparse->first, sparse->second);
    self.run_.for_each(visit_integer);
    for (; sparse != self.sparse_.end(); ++sparse) visit_integer(sparse->first, sparse->second);
    key = ArrayKey::of_string({});
    for (auto& [text, value] : self.strings_) {
        key.text = text;
        visit(std::as_const(key), value);
    }
}

}  // namespace tpu
