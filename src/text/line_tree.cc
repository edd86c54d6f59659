// Building and changing the tree.
#include "text/line_tree.h"

#include <algorithm>
#include <cassert>
#include <string>

namespace tpu::tree {

namespace {

Totals& operator+=(Totals& sum, const Totals& more) {
    sum.bytes += more.bytes;
    sum.breaks += more.breaks;
    return sum;
}

template <class Entries>
Totals total(const Entries& entries) {
    Totals sum;
    for (const auto& entry : entries) sum += entry.totals();
    return sum;
}

Tree make_node(Pieces pieces) {
    Totals size = total(pieces);
    Ref node(new Node);
    node->pieces = std::move(pieces);
    return {std::move(node), size};
}

Tree make_node(std::vector<Tree> children) {
    Totals size = total(children);
    Ref node(new Node);
    node->level = children.front().node->level + 1;
    node->children = std::move(children);
    return {std::move(node), size};
}

// Spreads entries evenly over as many nodes as it takes with `most` in each.
template <class Entry>
void spread(std::vector<Entry> entries, std::size_t most, std::vector<Tree>& nodes) {
    std::size_t parts = (entries.size() + most - 1) / most;
    auto next = std::make_move_iterator(entries.begin());
    for (std::size_t left = entries.size(); parts > 0; --parts) {
        auto share = static_cast<std::ptrdiff_t>(left / parts);
        nodes.push_back(make_node(std::vector<Entry>(next, next + share)));
        next += share;
        left -= static_cast<std::size_t>(share);
    }
}

// One tree over nodes of one level.
Tree join(std::vector<Tree> nodes, std::size_t most) {
    if (nodes.empty()) return {};
    while (nodes.size() > 1) {
        std::vector<Tree> parents;
        spread(std::move(nodes), most, parents);
        nodes = std::move(parents);
    }
    Tree root = std::move(nodes.front());
    while (root.node->level > 0 && root.node->children.size() == 1) {
        Tree only = root.node->children.front();
        root = std::move(only);
    }
    return root;
}

// The entries of a node: taken out of it when nobody else holds it, else copied.
template <class Entries>
Entries take(const Ref<Node>& node, Entries Node::*entries) {
    if (node->count == 1) return std::move((*node).*entries);
    return (*node).*entries;
}

// Joins neighbouring small pieces, so that many small edits do not leave many small pieces.
Pieces join_small_pieces(Pieces pieces, Ref<TextBlock>& tail) {
    auto is_small = [](const Piece& piece) { return piece.size < kSmallPiece && !piece.raw; };
    Pieces result;
    for (std::size_t i = 0; i < pieces.size();) {
        std::size_t end = i;
        std::string text;
        while (end < pieces.size() && is_small(pieces[end]) &&
               text.size() + pieces[end].size <= kCompacted) {
            text += pieces[end++].text();
        }
        if (end - i < 2) {
            append(result, std::move(pieces[i++]));
        } else {
            append(result, store_text(text, false, tail));
            i = end;
        }
    }
    return result;
}

struct Change {
    std::uint64_t from, to;  // offsets in the node at hand
    Pieces* fresh;           // what comes in their place; taken by the first leaf reached
    Ref<TextBlock>& tail;
};

// The first entry that reaches `offset`, and its begin.
template <class Entries>
std::size_t locate(const Entries& entries, std::uint64_t offset, std::size_t i,
                   std::uint64_t& begin) {
    while (i + 1 < entries.size() && begin + entries[i].totals().bytes < offset) {
        begin += entries[i++].totals().bytes;
    }
    return i;
}

Pieces edit_pieces(const Pieces& old, Change change) {
    std::uint64_t begin = 0;
    std::size_t first = locate(old, change.from, 0, begin);
    Pieces result;
    result.reserve(old.size() + 2);
    result.assign(old.begin(), old.begin() + static_cast<std::ptrdiff_t>(first));
    append(result, cut(old[first], 0, static_cast<std::uint32_t>(change.from - begin)));
    for (Piece& piece : *change.fresh) append(result, std::move(piece));
    std::size_t last = locate(old, change.to, first, begin);
    append(result, cut(old[last], static_cast<std::uint32_t>(change.to - begin), old[last].size));
    for (std::size_t i = last + 1; i < old.size(); ++i) append(result, old[i]);
    return result;
}

void fill_up(std::vector<Tree>& nodes, std::size_t from, std::size_t to);

Pieces concatenate(Pieces left, Pieces right) {
    for (Piece& piece : right) append(left, std::move(piece));
    return left;
}

std::vector<Tree> concatenate(std::vector<Tree> left, std::vector<Tree> right) {
    std::size_t seam = left.size();
    std::move(right.begin(), right.end(), std::back_inserter(left));
    // An only child may be too small; now it has a neighbour.
    fill_up(left, seam - 1, seam + 1);
    return left;
}

// The node at i and the next, one of them too small, become one node or two even ones.
template <class Entries>
void merge(std::vector<Tree>& nodes, std::size_t i, Entries Node::*entries) {
    std::vector<Tree> merged;
    spread(concatenate(take(nodes[i].node, entries), take(nodes[i + 1].node, entries)), kMaxEntries,
           merged);
    auto place = nodes.begin() + static_cast<std::ptrdiff_t>(i);
    std::move(merged.begin(), merged.end(), place);
    if (merged.size() == 1) nodes.erase(place + 1);
}

// Repairs nodes [from, to) of one level that have become too small.
void fill_up(std::vector<Tree>& nodes, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < std::min(to, nodes.size()) && nodes.size() > 1;) {
        if (nodes[i].node->entries() >= kMinEntries) {
            ++i;
            continue;
        }
        std::size_t left = i > 0 ? i - 1 : 0;
        if (nodes[i].node->level == 0) {
            merge(nodes, left, &Node::pieces);
        } else {
            merge(nodes, left, &Node::children);
        }
        // Joined pieces may leave the result small again, so look at it once more.
        i = left;
    }
}

// Appends what stands for the changed node, on the same level. The node itself stays as
// it is, lest a text be lost when memory is short.
void edit(const Node& node, Change change, std::vector<Tree>& out) {
    if (node.level == 0) {
        Pieces pieces = edit_pieces(node.pieces, change);
        if (pieces.size() > kMaxEntries) pieces = join_small_pieces(std::move(pieces), change.tail);
        spread(std::move(pieces), kMaxEntries, out);
        return;
    }
    const std::vector<Tree>& old = node.children;
    std::uint64_t begin = 0;
    std::size_t first = locate(old, change.from, 0, begin);
    std::vector<Tree> result;
    result.reserve(old.size() + 2);
    result.assign(old.begin(), old.begin() + static_cast<std::ptrdiff_t>(first));

    std::uint64_t first_end = begin + old[first].size.bytes;
    Change left{change.from - begin, std::min(change.to, first_end) - begin, change.fresh,
                change.tail};
    std::size_t last = locate(old, change.to, first, begin);
    edit(*old[first].node, left, result);
    if (last > first) {
        Pieces none;
        edit(*old[last].node, {0, change.to - begin, &none, change.tail}, result);
    }
    std::size_t edited = result.size();
    result.insert(result.end(), old.begin() + static_cast<std::ptrdiff_t>(last) + 1, old.end());
    fill_up(result, first, edited);
    spread(std::move(result), kMaxEntries, out);
}

// Puts what comes in into the middle of a piece, whose totals it gives the change of.
// False, and nothing has changed, when the leaf would not keep a proper size.
bool edit_piece(Pieces& pieces, std::size_t i, std::uint64_t begin, Change change, bool is_root,
                Totals& size) {
    const Piece& piece = pieces[i];
    bool erases = change.to > change.from;
    if (change.to - begin > piece.size || pieces.size() + 2 > kMaxEntries) return false;
    if (erases && !is_root && pieces.size() <= kMinEntries) return false;
    if (change.fresh->size() > 1) return false;
    Piece parts[] = {cut(piece, 0, static_cast<std::uint32_t>(change.from - begin)),
                     {},
                     cut(piece, static_cast<std::uint32_t>(change.to - begin), piece.size)};
    if (!change.fresh->empty()) parts[1] = std::move(change.fresh->front());
    Pieces spliced;
    for (Piece& part : parts) append(spliced, std::move(part));
    if (spliced.empty() && pieces.size() == 1) return false;
    const Totals before = piece.totals();
    pieces.reserve(kMaxEntries);  // from here on nothing fails
    size.bytes -= before.bytes;
    size.breaks -= before.breaks;
    size += total(spliced);
    auto place = pieces.begin() + static_cast<std::ptrdiff_t>(i);
    if (spliced.empty()) {
        pieces.erase(place);
        return true;
    }
    *place = std::move(spliced.front());
    pieces.insert(place + 1, std::make_move_iterator(spliced.begin() + 1),
                  std::make_move_iterator(spliced.end()));
    return true;
}

// The change where nobody else holds the nodes on the way, and just one piece is
// touched: no node is built anew. False: it was not done.
bool edit_in_place(Tree& tree, Change change, bool is_root) {
    Node& node = *tree.node;
    if (node.count != 1) return false;
    std::uint64_t begin = 0;
    if (node.level == 0) {
        std::size_t i = locate(node.pieces, change.from, 0, begin);
        return edit_piece(node.pieces, i, begin, change, is_root, tree.size);
    }
    Tree& child = node.children[locate(node.children, change.from, 0, begin)];
    Totals before = child.size;
    if (change.to - begin > before.bytes) return false;
    Change inner{change.from - begin, change.to - begin, change.fresh, change.tail};
    if (!edit_in_place(child, inner, false)) return false;
    tree.size.bytes += child.size.bytes - before.bytes;
    tree.size.breaks += child.size.breaks - before.breaks;
    return true;
}

}  // namespace

