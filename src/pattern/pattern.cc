#include "pattern/pattern.h"

#include "pattern/match_buffer.h"
#include "pattern/match_line.h"

namespace tpu {

bool TPUPattern::match_at(std::string_view line, std::size_t start, std::size_t& end) const {
    return LineMatcher<DirectRuns>(*this, line, {}).match(start, end);
}

bool TPUPattern::match_at_buffer(const LineStore& lines, std::uint64_t row, std::uint64_t column,
                                 std::uint64_t& end_row, std::uint64_t& end_column) const {
    std::uint64_t start = lines.bytes() + 1, beyond = row >= lines.size() ? column : 0;
    if (row < lines.size()) {
        std::uint64_t length = lines.length(row);
        start = lines.offset({row, std::min(column, length)});
        beyond = column - std::min(column, length);
    }
    BufferMatcher<DirectRuns> matcher(*this, lines, {});
    std::uint64_t end = 0;
    if (!matcher.match(start, end, beyond)) return false;
    Position place = text_position(lines, end);
    end_row = end == start ? row : place.row;
    end_column = place.column + matcher.beyond();
    return true;
}

}  // namespace tpu
