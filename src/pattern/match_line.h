// The matcher for a single line.
#pragma once

#include <algorithm>

#include "pattern/runs.h"

namespace tpu {

template <class Runs>
class LineMatcher {
  public:
    LineMatcher(const TPUPattern& pattern, std::string_view line, Runs runs)
        : pattern_(pattern), line_(line), runs_(std::move(runs)) {}

    // Matches at byte `start`. On success true, and `end` is the byte past the match.
    bool match(std::size_t start, std::size_t& end) {
        if (start > line_.size()) return false;
        std::size_t p = start;
        for (std::size_t i = 0; i < pattern_.tokens.size(); ++i) {
            if (!apply(i, p)) return false;
        }
        end = p;
        return true;
    }

  private:
    // One token at byte p: true with p moved, or false.
    bool apply(std::size_t token, std::size_t& p) {
        const TPUPatternToken& t = pattern_.tokens[token];
        const std::size_t start = p, left = line_.size() - p;
        switch (t.kind) {
            case TPUPatternToken::kLiteral:
                p += t.text.size();
                return line_.substr(start, t.text.size()) == t.text;
            case TPUPatternToken::kAny: return left > 0 && in_set(token, p++);
            case TPUPatternToken::kNotAny: return left > 0 && !in_set(token, p++);
            case TPUPatternToken::kArb: p += t.count; return t.count <= left;
            case TPUPatternToken::kScan: p = run_end(token, p, false); return p < line_.size();
            case TPUPatternToken::kScanL: p = run_end(token, p, false); return true;
            case TPUPatternToken::kSpan: p = run_end(token, p, true); return p > start;
            case TPUPatternToken::kSpanL: p = run_end(token, p, true); return true;
            case TPUPatternToken::kLineBegin: return p == 0;
            case TPUPatternToken::kLineEnd: return left == 0;
            case TPUPatternToken::kPageBreak: return left > 0 && line_[p++] == '\f';
            case TPUPatternToken::kRemain: p = line_.size(); return true;
            case TPUPatternToken::kUnanchor: return true;
        }
        return false;
    }

    bool in_set(std::size_t token, std::size_t p) const {
        return runs_.in_set(pattern_, token, line_[p]);
    }

    // From p over the bytes that are (or are not) in the token's set.
    std::size_t run_end(std::size_t token, std::size_t p, bool over_set) {
        return runs_.stop(token, p, [&](std::uint64_t at, std::uint64_t known) {
            std::uint64_t limit = std::min<std::uint64_t>(known, line_.size());
            while (at < limit && in_set(token, at) == over_set) ++at;
            return at;
        });
    }

    const TPUPattern& pattern_;
    std::string_view line_;
    Runs runs_;
};

}  // namespace tpu
