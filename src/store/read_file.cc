#include "store/read_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace tpu {

namespace {

// Little enough to stay in the cache until it has been looked through.
constexpr std::size_t kReadSize = std::size_t{256} << 10;
// Room beyond the expected size, so that the end of a file that did not grow is
// met without asking for more memory.
constexpr std::size_t kSlack = std::size_t{4} << 10;

// Moves text that still holds CR LF pairs to `out`, without the CRs of those
// pairs; returns where it ends. `out` may lie before the text or at its begin.
char* copy_without_cr(const char* from, const char* end, char* out) {
    while (from < end) {
        const void* hit = std::memchr(from, '\r', static_cast<std::size_t>(end - from));
        const char* cr = hit ? static_cast<const char*>(hit) : end;
        bool ends_line = end - cr > 1 && cr[1] == '\n';
        const char* stop = cr == end || ends_line ? cr : cr + 1;
        auto size = static_cast<std::size_t>(stop - from);
        std::memmove(out, from, size);
        out += size;
        from = ends_line ? cr + 1 : stop;
    }
    return out;
}

// Fills a block from a file; what has come in is looked through at once, while it
// is still in the cache.
class Filler {
  public:
    Filler(InputFile& file, Ref<TextBlock> block, std::uint64_t most, Failure& why)
        : file_(file), most_(most), block_(std::move(block)), why_(why) {}

    // False when reading fails, memory is short or there is too much to read.
    bool read_all() {
        for (;;) {
            if (!make_room()) return false;
            char* begin = block_->end();
            std::size_t held = holds_cr_ ? 1 : 0;
            if (holds_cr_) *begin = '\r';
            std::size_t room = std::min(block_->room() - held, kReadSize);
            ssize_t got = file_.read(begin + held, room, why_);
            if (got < 0) return false;
            if (got == 0) return true;
            take(begin, held + static_cast<std::size_t>(got));
            count_pieces();
            if (block_->used() > most_) return why_.note(EFBIG);
        }
    }

    LineStore lines() const {
        std::size_t bytes = block_->used();
        // A CR that is still held is all there is of the last line.
        if (!holds_cr_ && bytes > 0 && block_->data()[bytes - 1] == '\n') --bytes;
        return LineStore::from_block(block_, bytes, feeds_);
    }

  private:
    bool make_room() {
        constexpr std::size_t kLeast = 2;  // a held CR and a byte to read
        if (block_->room() >= kLeast) return true;
        std::size_t more = std::max(block_->used(), kReadSize);
        return block_->grow(block_->used() + more) || why_.note(ENOMEM);
    }

    // Claims the bytes behind the used part. A CR at their end is held back: a line
    // feed or the end of the file behind it will drop it.
    void take(char* begin, std::size_t size) {
        holds_cr_ = begin[size - 1] == '\r';
        if (holds_cr_) --size;
        auto* cr = static_cast<char*>(std::memchr(begin, '\r', size));
        char* end = cr ? copy_without_cr(cr, begin + size, cr) : begin + size;
        block_->extend(static_cast<std::size_t>(end - begin));
    }

    void count_pieces() {
        const char* data = block_->data();
        for (std::size_t at = feeds_.size() * tree::kMaxPiece;
             at + tree::kMaxPiece <= block_->used(); at += tree::kMaxPiece) {
            std::uint64_t feeds = tree::count_line_feeds({data + at, tree::kMaxPiece});
            feeds_.push_back(static_cast<std::uint32_t>(feeds));
        }
    }

    InputFile& file_;
    std::uint64_t most_;
    Ref<TextBlock> block_;
    Failure& why_;
    bool holds_cr_ = false;             // a CR follows the used part
    std::vector<std::uint32_t> feeds_;  // line feeds of each whole piece
};

bool ends_line_with_cr(std::string_view text, std::string_view piece) {
    for (std::size_t at = piece.find('\r'); at < piece.size(); at = piece.find('\r', at + 1)) {
        const char* next = piece.data() + at + 1;
        if (next == text.data() + text.size() || *next == '\n') return true;
    }
    return false;
}

}  // namespace

std::optional<LineStore> map_lines(int fd, std::uint64_t size, Ref<TextBlock>& block) {
    if (size > std::numeric_limits<std::size_t>::max() / 2) return std::nullopt;
    block = TextBlock::map_file(fd, static_cast<std::size_t>(size));
    if (!block) return std::nullopt;
    std::string_view text(block->data(), block->used());
    std::vector<std::uint32_t> feeds;
    for (std::size_t at = 0; at < text.size(); at += tree::kMaxPiece) {
        std::string_view piece = text.substr(at, tree::kMaxPiece);
        if (ends_line_with_cr(text, piece)) return std::nullopt;
        if (piece.size() < tree::kMaxPiece) break;  // may lose its last line feed
        feeds.push_back(static_cast<std::uint32_t>(tree::count_line_feeds(piece)));
    }
    return LineStore::from_block(block, text.size() - text.ends_with('\n'), feeds);
}

std::optional<LineStore> read_lines(InputFile& file, Failure& why, std::uint64_t most) {
    const std::uint64_t expected = file.size();
    Ref<TextBlock> block;
    if (expected <= std::numeric_limits<std::size_t>::max() / 2) {
        block = TextBlock::create(static_cast<std::size_t>(expected) + kSlack);
    }
    if (!block) {
        why.note(ENOMEM);
        return std::nullopt;
    }
    Filler filler(file, std::move(block), file.is_regular() ? UINT64_MAX : most, why);
    if (!filler.read_all()) return std::nullopt;
    return filler.lines();
}

std::optional<std::string> read_whole(InputFile& file, Failure& why, std::uint64_t most) {
    std::string text;
    const std::uint64_t expected = std::min(file.size(), most);
    for (std::size_t size = 0; size <= most;) {
        if (text.size() - size < kReadSize) {
            text.resize(std::max(static_cast<std::size_t>(expected), size * 2) + kReadSize);
        }
        ssize_t got = file.read(text.data() + size, text.size() - size, why);
        if (got < 0) return std::nullopt;
        size += static_cast<std::size_t>(got);
        if (got > 0) continue;
        text.resize(size);
        return text;
    }
    why.note(EFBIG);
    return std::nullopt;
}

std::optional<std::string> read_whole(const std::string& path, Failure& why, Waiting waiting) {
    std::optional<InputFile> file = InputFile::open(path, why, std::move(waiting));
    return file ? read_whole(*file, why) : std::nullopt;
}

}  // namespace tpu