std::uint64_t count_line_feeds(std::string_view text) {
    constexpr std::size_t kLanes = 32;
    const char* p = text.data();
    std::size_t left = text.size();
    std::uint64_t sum = 0;
    while (left >= kLanes) {
        // Byte-wide counters let the compiler compare and add 16 or 32 bytes at a time.
        std::uint8_t lanes[kLanes] = {};
        std::size_t rounds = std::min<std::size_t>(left / kLanes, 255);
        for (std::size_t r = 0; r < rounds; ++r, p += kLanes) {
            for (std::size_t i = 0; i < kLanes; ++i) {
                lanes[i] = static_cast<std::uint8_t>(lanes[i] + (p[i] == '\n'));
            }
        }
        for (std::uint8_t lane : lanes) sum += lane;
        left -= rounds * kLanes;
    }
    return sum + static_cast<std::uint64_t>(std::count(p, p + left, '\n'));
}

std::size_t after_line_feed(std::string_view text, std::uint64_t n) {
    constexpr std::size_t kStep = 512;
    std::size_t at = 0;
    while (n > 0) {
        std::string_view step = text.substr(at, kStep);
        if (step.empty()) return at;  // not so many: the file changed while it was mapped
        std::uint64_t feeds = count_line_feeds(step);
        if (feeds < n) {
            n -= feeds;
            at += step.size();
            continue;
        }
        for (; n > 0; --n) at = text.find('\n', at) + 1;
    }
    return at;
}

