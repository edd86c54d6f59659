#include "editor/copied_text.h"

#include <algorithm>
#include <string_view>

#include "lang/stmt_text.h"

namespace tpu {

namespace {

std::vector<std::uint64_t> feeds_in(const LineStore& text) {
    std::vector<std::uint64_t> feeds;
    if (!text.may_hold_feeds()) return feeds;
    for (std::uint64_t at = 0; at < text.bytes();) {
        const LineStore::Chunk chunk = text.chunk_at(at);
        for (std::size_t i = 0; chunk.raw && i < chunk.text.size(); ++i) {
            if (chunk.text[i] == '\n') feeds.push_back(chunk.begin + i);
        }
        at = chunk.end();
    }
    return feeds;
}

// Bytes that are not in a text, as many as are wanted. A text that is short enough has
// them.
std::string absent_bytes(std::string_view text, std::size_t wanted) {
    std::string absent;
    for (char c = 1; c < '\x7f' && absent.size() < wanted; ++c) {
        bool usable = c != '\n' && c != '\r' && c != '\t' && c != '"';
        if (usable && text.find(c) == std::string_view::npos) absent += c;
    }
    return absent;
}

}  // namespace

std::string CopiedText::statement() const {
    std::string copy = "COPY_TEXT(" + expression_for(text) + ")";
    if (meant.empty()) return copy;
    return "TRANSLATE(" + copy + ", \"" + stand_ins + "\", " + expression_for(meant) + ")";
}

CopiedPieces::CopiedPieces(const LineStore& text) : text_(text.text()), feeds_(feeds_in(text)) {}

bool CopiedPieces::next(CopiedText& piece) {
    if (at_ == text_.size()) return false;
    std::size_t size = size_of_next(kLongest);
    for (std::size_t most = kLongest; !mark(size, piece);) size = size_of_next(most /= 2);
    at_ += size;
    return true;
}

std::size_t CopiedPieces::size_of_next(std::size_t most) const {
    const std::string_view text = std::string_view(text_).substr(at_);
    if (text.size() <= most) return text.size();
    std::size_t feed = text.rfind('\n', most - 1);
    if (feed != std::string_view::npos) return feed + 1;
    std::size_t size = most;
    while (size > 1 && (text[size] & 0xc0) == 0x80) --size;
    return size;
}

// False when there are no bytes left to stand for others.
bool CopiedPieces::mark(std::size_t size, CopiedText& piece) const {
    piece.text = text_.substr(at_, size);
    auto first = std::lower_bound(feeds_.begin(), feeds_.end(), at_);
    auto last = std::lower_bound(first, feeds_.end(), at_ + size);
    piece.meant.clear();
    if (piece.text.find('\t') != std::string::npos) piece.meant += '\t';
    if (first != last) piece.meant += '\n';
    piece.stand_ins = absent_bytes(piece.text, piece.meant.size());
    if (piece.stand_ins.size() < piece.meant.size()) return false;
    for (; first != last; ++first) piece.text[*first - at_] = piece.stand_ins.back();
    if (piece.meant.starts_with('\t')) {
        std::replace(piece.text.begin(), piece.text.end(), '\t', piece.stand_ins.front());
    }
    return true;
}

}  // namespace tpu
