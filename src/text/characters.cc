#include "text/characters.h"

#include <algorithm>

namespace tpu {

std::uint64_t character_start(const LineStore& lines, Position place) {
    std::uint64_t back = std::min<std::uint64_t>(place.column, kLongestCharacter - 1);
    std::uint64_t from = place.column - back;
    std::string around = lines.slice({place.row, from}, back + kLongestCharacter - 1);
    for (; from < place.column; ++from, around.erase(0, 1)) {
        if (from + decode_utf8(around).size > place.column) return from;
    }
    return place.column;
}

std::uint64_t character_size(const LineStore& lines, Position place, Charset charset) {
    std::string ahead = lines.slice(place, kLongestCharacter);
    if (ahead.empty()) return 0;
    if (charset == Charset::bytes) return 1;
    return std::max<std::uint64_t>(1, decode_utf8(ahead).size);
}

std::uint64_t character_size_before(const LineStore& lines, Position place, Charset charset) {
    std::uint64_t most = std::min<std::uint64_t>(place.column, kLongestCharacter);
    if (most == 0 || charset == Charset::bytes) return most > 0;
    std::string behind = lines.slice({place.row, place.column - most}, most);
    for (std::size_t size = most; size > 1; --size) {
        if (decode_utf8(std::string_view(behind).substr(most - size)).size == size) return size;
    }
    return 1;
}

}  // namespace tpu
