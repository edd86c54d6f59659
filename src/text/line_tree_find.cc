// Looking things up in the tree, comparing trees, checking them.
#include <algorithm>
#include <cassert>
#include <cstring>

#include "text/line_tree.h"

namespace tpu::tree {

namespace {

// A walk over a tree, from either end, that can step over whole subtrees.
template <bool kBackward = false>
class Walk {
  public:
    explicit Walk(const Tree& tree) {
        if (tree.node) path_.push_back({tree.node.get(), 0});
    }

    bool done() const { return path_.empty(); }
    bool at_piece() const { return node().level == 0; }
    // The subtree at hand; only above the leaves.
    const Tree& subtree() const { return node().children[place()]; }
    const Piece& piece() const { return node().pieces[place()]; }
    std::uint64_t left_in_piece() const { return piece().size - inside_; }
    // What is left of the piece.
    std::string_view rest() const {
        return piece().text().substr(kBackward ? 0 : inside_, left_in_piece());
    }
    std::uint32_t level() const { return node().level; }
    std::uint64_t passed() const { return passed_; }  // bytes that the walk is past

    void descend() { path_.push_back({subtree().node.get(), 0}); }

    void skip_bytes(std::uint64_t bytes) {
        if (bytes == left_in_piece()) return skip();
        inside_ += bytes;
        passed_ += bytes;
    }

    // Past the entry at hand, and up out of nodes that are used up.
    void skip() {
        passed_ += at_piece() ? left_in_piece() : subtree().size.bytes;
        inside_ = 0;
        while (!path_.empty() && ++path_.back().index == node().entries()) path_.pop_back();
    }

  private:
    struct Step {
        const Node* node;
        std::size_t index;  // of entries that the walk is past
    };
    const Node& node() const { return *path_.back().node; }
    std::size_t place() const {
        const std::size_t index = path_.back().index;
        return kBackward ? node().entries() - 1 - index : index;
    }

    std::vector<Step> path_;
    std::uint64_t inside_ = 0;  // bytes of the piece that the walk is past
    std::uint64_t passed_ = 0;
};

bool same_text(const Walk<>& a, const Walk<>& b, std::size_t bytes) {
    std::string_view left = a.rest().substr(0, bytes), right = b.rest().substr(0, bytes);
    if (left.data() != right.data() && left != right) return false;
    bool same_breaks = a.piece().raw == b.piece().raw;
    return same_breaks || left.find('\n') == std::string_view::npos;
}

// Takes two walks that stand at the same place over what the trees share, up to where both
// are at a piece. False: one of them is done.
template <bool kBackward>
bool find_pieces(Walk<kBackward>& left, Walk<kBackward>& right) {
    while (!left.done() && !right.done()) {
        const bool left_deeper = left.at_piece(), right_deeper = right.at_piece();
        if (left_deeper && right_deeper) return true;
        if (!left_deeper && !right_deeper && left.subtree().node == right.subtree().node) {
            left.skip();
            right.skip();
        } else if (right_deeper || (!left_deeper && left.level() >= right.level())) {
            left.descend();
        } else {
            right.descend();
        }
    }
    return false;
}

template <bool kBackward>
std::uint64_t shared(const Tree& a, const Tree& b) {
    if (a.node == b.node) return a.size.bytes;
    Walk<kBackward> left(a), right(b);
    while (find_pieces(left, right)) {
        const std::string_view one = left.rest(), other = right.rest();
        const std::size_t bytes = std::min(one.size(), other.size());
        const bool same_memory = kBackward ? one.data() + one.size() == other.data() + other.size()
                                           : one.data() == other.data();
        if (!same_memory || left.piece().raw != right.piece().raw) break;
        left.skip_bytes(bytes);
        right.skip_bytes(bytes);
    }
    return left.passed();
}

}  // namespace

void collect(const Tree& tree, std::uint64_t from, std::uint64_t to, Pieces& pieces) {
    if (!tree.node || from >= to) return;
    std::uint64_t begin = 0;
    auto share = [&](std::uint64_t size, auto&& use) {
        std::uint64_t first = std::max(from, begin), last = std::min(to, begin + size);
        if (first < last) use(first - begin, last - begin);
        begin += size;
    };
    for (const Piece& piece : tree.node->pieces) {
        share(piece.size, [&](std::uint64_t first, std::uint64_t last) {
            append(pieces,
                   cut(piece, static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last)));
        });
    }
    for (const Tree& child : tree.node->children) {
        share(child.size.bytes, [&](std::uint64_t first, std::uint64_t last) {
            collect(child, first, last, pieces);
        });
    }
}