Piece cut(const Piece& piece, std::uint32_t from, std::uint32_t to) {
    assert(from <= to && to <= piece.size);
    Piece part = piece;
    part.data += from;
    part.size = to - from;
    if (piece.raw || part.size == piece.size) return part;
    // Count in the smaller share of the bytes.
    if (part.size <= piece.size / 2) {
        part.breaks = static_cast<std::uint32_t>(count_line_feeds(part.text())) & 0x7fffffffu;
    } else {
        std::uint64_t outside = count_line_feeds({piece.data, from}) +
                                count_line_feeds({piece.data + to, piece.size - to});
        part.breaks = static_cast<std::uint32_t>(piece.breaks - outside) & 0x7fffffffu;
    }
    return part;
}

void append(Pieces& pieces, Piece piece) {
    if (piece.size == 0) return;
    if (!pieces.empty()) {
        Piece& last = pieces.back();
        if (last.data + last.size == piece.data && last.block == piece.block &&
            last.raw == piece.raw && last.size + piece.size <= kMaxPiece) {
            last.size += piece.size;
            last.breaks = (last.breaks + piece.breaks) & 0x7fffffffu;
            return;
        }
    }
    pieces.push_back(std::move(piece));
}

Piece store_text(std::string_view text, bool raw, Ref<TextBlock>& tail) {
    assert(text.size() <= kMaxPiece);
    if (!tail || tail->room() < text.size()) tail = TextBlock::require(kTailBlock);
    Piece piece;
    piece.data = tail->append(text);
    piece.block = tail;
    piece.size = static_cast<std::uint32_t>(text.size());
    piece.raw = raw;
    if (!raw) piece.breaks = static_cast<std::uint32_t>(count_line_feeds(text)) & 0x7fffffffu;
    return piece;
}

Tree build(Pieces pieces) {
    // Some slack in every node keeps the first edits from splitting it.
    constexpr std::size_t kFill = kMaxEntries - kMaxEntries / 4;
    std::vector<Tree> leaves;
    spread(std::move(pieces), kFill, leaves);
    return join(std::move(leaves), kFill);
}

void replace(Tree& tree, std::uint64_t from, std::uint64_t to, Pieces pieces,
             Ref<TextBlock>& tail) {
    assert(from <= to && to <= tree.size.bytes);
    if (from == to && pieces.empty()) return;
    if (!tree.node) {
        tree = build(std::move(pieces));
        return;
    }
    Change change{from, to, &pieces, tail};
    if (edit_in_place(tree, change, true)) return;
    std::vector<Tree> nodes;
    edit(*tree.node, change, nodes);
    tree = join(std::move(nodes), kMaxEntries);
}

}  // namespace tpu::tree
