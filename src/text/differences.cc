#include "text/differences.h"

#include <algorithm>

namespace tpu {

namespace {

constexpr std::uint64_t kWorthKeeping = 4 << 10;  // bytes between two differences

// Puts changes that follow one another into the order of the text. Changes mostly lie near
// the one before, so what lies left and right of that is kept apart.
class Collector {
  public:
    void add(const Change& change) {
        const std::uint64_t from = change.offset, to = from + change.erased;
        while (!right_.empty() && begin_of_right() <= to) take_from_right();
        while (!left_.empty() && left_.back().new_begin > to) give_to_right();
        Difference all{from - shift(), to - shift(), from, to};
        bool is_last = true;
        for (; !left_.empty() && left_.back().new_end >= from; left_.pop_back()) {
            const Difference& last = left_.back();
            if (is_last) all.old_end = last.old_end + (std::max(to, last.new_end) - last.new_end);
            if (is_last) all.new_end = std::max(to, last.new_end);
            is_last = false;
            all.new_begin = std::min(from, last.new_begin);
            all.old_begin = last.old_begin - (last.new_begin - all.new_begin);
        }
        all.new_end = all.new_end - change.erased + change.inserted;
        left_.push_back(all);
    }

    std::vector<Difference> take() {
        while (!right_.empty()) take_from_right();
        return std::move(left_);
    }

  private:
    // How much further back what follows the left ones is than in the old text.
    std::uint64_t shift() const {
        return left_.empty() ? 0 : left_.back().new_end - left_.back().old_end;
    }
    std::uint64_t begin_of_right() const { return right_.back().old_begin + shift(); }
    void take_from_right() {
        Difference next = right_.back();
        const std::uint64_t size = next.new_end - next.new_begin;
        next.new_begin = begin_of_right();
        next.new_end = next.new_begin + size;
        right_.pop_back();
        left_.push_back(next);
    }
    void give_to_right() {
        right_.push_back(left_.back());
        left_.pop_back();
    }

    std::vector<Difference> left_;   // front to back
    std::vector<Difference> right_;  // back to front; of the new offsets only the size holds
};

Difference between_what_is_shared(const LineStore& old, const LineStore& fresh) {
    const std::uint64_t shorter = std::min(old.bytes(), fresh.bytes());
    const std::uint64_t head = old.shared_head(fresh);
    const std::uint64_t tail = std::min(old.shared_tail(fresh), shorter - head);
    return {head, old.bytes() - tail, head, fresh.bytes() - tail};
}

bool is_none(const Difference& found, const LineStore& old, const LineStore& fresh) {
    return found.old_end - found.old_begin == found.new_end - found.new_begin &&
           old.part(found.old_begin, found.old_end) == fresh.part(found.new_begin, found.new_end);
}

}  // namespace

std::vector<Difference> differences(const LineStore& old, const LineStore& fresh,
                                    const std::optional<std::vector<Change>>& changes) {
    if (old.is_same_version(fresh)) return {};
    Collector collector;
    for (const Change& change : changes.value_or(std::vector<Change>())) collector.add(change);
    std::vector<Difference> all = collector.take();
    if (!changes) all.push_back(between_what_is_shared(old, fresh));
    std::vector<Difference> found;
    for (const Difference& next : all) {
        if (is_none(next, old, fresh)) continue;
        if (found.empty() || next.new_begin - found.back().new_end >= kWorthKeeping) {
            found.push_back(next);
        } else {
            found.back().old_end = next.old_end;
            found.back().new_end = next.new_end;
        }
    }
    return found;
}

Change change_between(const LineStore& old, const LineStore& fresh) {
    const std::vector<Difference> found = differences(old, fresh);
    if (found.empty()) return {};
    const auto [from, to, begin, end] = found.front();
    return {from, to - from, end - begin};
}

}  // namespace tpu
