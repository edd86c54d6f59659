// Sets and runs of bytes: the part of matching that looks at many bytes.
//
// SPAN, SCAN and REMAIN walk from a place to the first byte that stops them. A
// search that tries start after start would walk the same bytes again and again;
// RememberedRuns keeps the last walk of each token, which makes a search linear
// in its text: the places that one token sees never turn back while a search
// goes one way.
#pragma once

#include <bitset>
#include <cstdint>
#include <vector>

#include "pattern/pattern.h"

namespace tpu {

inline constexpr std::uint64_t kNowhere = UINT64_MAX;

// For a single attempt: nothing is prepared, nothing remembered.
struct DirectRuns {
    bool in_set(const TPUPattern& pattern, std::size_t token, char c) const {
        return TPUPattern::contains_char(pattern.tokens[token].text, c);
    }
    template <class Walk>
    std::uint64_t stop(std::size_t, std::uint64_t place, Walk&& walk) {
        return walk(place, kNowhere);
    }
};

// For many attempts with one pattern on one text, in one direction.
class RememberedRuns {
  public:
    explicit RememberedRuns(const TPUPattern& pattern)
        : sets_(pattern.tokens.size()), runs_(pattern.tokens.size()) {
        for (std::size_t i = 0; i < sets_.size(); ++i) {
            for (char c : pattern.tokens[i].text) sets_[i].set(static_cast<unsigned char>(c));
        }
    }

    bool in_set(const TPUPattern&, std::size_t token, char c) const {
        return sets_[token][static_cast<unsigned char>(c)];
    }

    // Where the walk of a token from `place` stops. `walk(place, known)` walks to
    // the first byte that stops it, but no further than `known`.
    template <class Walk>
    std::uint64_t stop(std::size_t token, std::uint64_t place, Walk&& walk) {
        Run& run = runs_[token];
        if (place >= run.from && place <= run.stop) return run.stop;
        bool before = run.from <= run.stop && place < run.from;
        std::uint64_t stop = walk(place, before ? run.from : kNowhere);
        if (before && stop == run.from) stop = run.stop;
        run = {place, stop};
        return stop;
    }

  private:
    // A walk from any place in [from, stop] ends at stop.
    struct Run {
        std::uint64_t from = 1;
        std::uint64_t stop = 0;  // below from: nothing known yet
    };

    std::vector<std::bitset<256>> sets_;
    std::vector<Run> runs_;
};

}  // namespace tpu
