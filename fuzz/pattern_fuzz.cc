// Any bytes as a pattern and a text: both matchers and both searches, the searches
// against one attempt after the other.
//
// The input is the pattern as it is written, a zero byte, and the text, in which a
// carriage return stands for a line feed within a line.
#include <algorithm>
#include <cassert>
#include <cstdint>
#include <optional>

#include "buffer/buffer.h"
#include "pattern/pattern.h"
#include "pattern/pattern_text.h"
#include "pattern/search.h"

namespace tpu::fuzz {

namespace {

constexpr std::size_t kLongestInput = 512;

using Match = std::optional<Range>;

bool same(const Match& a, const Match& b) {
    if (!a || !b) return !a && !b;
    return a->start.position() == b->start.position() && a->end.position() == b->end.position();
}

class Case {
  public:
    Case(std::string_view pattern, std::string_view text)
        : pattern_(parse_pattern_expression(pattern)) {
        std::vector<std::string> lines = LineStore::from_text(text).lines();
        // Lines may hold line feeds that end nothing.
        for (std::string& line : lines) std::replace(line.begin(), line.end(), '\r', '\n');
        buffer_.set_text(LineStore(lines));
    }

    void check() {
        for (std::uint64_t row = 0; row < buffer_.text().size(); ++row) check_line(row);
        for (std::uint64_t row = 0; row < buffer_.text().size(); ++row) {
            buffer_.cursor_row = row;
            buffer_.cursor_column = buffer_.text().length(row) / 2;
            const Match forward = search_pattern_forward(buffer_, pattern_, false, true);
            assert(same(forward, plain_forward()));
            const Match backward = search_pattern_backward(buffer_, pattern_, false);
            assert(same(backward, plain_backward()));
        }
    }

  private:
    // What the one finds within a line, the other finds there too.
    void check_line(std::uint64_t row) {
        const std::string line = buffer_.text()[row];
        for (std::size_t start = 0; start <= line.size(); ++start) {
            std::size_t end = 0;
            if (pattern_.match_at(line, start, end)) assert(start <= end && end <= line.size());
            const Match match = match_at({row, start});
            const Position last{buffer_.text().size(), 0};
            if (match) assert(match->end.position() <= last);
        }
    }

    Match match_at(Position place) {
        std::uint64_t row = 0, column = 0;
        if (!pattern_.match_at_buffer(buffer_.text(), place.row, place.column, row, column)) {
            return {};
        }
        return Range({&buffer_, place.row, place.column}, {&buffer_, row, column});
    }

    Match plain_rows(Position from, std::uint64_t end) {
        for (; from.row < end; from = {from.row + 1, 0}) {
            const std::uint64_t length = buffer_.text().length(from.row);
            for (; from.column <= length; ++from.column) {
                if (Match match = match_at(from)) return match;
                if (pattern_.anchored) break;
            }
        }
        return {};
    }

    Match plain_forward() {
        Match match =
            plain_rows({buffer_.cursor_row, buffer_.cursor_column}, buffer_.text().size());
        return match ? match : plain_rows({0, 0}, buffer_.cursor_row);
    }

    Match plain_backward() {
        for (std::uint64_t row = buffer_.cursor_row + 1; row-- > 0;) {
            const std::string line = buffer_.text()[row];
            std::uint64_t before = row == buffer_.cursor_row ? buffer_.cursor_column : line.size();
            while (before-- > 0) {
                std::size_t end = 0;
                if (!pattern_.match_at(line, before, end)) continue;
                return Range({&buffer_, row, before}, {&buffer_, row, end});
            }
        }
        return {};
    }

    TPUPattern pattern_;
    Buffer buffer_{"MAIN", ""};
};

}  // namespace

}  // namespace tpu::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > tpu::fuzz::kLongestInput) return -1;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(input.find('\0'), input.size());
    const std::string_view text = input.substr(std::min(split + 1, input.size()));
    tpu::fuzz::Case(input.substr(0, split), text).check();
    return 0;
}
