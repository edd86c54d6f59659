#include "text/text_block.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "os/short_memory.h"

namespace tpu {

namespace {

// Some milliseconds' work; a multiple of every system's page size.
constexpr std::size_t kDetachStep = std::size_t{4} << 20;

// Reads `bytes` bytes of a file from `offset` on; what the file has lost reads as zeros,
// and false is returned then.
bool read_at(int fd, std::size_t offset, char* place, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        ssize_t got = pread(fd, place + done, bytes - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    std::memset(place + done, 0, bytes - done);
    return done == bytes;
}

// The blocks that still show a file.
std::vector<TextBlock*>& attached() {
    static auto* const blocks = new std::vector<TextBlock*>;  // for ever, like the sessions
    return *blocks;
}

// Where they lie, for a signal handler: it may come at any time and cannot look into a vector.
struct Mapping {
    std::atomic<char*> begin = nullptr;  // null: free; set last and taken away first
    std::atomic<std::size_t> size = 0;
};
std::array<Mapping, 64> mappings;
static_assert(std::atomic<char*>::is_always_lock_free);

// False: there are too many already.
bool add_mapping(char* begin, std::size_t size) {
    for (Mapping& mapping : mappings) {
        if (mapping.begin) continue;
        mapping.size = size;
        mapping.begin = begin;
        return true;
    }
    return false;
}

void remove_mapping(const char* begin) {
    for (Mapping& mapping : mappings) {
        if (mapping.begin == begin) mapping.begin = nullptr;
    }
}

bool put_zeros(char* place, std::size_t bytes) {
    void* zeros =
        mmap(place, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    return zeros != MAP_FAILED;
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
    Ref<TextBlock> block;
    if (!add_mapping(static_cast<char*>(place), size) || !enough_memory([&] {
            block = Ref(new TextBlock(static_cast<char*>(place), size, size));
        })) {
        remove_mapping(static_cast<char*>(place));
        munmap(place, size);
        return {};
    }
    block->used_ = size;
    attached().push_back(block.get());
    block->detached_ = 0;
    block->file_ = std::move(file);
    return block;
}

// Puts memory with the same bytes in place of the next part of the mapping. A page
// of the mapping that was merely written to would not do: it goes with its file's end.
void TextBlock::detach() {
    static char small[64 << 10];  // for when memory is short
    std::size_t bytes = std::min(kDetachStep, mapped_ - detached_);
    std::unique_ptr<char[]> large(new (std::nothrow) char[bytes]);
    if (!large) bytes = std::min(sizeof small, bytes);
    char* copy = large ? large.get() : small;
    if (!read_at(file_.get(), detached_, copy, bytes)) damaged_ = true;
    char* place = data_ + detached_;
    if (put_zeros(place, bytes)) std::memcpy(place, copy, bytes);
    detached_ += bytes;
}

// Behind one lost page all are lost.
bool TextBlock::repair_fault(void* address) {
    const int error = errno;
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto at = reinterpret_cast<std::uintptr_t>(address);
    for (Mapping& mapping : mappings) {
        char* const begin = mapping.begin;
        auto from = reinterpret_cast<std::uintptr_t>(begin);
        if (!begin || at < from || at - from >= mapping.size) continue;
        std::size_t intact = (at - from) / page * page;
        bool repaired = put_zeros(begin + intact, mapping.size - intact);
        errno = error;
        return repaired;
    }
    return false;
}

bool TextBlock::detach_some() {
    if (attached().empty()) return true;
    TextBlock* block = attached().back();
    block->detach();
    if (block->is_detached()) {
        block->file_.close();
        remove_mapping(block->data_);
        attached().pop_back();
    }
    return attached().empty();
}

TextBlock::~TextBlock() {
    if (!is_detached()) std::erase(attached(), this);
    if (mapped_) {
        remove_mapping(data_);
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