Found find_offset(const Tree& tree, std::uint64_t offset) {
    if (offset >= tree.size.bytes) return {nullptr, tree.size.bytes, tree.size.breaks};
    Found found;
    const Node* node = tree.node.get();
    auto step_over = [&](const Totals& size) {
        if (offset < found.begin + size.bytes) return false;
        found.begin += size.bytes;
        found.breaks += size.breaks;
        return true;
    };
    while (node->level > 0) {
        std::size_t i = 0;
        while (step_over(node->children[i].size)) ++i;
        node = node->children[i].node.get();
    }
    std::size_t i = 0;
    while (step_over(node->pieces[i].totals())) ++i;
    found.piece = &node->pieces[i];
    return found;
}

std::uint64_t after_break(const Tree& tree, std::uint64_t n) {
    assert(n > 0 && n <= tree.size.breaks);
    std::uint64_t begin = 0;
    auto step_over = [&](const Totals& size) {
        if (n <= size.breaks) return false;
        n -= size.breaks;
        begin += size.bytes;
        return true;
    };
    const Node* node = tree.node.get();
    while (node->level > 0) {
        std::size_t i = 0;
        while (step_over(node->children[i].size)) ++i;
        node = node->children[i].node.get();
    }
    std::size_t i = 0;
    while (step_over(node->pieces[i].totals())) ++i;
    return begin + after_line_feed(node->pieces[i].text(), n);
}

bool equal(const Tree& a, const Tree& b) {
    if (a.node == b.node) return true;
    if (a.size.bytes != b.size.bytes || a.size.breaks != b.size.breaks) return false;
    Walk<> left(a), right(b);
    while (find_pieces(left, right)) {
        std::uint64_t bytes = std::min(left.left_in_piece(), right.left_in_piece());
        if (!same_text(left, right, bytes)) return false;
        left.skip_bytes(bytes);
        right.skip_bytes(bytes);
    }
    return left.done() == right.done();
}

std::uint64_t shared_head(const Tree& a, const Tree& b) {
    return shared<false>(a, b);
}

std::uint64_t shared_tail(const Tree& a, const Tree& b) {
    return shared<true>(a, b);
}

#ifdef NDEBUG
void check(const Tree&) {}
#else
namespace {

Totals check_node(const Node& node, bool is_root) {
    assert(node.count > 0);
    assert(node.entries() <= kMaxEntries);
    assert(is_root ? node.entries() > 0 : node.entries() >= kMinEntries);
    Totals sum;
    for (const Piece& piece : node.pieces) {
        assert(piece.size > 0 && piece.size <= kMaxPiece);
        assert(piece.data >= piece.block->data());
        assert(piece.data + piece.size <= piece.block->data() + piece.block->used());
        assert(piece.breaks == (piece.raw ? 0 : count_line_feeds(piece.text())));
        sum.bytes += piece.size;
        sum.breaks += piece.breaks;
    }
    for (const Tree& child : node.children) {
        assert(child.node->level + 1 == node.level);
        [[maybe_unused]] Totals found = check_node(*child.node, false);
        assert(found.bytes == child.size.bytes && found.breaks == child.size.breaks);
        sum.bytes += child.size.bytes;
        sum.breaks += child.size.breaks;
    }
    return sum;
}

}  // namespace

void check(const Tree& tree) {
    if (!tree.node) {
        assert(tree.size.bytes == 0 && tree.size.breaks == 0);
        return;
    }
    assert(tree.node->level == 0 || tree.node->children.size() > 1);
    [[maybe_unused]] Totals found = check_node(*tree.node, true);
    assert(found.bytes == tree.size.bytes && found.breaks == tree.size.breaks);
}
#endif

}  // namespace tpu::tree
