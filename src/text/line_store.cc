#include "text/line_store.h"

#include <algorithm>
#include <cassert>

#include "text/find_bytes.h"

namespace tpu {

using tree::Piece;
using tree::Pieces;

LineStore::LineStore(const std::vector<std::string>& lines) {
    TextBuilder builder;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) builder.append_break();
        builder.append(lines[i]);
    }
    *this = builder.take();
}

LineStore LineStore::from_text(std::string_view text) {
    Ref<TextBlock> block = TextBlock::require(text.size());
    block->append(text);
    return from_block(block, text.size());
}

LineStore LineStore::from_pieces(Pieces pieces) {
    LineStore store;
    for (const Piece& piece : pieces) store.has_raw_ |= piece.raw;
    store.tree_ = tree::build(std::move(pieces));
    return store;
}

LineStore LineStore::from_block(const Ref<TextBlock>& block, std::size_t bytes,
                                const std::vector<std::uint32_t>& feeds) {
    Pieces pieces;
    pieces.reserve(bytes / tree::kMaxPiece + 1);
    for (std::size_t at = 0; at < bytes; at += tree::kMaxPiece) {
        std::string_view text(block->data() + at, std::min(tree::kMaxPiece, bytes - at));
        Piece& piece = pieces.emplace_back();
        piece.block = block;
        piece.data = text.data();
        piece.size = static_cast<std::uint32_t>(text.size());
        bool counted = pieces.size() <= feeds.size() && text.size() == tree::kMaxPiece;
        std::uint64_t breaks = counted ? feeds[pieces.size() - 1] : tree::count_line_feeds(text);
        piece.breaks = static_cast<std::uint32_t>(breaks) & 0x7fffffffu;
    }
    return from_pieces(std::move(pieces));
}

std::uint64_t LineStore::row_start(std::uint64_t row) const {
    if (row == 0) return 0;
    if (row >= size()) return bytes();
    return know(row).start;
}

const LineStore::KnownRow& LineStore::know(std::uint64_t row) const {
    if (known_.row == row) return known_;
    std::uint64_t start = row == 0                ? 0
                          : known_.row + 1 == row ? known_.end + 1
                                                  : tree::after_break(tree_, row);
    std::uint64_t end = row + 1 < size() ? tree::after_break(tree_, row + 1) - 1 : bytes();
    known_.row = row;
    known_.start = start;
    known_.end = end;
    return known_;
}

std::uint64_t LineStore::length(std::uint64_t row) const {
    assert(row < size());
    const KnownRow& known = know(row);
    return known.end - known.start;
}

std::string LineStore::slice(Position from, std::uint64_t count) const {
    auto [row, start, end] = know(from.row);
    if (from.column >= end - start) return {};
    start += from.column;
    return text(start, start + std::min(count, end - start));
}

unsigned char LineStore::at(Position place) const {
    Chunk chunk = chunk_at(offset(place));
    return static_cast<unsigned char>(chunk.text[offset(place) - chunk.begin]);
}

std::string LineStore::text(std::uint64_t from, std::uint64_t to) const {
    std::string result;
    if (from >= to) return result;
    result.reserve(to - from);
    for_each_span(from, to, [&](std::string_view span) {
        result += span;
        return true;
    });
    return result;
}

LineStore LineStore::part(std::uint64_t from, std::uint64_t to) const {
    Pieces pieces;
    tree::collect(tree_, from, to, pieces);
    return from_pieces(std::move(pieces));
}

std::vector<std::string> LineStore::lines() const {
    std::vector<std::string> result;
    result.reserve(size());
    for (std::uint64_t row = 0; row < size(); ++row) result.push_back((*this)[row]);
    return result;
}

Position LineStore::position(std::uint64_t offset) const {
    assert(offset <= bytes());
    tree::Found found = tree::find_offset(tree_, offset);
    std::uint64_t row = found.breaks;
    if (found.piece && !found.piece->raw) {
        row += tree::count_line_feeds(found.piece->text().substr(0, offset - found.begin));
    }
    return {row, offset - row_start(row)};
}

LineStore::Chunk LineStore::chunk_at(std::uint64_t offset) const {
    tree::Found found = tree::find_offset(tree_, offset);
    if (!found.piece) return {{}, found.begin, false};
    return {found.piece->text(), found.begin, found.piece->raw != 0};
}

void LineStore::for_each_span(std::uint64_t from, std::uint64_t to,
                              const std::function<bool(std::string_view)>& visit) const {
    // Spans grow as the walk goes on, so that who stops early has not joined much in vain.
    constexpr std::size_t kLongest = std::size_t{4} << 20;
    std::size_t longest = tree::kMaxPiece;
    std::string_view span;
    while (from < to) {
        Chunk chunk = chunk_at(from);
        std::string_view part = chunk.text.substr(from - chunk.begin, to - from);
        from += part.size();
        if (span.size() < longest && span.data() + span.size() == part.data()) {
            span = {span.data(), span.size() + part.size()};
            continue;
        }
        if (!span.empty() && !visit(span)) return;
        span = part;
        longest = std::min(longest * 2, kLongest);
    }
    if (!span.empty()) visit(span);
}

