#include "core/text_block.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace tpu {

namespace {

// Some milliseconds' work; a multiple of every system's page size.
constexpr std::size_t kSettleStep = std::size_t{4} << 20;

// Reads `bytes` bytes of a file from `offset` on; what the file has lost reads as zeros.
void read_at(int fd, std::size_t offset, char* place, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        ssize_t got = pread(fd, place + done, bytes - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    std::memset(place + done, 0, bytes - done);
}

// The blocks that still show a file.
std::vector<TextBlock*>& unsettled() {
    static auto* const blocks = new std::vector<TextBlock*>;  // for ever, like the sessions
    return *blocks;
}

}  // namespace

Ref<TextBlock> TextBlock::create(std::size_t capacity) {
    Ref block(new TextBlock(nullptr, capacity, 0));
    block->data_ = static_cast<char*>(std::malloc(std::max<std::size_t>(capacity, 1)));
    return block->data_ ? block : Ref<TextBlock>();
}

Ref<TextBlock> TextBlock::require(std::size_t capacity) {
    Ref<TextBlock> block = create(capacity);
    if (!block) throw std::bad_alloc();
    return block;
}

Ref<TextBlock> TextBlock::map_file(int fd, std::size_t size) {
    Descriptor file(fcntl(fd, F_DUPFD_CLOEXEC, 0));
    if (!file || size == 0) return {};
    void* place = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    if (place == MAP_FAILED) return {};
    Ref block(new TextBlock(static_cast<char*>(place), size, size));
    block->used_ = size;
    block->settled_ = 0;
    block->file_ = std::move(file);
    unsettled().push_back(block.get());
    return block;
}

// Puts memory with the same bytes in place of the next part of the mapping. A page
// of the mapping that was merely written to would not do: it goes with its file's end.
void TextBlock::settle() {
    const std::size_t bytes = std::min(kSettleStep, mapped_ - settled_);
    std::unique_ptr<char[]> copy(new char[bytes]);
    read_at(file_.get(), settled_, copy.get(), bytes);
    char* place = data_ + settled_;
    void* memory =
        mmap(place, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    if (memory != MAP_FAILED) std::memcpy(place, copy.get(), bytes);
    settled_ += bytes;
}

bool TextBlock::settle_some() {
    if (unsettled().empty()) return true;
    TextBlock* block = unsettled().back();
    block->settle();
    if (block->is_settled()) {
        block->file_.close();
        unsettled().pop_back();
    }
    return unsettled().empty();
}

TextBlock::~TextBlock() {
    if (!is_settled()) std::erase(unsettled(), this);
    if (mapped_) {
        munmap(data_, mapped_);
    } else {
        std::free(data_);
    }
}

const char* TextBlock::append(std::string_view text) {
    assert(text.size() <= room());
    char* place = end();
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
    used_ += text.size();
    return place;
}

bool TextBlock::grow(std::size_t capacity) {
    assert(!is_shared() && mapped_ == 0);
    if (capacity <= capacity_) return true;
    void* larger = std::realloc(data_, capacity);
    if (!larger) return false;
    data_ = static_cast<char*>(larger);
    capacity_ = capacity;
    return true;
}

}  // namespace tpu
