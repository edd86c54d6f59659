// The matcher for a whole text, where every line end counts as one line feed.
//
// It works on offsets: byte b of the text has offset b, a line break among them
// one offset of its own, and the last line ends with a line end too, at offset
// bytes(). The end of the text comes after that.
#pragma once

#include <algorithm>
#include <cstring>

#include "pattern/runs.h"

namespace tpu {

// Reads a text around a place that mostly moves on by a byte.
class TextReader {
  public:
    explicit TextReader(const LineStore& lines) : lines_(lines), size_(lines.bytes()) {}

    std::uint64_t end_of_text() const { return size_ + 1; }
    const LineStore& lines() const { return lines_; }
    const LineStore::Chunk& chunk(std::uint64_t offset) {
        if (offset < chunk_.begin || offset >= chunk_.end()) chunk_ = lines_.chunk_at(offset);
        return chunk_;
    }
    // A line feed at a line end; not to be asked past the last one.
    char character(std::uint64_t offset) {
        if (offset >= size_) return '\n';
        const LineStore::Chunk& here = chunk(offset);
        return here.text[offset - here.begin];
    }
    // The bytes from `offset` on that lie together; the last line ends with a line feed.
    std::string_view rest(std::uint64_t offset) {
        if (offset >= size_) return "\n";
        const LineStore::Chunk& here = chunk(offset);
        return here.text.substr(offset - here.begin);
    }
    bool at_line_end(std::uint64_t offset) {
        return offset >= size_ || (character(offset) == '\n' && !chunk_.raw);
    }
    bool at_line_begin(std::uint64_t offset) { return offset == 0 || at_line_end(offset - 1); }
    // The first line end at or after `offset`.
    std::uint64_t line_end(std::uint64_t offset) {
        if (offset >= size_) return size_;
        const LineStore::Chunk& here = chunk(offset);
        std::size_t feed =
            here.raw ? std::string_view::npos : here.text.find('\n', offset - here.begin);
        if (feed != std::string_view::npos) return here.begin + feed;
        std::uint64_t row = lines_.position(offset).row;
        return row + 1 < lines_.size() ? lines_.row_start(row + 1) - 1 : size_;
    }

  private:
    const LineStore& lines_;
    std::uint64_t size_;
    LineStore::Chunk chunk_;
};

// The row and column of an offset that a matcher reports; the end of the text
// is column 0 of the row after the last.
inline Position text_position(const LineStore& lines, std::uint64_t offset) {
    return offset > lines.bytes() ? Position{lines.size(), 0} : lines.position(offset);
}

template <class Runs>
class BufferMatcher {
  public:
    BufferMatcher(const TPUPattern& pattern, const LineStore& lines, Runs runs)
        : pattern_(pattern), reader_(lines), runs_(std::move(runs)) {}

    // Matches at offset `start`; `beyond` is how many columns past the end of its
    // line the start lies. On success true, and `end` is the offset past the match.
    bool match(std::uint64_t start, std::uint64_t& end, std::uint64_t beyond = 0) {
        at_ = start;
        beyond_ = beyond;
        same_until_ = start;
        bool leading = true;
        for (std::size_t i = 0; i < pattern_.tokens.size(); ++i) {
            if (!apply(i)) return false;
            if (!leading || pattern_.tokens[i].kind == Token::kUnanchor) continue;
            leading = false;
            if (is_run(pattern_.tokens[i].kind)) same_until_ = at_;
        }
        end = at_;
        return true;
    }

    // After a failure: no start up to here can match, because the pattern begins with
    // a run, and the run leads from all of them to the same place.
    std::uint64_t same_until() const { return same_until_; }
    // After a match: columns past the end of the line at which it ended.
    std::uint64_t beyond() const { return beyond_; }
    // True once a token has run into the end of the text: then no later start can
    // match, since every token takes later places to places that are no earlier.
    bool is_hopeless() const { return hopeless_; }

  private:
    using Token = TPUPatternToken;

