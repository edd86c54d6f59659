#include "store/text_changes.h"

#include <algorithm>

#include "lang/stmt_text.h"

namespace tpu {

namespace {

std::string replace(std::uint64_t offset, std::uint64_t count, std::string_view text,
                    bool feeds_are_text = false) {
    return "REPLACE_TEXT(" + std::to_string(offset) + ", " + std::to_string(count) + ", " +
           expression_for(text) + (feeds_are_text ? ", ON)" : ")");
}

// Where the bytes that begin at `from` and are alike in what line feeds among them mean end.
std::uint64_t end_of_kind(const LineStore& text, std::uint64_t from, std::uint64_t to) {
    if (!text.may_hold_feeds()) return to;
    const bool raw = text.chunk_at(from).raw;
    std::uint64_t end = from;
    while (end < to && text.chunk_at(end).raw == raw) end = text.chunk_at(end).end();
    return std::min(end, to);
}

}  // namespace

std::vector<std::string> text_changes(const std::vector<Difference>& found, const LineStore& to) {
    constexpr std::uint64_t kLongest = std::uint64_t{1} << 20;  // bytes in a statement
    std::vector<std::string> statements;
    for (const Difference& change : found) {
        std::uint64_t at = change.new_begin, erased = change.old_end - change.old_begin;
        do {
            const std::uint64_t end = end_of_kind(to, at, std::min(change.new_end, at + kLongest));
            const bool raw = end > at && to.chunk_at(at).raw;
            statements.push_back(replace(at, erased, to.text(at, end), raw));
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
