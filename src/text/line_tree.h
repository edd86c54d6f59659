// The tree inside LineStore: pieces of text in a B+ tree of shared nodes.
//
// A text is a sequence of bytes in which some line feeds are line breaks. A
// piece is a run of those bytes that lies in one block; the leaves hold pieces,
// the inner nodes hold children with their totals beside them, so that finding
// a byte or a row is one descent. Nodes are counted: a text that is copied
// shares its root, and a change clones only the shared nodes on its way down.
//
// docs/line-store.md explains structure, invariants and costs.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "text/text_block.h"

namespace tpu::tree {

#ifdef TPU_SMALL_TREES
// Little nodes and pieces let small inputs reach deep trees.
inline constexpr std::size_t kMaxEntries = 4;
inline constexpr std::size_t kMinEntries = 2;
inline constexpr std::size_t kMaxPiece = 32;
inline constexpr std::size_t kSmallPiece = 4;
inline constexpr std::size_t kCompacted = 16;
inline constexpr std::size_t kTailBlock = 256;
#else
inline constexpr std::size_t kMaxEntries = 32;       // pieces or children of a node
inline constexpr std::size_t kMinEntries = 12;       // the root may have fewer
inline constexpr std::size_t kMaxPiece = 16 << 10;   // bytes; rows are found by scanning one piece
inline constexpr std::size_t kSmallPiece = 512;      // smaller neighbours are worth joining ...
inline constexpr std::size_t kCompacted = 4 << 10;   // ... into pieces of about this size
inline constexpr std::size_t kTailBlock = 64 << 10;  // block that takes typed text
#endif

struct Totals {
    std::uint64_t bytes = 0;
    std::uint64_t breaks = 0;
};

struct Piece {
    Ref<TextBlock> block;
    const char* data = nullptr;
    std::uint32_t size = 0;
    std::uint32_t breaks : 31 = 0;  // line feeds that end lines
    std::uint32_t raw : 1 = 0;      // line feeds in here are text like any other byte

    std::string_view text() const { return {data, size}; }
    Totals totals() const { return {size, breaks}; }
};
using Pieces = std::vector<Piece>;

// The bytes [from, to) of a piece.
Piece cut(const Piece& piece, std::uint32_t from, std::uint32_t to);

// Adds a piece, joining it to the last one where both lie side by side in a block.
void append(Pieces& pieces, Piece piece);

// The number of line feeds in `text`.
std::uint64_t count_line_feeds(std::string_view text);

// Byte index just past the nth line feed of `text`, n counting from 1; there are at least n.
std::size_t after_line_feed(std::string_view text, std::uint64_t n);

struct Node;

// A node with its totals, as its parent or the store holds it. Default: no text.
struct Tree {
    Ref<Node> node;
    Totals size;

    Totals totals() const { return size; }
};

struct Node {
    std::uint32_t level = 0;  // 0: pieces are used; above: children are
    std::uint32_t count = 0;  // references
    Pieces pieces;
    std::vector<Tree> children;

    std::size_t entries() const { return level == 0 ? pieces.size() : children.size(); }
    void retain() { ++count; }
    void release() {
        if (--count == 0) delete this;
    }
};

// A tree of these pieces.
Tree build(Pieces pieces);

// Replaces the bytes [from, to) by `pieces`. `tail` is the block that small pieces are
// joined in; it is replaced when full. When memory is short the tree stays as it was.
void replace(Tree& tree, std::uint64_t from, std::uint64_t to, Pieces pieces, Ref<TextBlock>& tail);

// Puts `text` into `tail`, or into a new tail when there is no room.
Piece store_text(std::string_view text, bool raw, Ref<TextBlock>& tail);

// All pieces that hold bytes of [from, to), the outer ones cut.
void collect(const Tree& tree, std::uint64_t from, std::uint64_t to, Pieces& pieces);

// A piece and where it stands.
struct Found {
    const Piece* piece = nullptr;  // null past the end of the text
    std::uint64_t begin = 0;       // offset of its first byte
    std::uint64_t breaks = 0;      // line breaks before its first byte
};

Found find_offset(const Tree& tree, std::uint64_t offset);

// Offset just past the nth line break, n counting from 1; the tree has at least n.
std::uint64_t after_break(const Tree& tree, std::uint64_t n);

// Same bytes and same line breaks. Shared nodes are not looked into.
bool equal(const Tree& a, const Tree& b);

// Bytes from the begin, or up to the end, that two trees have in the same memory. Nothing
// is read but the nodes that they do not share.
std::uint64_t shared_head(const Tree& a, const Tree& b);
std::uint64_t shared_tail(const Tree& a, const Tree& b);

// Asserts everything that must hold of a tree; for tests and debug builds.
void check(const Tree& tree);

}  // namespace tpu::tree
