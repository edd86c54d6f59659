#include "store/text_changes.h"

#include <algorithm>

#include "lang/stmt_text.h"
#include "text/line_diff.h"

namespace tpu {

namespace {

std::string replace(std::uint64_t offset, std::uint64_t count, std::string_view text) {
    return "REPLACE_TEXT(" + std::to_string(offset) + ", " + std::to_string(count) + ", " +
           expression_for(text) + ")";
}

}  // namespace

std::vector<std::string> text_changes(const LineStore& from, const LineStore& to) {
    constexpr std::uint64_t kLongest = std::uint64_t{1} << 20;  // bytes in a statement
    std::vector<std::string> statements;
    for (const Difference& change : differences(from, to)) {
        std::uint64_t at = change.new_begin, erased = change.old_end - change.old_begin;
        do {
            const std::uint64_t end = std::min(change.new_end, at + kLongest);
            statements.push_back(replace(at, erased, to.text(at, end)));
            at = end;
            erased = 0;
        } while (at < change.new_end);
    }
    return statements;
}

std::string text_place(std::uint64_t offset) {
    return replace(offset, 0, {});
}

}  // namespace tpu
