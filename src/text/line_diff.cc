#include "text/line_diff.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace tpu {

namespace {

constexpr std::uint64_t kWorthKeeping = 4 << 10;  // bytes between two differences

// Bytes in the same memory.
struct Shared {
    std::uint64_t in_old = 0, in_new = 0;
    std::uint64_t size = 0;
};

const char* end_of(const LineStore::Chunk& chunk) {
    return chunk.text.data() + chunk.text.size();
}

// Of the bytes [from, to).
std::vector<LineStore::Chunk> chunks_of(const LineStore& text, std::uint64_t from,
                                        std::uint64_t to) {
    std::vector<LineStore::Chunk> chunks;
    for (std::uint64_t at = from; at < to; at = chunks.back().end()) {
        LineStore::Chunk chunk = text.chunk_at(at);
        chunk.text.remove_prefix(at - chunk.begin);
        chunk.begin = at;
        chunk.text = chunk.text.substr(0, to - at);
        chunks.push_back(chunk);
    }
    return chunks;
}

// In order of their memory, in which none overlaps another.
std::vector<LineStore::Chunk> by_memory(std::vector<LineStore::Chunk> chunks) {
    const std::less<const char*> before;
    std::sort(chunks.begin(), chunks.end(), [&](const auto& a, const auto& b) {
        if (a.text.data() != b.text.data()) return before(a.text.data(), b.text.data());
        return a.text.size() > b.text.size();
    });
    std::vector<LineStore::Chunk> kept;
    for (const LineStore::Chunk& chunk : chunks) {
        if (kept.empty() || !before(chunk.text.data(), end_of(kept.back()))) kept.push_back(chunk);
    }
    return kept;
}

// What a chunk of the new text shares with those of the old one.
void find_shared(const LineStore::Chunk& chunk, const std::vector<LineStore::Chunk>& old,
                 std::vector<Shared>& found) {
    const std::less<const char*> before;
    const char *begin = chunk.text.data(), *end = end_of(chunk);
    auto known = std::partition_point(old.begin(), old.end(), [&](const auto& candidate) {
        return !before(begin, end_of(candidate));
    });
    for (; known != old.end() && before(known->text.data(), end); ++known) {
        const char* from = std::max(begin, known->text.data(), before);
        const char* to = std::min(end, end_of(*known), before);
        if (known->raw != chunk.raw) continue;
        found.push_back({known->begin + static_cast<std::uint64_t>(from - known->text.data()),
                         chunk.begin + static_cast<std::uint64_t>(from - begin),
                         static_cast<std::uint64_t>(to - from)});
    }
}

// Chains of runs that stand in the same order in both texts.
class Chains {
  public:
    explicit Chains(const std::vector<Shared>& runs) : runs_(runs), previous_(runs.size(), kNone) {
        for (const Shared& run : runs) ends_.push_back(run.in_old + run.size);
        std::sort(ends_.begin(), ends_.end());
        ends_.erase(std::unique(ends_.begin(), ends_.end()), ends_.end());
        best_.resize(ends_.size() + 1);
    }

    // The one with the most bytes. So a line that was copied from far away does not count
    // for all that lies in between.
    std::vector<Shared> longest() {
        Best all;
        for (std::size_t n = 0; n < runs_.size(); ++n) {
            const Best before = best_up_to(runs_[n].in_old);
            previous_[n] = before.last;
            const Best here{before.bytes + runs_[n].size, n};
            note(runs_[n].in_old + runs_[n].size, here);
            if (here.bytes > all.bytes) all = here;
        }
        std::vector<Shared> chain;
        for (std::size_t n = all.last; n != kNone; n = previous_[n]) chain.push_back(runs_[n]);
        std::reverse(chain.begin(), chain.end());
        return chain;
    }

  private:
    static constexpr std::size_t kNone = SIZE_MAX;
    struct Best {
        std::uint64_t bytes = 0;
        std::size_t last = kNone;
    };

    // Of the chains that end at an offset of the old text or before it.
    Best best_up_to(std::uint64_t offset) const {
        auto end = std::upper_bound(ends_.begin(), ends_.end(), offset);
        Best found;
        for (auto i = static_cast<std::size_t>(end - ends_.begin()); i > 0; i &= i - 1) {
            if (best_[i].bytes > found.bytes) found = best_[i];
        }
        return found;
    }
    void note(std::uint64_t offset, const Best& chain) {
        auto end = std::lower_bound(ends_.begin(), ends_.end(), offset);
        auto i = static_cast<std::size_t>(end - ends_.begin()) + 1;
        for (; i < best_.size(); i += i & (~i + 1)) {
            if (chain.bytes > best_[i].bytes) best_[i] = chain;
        }
    }

    const std::vector<Shared>& runs_;  // in the order of the new text
    std::vector<std::size_t> previous_;
    std::vector<std::uint64_t> ends_;
    std::vector<Best> best_;  // a Fenwick tree over the ends
};

}  // namespace

std::vector<Difference> differences(const LineStore& old, const LineStore& fresh) {
    if (old.is_same_version(fresh)) return {};
    // Mostly the two differ at one place, and what lies around it need not be looked at.
    const std::uint64_t shorter = std::min(old.bytes(), fresh.bytes());
    const std::uint64_t head = old.shared_head(fresh);
    const std::uint64_t tail = std::min(old.shared_tail(fresh), shorter - head);
    const std::uint64_t old_stop = old.bytes() - tail, new_stop = fresh.bytes() - tail;
    const std::vector<LineStore::Chunk> known = by_memory(chunks_of(old, head, old_stop));
    std::vector<Shared> shared;
    for (const LineStore::Chunk& chunk : chunks_of(fresh, head, new_stop)) {
        find_shared(chunk, known, shared);
    }
    shared = Chains(shared).longest();
    shared.push_back({old_stop, new_stop, kWorthKeeping});

    std::vector<Difference> found;
    // The end of what the texts have in common so far, and how much that was in one piece.
    std::uint64_t old_end = head, new_end = head, run = kWorthKeeping;
    for (const Shared& next : shared) {
        if (next.in_old == old_end && next.in_new == new_end) {
            run += next.size;
        } else {
            if (found.empty() || run >= kWorthKeeping) {
                found.push_back({old_end, next.in_old, new_end, next.in_new});
            } else {
                found.back().old_end = next.in_old;
                found.back().new_end = next.in_new;
            }
            run = next.size;
        }
        old_end = next.in_old + next.size;
        new_end = next.in_new + next.size;
    }
    return found;
}

}  // namespace tpu