    bool apply(std::size_t token) {
        const Token& t = pattern_.tokens[token];
        const std::uint64_t start = at_;
        switch (t.kind) {
            case Token::kLiteral: return literal(t.text);
            case Token::kAny: return takes([&] { return in_set(token); });
            case Token::kNotAny: return takes([&] { return !in_set(token); });
            case Token::kArb: return arbitrary(t.count);
            case Token::kScan: move(run_end(token, false)); return !hits_end();
            case Token::kScanL: move(run_end(token, false)); return true;
            case Token::kSpan: move(run_end(token, true)); return at_ > start;
            case Token::kSpanL: move(run_end(token, true)); return true;
            case Token::kLineBegin: return beyond_ == 0 && reader_.at_line_begin(at_);
            case Token::kLineEnd: return reader_.at_line_end(at_);
            case Token::kPageBreak: return takes([&] { return reader_.character(at_) == '\f'; });
            case Token::kRemain: remain(token); return true;
            case Token::kUnanchor: return true;
        }
        return false;
    }

    static bool is_run(Token::Kind kind) {
        return (kind >= Token::kScan && kind <= Token::kSpanL) || kind == Token::kRemain;
    }
    bool at_end_of_text() const { return at_ >= reader_.end_of_text(); }
    bool hits_end() { return hopeless_ = hopeless_ || at_end_of_text(); }
    bool in_set(std::size_t token) { return runs_.in_set(pattern_, token, reader_.character(at_)); }

    void move(std::uint64_t offset) {
        if (offset != at_) beyond_ = 0;
        at_ = offset;
    }

    bool literal(std::string_view text) {
        while (!text.empty()) {
            if (at_end_of_text()) return false;
            std::string_view here = reader_.rest(at_).substr(0, text.size());
            if (!text.starts_with(here)) return false;
            move(at_ + here.size());
            text.remove_prefix(here.size());
        }
        return true;
    }

    // One character that is no line end.
    template <class Test>
    bool takes(Test&& test) {
        if (reader_.at_line_end(at_) || !test()) return false;
        move(at_ + 1);
        return true;
    }

    bool arbitrary(std::uint64_t count) {
        if (count > reader_.end_of_text() - at_) {
            hopeless_ = true;
            return false;
        }
        move(at_ + count);
        return true;
    }

    void remain(std::size_t token) {
        if (at_end_of_text()) return;
        at_ = runs_.stop(token, at_,
                         [&](std::uint64_t at, std::uint64_t) { return reader_.line_end(at); });
        beyond_ = 0;
    }

    // SPAN walks over bytes in its set and stops at a line end; SCAN walks over
    // bytes outside its set and over line ends, and stops at the end of the text.
    std::uint64_t run_end(std::size_t token, bool over_set) {
        if (at_end_of_text()) return at_;
        return runs_.stop(token, at_, [&](std::uint64_t at, std::uint64_t known) {
            return walk(token, over_set, at, known);
        });
    }

    std::uint64_t walk(std::size_t token, bool over_set, std::uint64_t at, std::uint64_t known) {
        const std::string& set = pattern_.tokens[token].text;
        bool one = !over_set && set.size() == 1 && set[0] != '\n';
        std::uint64_t limit = std::min(known, reader_.lines().bytes());
        while (at < limit) {
            const LineStore::Chunk& chunk = reader_.chunk(at);
            std::string_view text = chunk.text.substr(at - chunk.begin, limit - at);
            std::size_t size = 0;
            if (one) {
                size = std::min(text.find(set[0]), text.size());
            } else {
                auto goes_on = [&](char c) {
                    if (c == '\n' && !chunk.raw) return !over_set;
                    return runs_.in_set(pattern_, token, c) == over_set;
                };
                while (size < text.size() && goes_on(text[size])) ++size;
            }
            at += size;
            if (size < text.size()) return at;
        }
        if (at >= known) return known;
        return over_set ? at : reader_.end_of_text();  // the last line's end stops a SPAN only
    }

    const TPUPattern& pattern_;
    TextReader reader_;
    Runs runs_;
    std::uint64_t at_ = 0;
    std::uint64_t beyond_ = 0;
    std::uint64_t same_until_ = 0;
    bool hopeless_ = false;
};

}  // namespace tpu