std::optional<std::uint64_t> LineStore::find(std::string_view needle, std::uint64_t from,
                                             std::uint64_t to) const {
    if (needle.empty()) return std::nullopt;
    to = std::min(to, bytes());
    if (needle.find('\n') == std::string_view::npos) return find_in_bytes(needle, from, to);
    if (!has_raw_) return std::nullopt;
    // Line feeds in the needle may meet line breaks: then look further on.
    auto found = find_in_bytes(needle, from, to);
    while (found && position(*found).row != position(*found + needle.size()).row) {
        found = find_in_bytes(needle, *found + 1, to);
    }
    return found;
}

std::optional<std::uint64_t> LineStore::find_in_bytes(std::string_view needle, std::uint64_t from,
                                                      std::uint64_t to) const {
    std::optional<std::uint64_t> result;
    std::string before;  // the last bytes before the span, where a match may begin
    std::uint64_t at = from;
    for_each_span(from, to, [&](std::string_view span) {
        std::size_t overlap = needle.size() - 1;
        if (!before.empty()) {
            std::string seam = before + std::string(span.substr(0, overlap));
            std::size_t hit = seam.find(needle);
            if (hit != std::string::npos) result = at - before.size() + hit;
        }
        if (!result) {
            std::size_t hit = find_bytes(span, needle);
            if (hit != std::string_view::npos) result = at + hit;
        }
        before += span.substr(span.size() - std::min(span.size(), overlap));
        if (before.size() > overlap) before.erase(0, before.size() - overlap);
        at += span.size();
        return !result;
    });
    return result;
}

void LineStore::replace(std::uint64_t from, std::uint64_t to, std::string_view bytes) {
    if (bytes.size() > tree::kMaxPiece) {
        TextBuilder builder;
        builder.append(bytes);
        replace(from, to, builder.take());
        return;
    }
    if (bytes.empty()) {
        if (from < to) erase(from, to);
        return;
    }
    bool raw = bytes.find('\n') != std::string_view::npos;
    has_raw_ |= raw;
    Pieces pieces{tree::store_text(bytes, raw, tail_)};
    tree::replace(tree_, from, to, std::move(pieces), tail_);
    bool inside = known_.start <= from && to <= known_.end;
    if (inside) {
        known_.end += bytes.size() - (to - from);
    } else if (from <= known_.end) {
        forget_row();
    }
}

void LineStore::replace_by_break(std::uint64_t from, std::uint64_t to) {
    forget_row();
    Pieces pieces{tree::store_text("\n", false, tail_)};
    tree::replace(tree_, from, to, std::move(pieces), tail_);
}

void LineStore::insert(std::uint64_t offset, const LineStore& text) {
    replace(offset, offset, text);
}

void LineStore::erase(std::uint64_t from, std::uint64_t to) {
    forget_row();
    tree::replace(tree_, from, to, {}, tail_);
}

void LineStore::replace(std::uint64_t from, std::uint64_t to, const LineStore& text) {
    forget_row();
    Pieces pieces;
    tree::collect(text.tree_, 0, text.bytes(), pieces);
    has_raw_ |= text.has_raw_;
    tree::replace(tree_, from, to, std::move(pieces), tail_);
}

void LineStore::recount() {
    forget_row();
    Pieces pieces;
    tree::collect(tree_, 0, bytes(), pieces);
    for (Piece& piece : pieces) {
        if (piece.raw) continue;
        piece.breaks =
            static_cast<std::uint32_t>(tree::count_line_feeds(piece.text())) & 0x7fffffffu;
    }
    *this = from_pieces(std::move(pieces));
}

void LineStore::set(std::uint64_t row, std::string_view line) {
    std::uint64_t start = row_start(row);
    erase(start, start + length(row));
    insert(start, line);
}

void LineStore::insert_line(std::uint64_t row, std::string_view line) {
    if (row >= size()) {
        insert_break(bytes());
        insert(bytes(), line);
        return;
    }
    std::uint64_t start = row_start(row);
    insert_break(start);
    insert(start, line);
}

void LineStore::erase_line(std::uint64_t row) {
    std::uint64_t start = row_start(row), end = start + length(row);
    if (end < bytes()) {
        ++end;  // the break after the line
    } else if (start > 0) {
        --start;  // the last line: the break before it
    }
    erase(start, end);
}

void TextBuilder::append(std::string_view bytes) {
    add(bytes, bytes.find('\n') != std::string_view::npos);
}

void TextBuilder::append_break() {
    add("\n", false);
}

void TextBuilder::add(std::string_view bytes, bool raw) {
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    while (!bytes.empty()) {
        std::string_view part = bytes.substr(0, tree::kMaxPiece);
        if (!block_ || block_->room() < part.size()) block_ = TextBlock::require(kBlock);
        Piece piece;
        piece.block = block_;
        piece.data = block_->append(part);
        piece.size = static_cast<std::uint32_t>(part.size());
        piece.raw = raw;
        if (!raw)
            piece.breaks = static_cast<std::uint32_t>(tree::count_line_feeds(part)) & 0x7fffffffu;
        tree::append(pieces_, std::move(piece));
        bytes.remove_prefix(part.size());
    }
}

LineStore TextBuilder::take() {
    block_ = {};
    return LineStore::from_pieces(std::move(pieces_));
}

}  // namespace tpu
