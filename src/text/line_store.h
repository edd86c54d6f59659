// The lines of a buffer, as a value.
//
// A LineStore is a sequence of at least one line. Copying it copies one pointer,
// so a snapshot costs nothing, and comparing it with an unchanged copy is one
// comparison of pointers; every change is logarithmic in the size of the text.
// Lines hold any bytes, line feeds and zeros included; long lines are no special
// case, since nothing ever needs a line in one piece.
//
// A place is a Position (zero-based row and byte column) or an offset: the number
// of bytes before it when every line but the last is followed by one line break.
// Inside stands a tree of pieces, see text/line_tree.h and docs/line-store.md.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/line_tree.h"
#include "text/position.h"

namespace tpu {

class LineStore {
  public:
    LineStore() = default;                                      // one empty line
    explicit LineStore(const std::vector<std::string>& lines);  // empty: one empty line
    static LineStore from_text(std::string_view text);          // split at line feeds
    static LineStore from_pieces(tree::Pieces pieces);
    // The first `bytes` bytes of the block, split at line feeds. `feeds` may give the
    // numbers of line feeds in the first pieces of tree::kMaxPiece bytes, for who has
    // counted them while filling the block.
    static LineStore from_block(const Ref<TextBlock>& block, std::size_t bytes,
                                const std::vector<std::uint32_t>& feeds = {});

    // Reading. Rows are below size(), columns at most length(row) unless said otherwise.
    std::uint64_t size() const { return tree_.size.breaks + 1; }  // lines
    std::uint64_t bytes() const { return tree_.size.bytes; }      // line breaks included
    std::uint64_t length(std::uint64_t row) const;                // bytes of a line
    std::string operator[](std::uint64_t row) const { return slice({row, 0}, length(row)); }
    // At most `count` bytes from `from` on, never past the end of its line; a column
    // past the end gives nothing.
    std::string slice(Position from, std::uint64_t count) const;
    unsigned char at(Position place) const;                        // column below length(row)
    std::string text(std::uint64_t from, std::uint64_t to) const;  // line feeds at line ends
    std::string text() const { return text(0, bytes()); }
    LineStore part(std::uint64_t from, std::uint64_t to) const;  // shares its memory
    std::vector<std::string> lines() const;                      // all of them, copied

    // Offsets and positions. A row at or past size() is the end of the text.
    std::uint64_t row_start(std::uint64_t row) const;
    std::uint64_t offset(Position place) const { return row_start(place.row) + place.column; }
    Position position(std::uint64_t offset) const;  // offset at most bytes()

    // A run of bytes that lies in one piece of memory, with the offset of its
    // first byte. In a raw chunk line feeds are text, elsewhere they end lines.
    struct Chunk {
        std::string_view text;
        std::uint64_t begin = 0;
        bool raw = false;
        std::uint64_t end() const { return begin + text.size(); }
    };
    // The chunk that holds the byte at `offset`; empty at the end of the text.
    Chunk chunk_at(std::uint64_t offset) const;
    // Calls visit(span) for the runs of memory that make up [from, to), joined where
    // they lie side by side (short spans first, up to some megabytes), until one
    // call returns false.
    void for_each_span(std::uint64_t from, std::uint64_t to,
                       const std::function<bool(std::string_view)>& visit) const;

    // Offset of the first occurrence of `needle` within one line, among the bytes [from, to).
    std::optional<std::uint64_t> find(std::string_view needle, std::uint64_t from,
                                      std::uint64_t to = UINT64_MAX) const;

    // True when some line may hold a line feed as text.
    bool may_hold_feeds() const { return has_raw_; }

    // Changing. Offsets are at most bytes().
    void insert(std::uint64_t offset, std::string_view bytes) { replace(offset, offset, bytes); }
    void insert_break(std::uint64_t offset) { replace_by_break(offset, offset); }
    void insert(std::uint64_t offset, const LineStore& text);
    void erase(std::uint64_t from, std::uint64_t to);
    void replace(std::uint64_t from, std::uint64_t to, const LineStore& text);
    // The same by a part of a line, in which line feeds are text.
    void replace(std::uint64_t from, std::uint64_t to, std::string_view bytes);
    // The same by the end of a line.
    void replace_by_break(std::uint64_t from, std::uint64_t to);

    // Changing whole lines.
    void set(std::uint64_t row, std::string_view line);
    void insert_line(std::uint64_t row, std::string_view line);  // row up to size()
    void erase_line(std::uint64_t row);                          // the only line is emptied

    // Counts the line breaks anew, for text that somebody else has changed in place.
    void recount();

    // Same lines. Immediate when both are copies of one text, and when sizes differ.
    friend bool operator==(const LineStore& a, const LineStore& b) {
        return tree::equal(a.tree_, b.tree_);
    }
    // True when nothing was changed since one was copied from the other. False says nothing.
    bool is_same_version(const LineStore& other) const { return tree_.node == other.tree_.node; }

    // Bytes at the begin, or at the end, that are known to be the same without reading them.
    std::uint64_t shared_head(const LineStore& other) const {
        return tree::shared_head(tree_, other.tree_);
    }
    std::uint64_t shared_tail(const LineStore& other) const {
        return tree::shared_tail(tree_, other.tree_);
    }

    // Asserts the invariants of the structure, in builds with assertions.
    void check_invariants() const { tree::check(tree_); }

  private:
    // The same with line feeds in the needle meeting line breaks too.
    std::optional<std::uint64_t> find_in_bytes(std::string_view needle, std::uint64_t from,
                                               std::uint64_t to) const;

    // Where a line is that was looked for, since what follows mostly concerns it again.
    struct KnownRow {
        std::uint64_t row = UINT64_MAX;  // this: none
        std::uint64_t start = 0;
        std::uint64_t end = 0;  // of its bytes

        KnownRow() = default;
        KnownRow(const KnownRow&) = default;
        KnownRow& operator=(const KnownRow&) = default;
        // What was moved from has another text.
        KnownRow(KnownRow&& other) noexcept : KnownRow(other) { other.row = UINT64_MAX; }
        KnownRow& operator=(KnownRow&& other) noexcept {
            *this = static_cast<const KnownRow&>(other);
            other.row = UINT64_MAX;
            return *this;
        }
    };
    const KnownRow& know(std::uint64_t row) const;
    void forget_row() { known_.row = UINT64_MAX; }

    tree::Tree tree_;
    Ref<TextBlock> tail_;   // block that takes inserted text
    bool has_raw_ = false;  // some line may hold a line feed as text
    mutable KnownRow known_;
};

// Puts a text together from front to back; faster than inserting at the end.
class TextBuilder {
  public:
    void append(std::string_view bytes);  // line feeds are text
    void append_break();
    LineStore take();  // the text; the builder is empty again

  private:
    void add(std::string_view bytes, bool raw);

    tree::Pieces pieces_;
    Ref<TextBlock> block_;
};

}  // namespace tpu
