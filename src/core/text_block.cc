#include "core/text_block.h"

#include <sys/mman.h>

#include <cassert>
#include <cstdlib>
#include <cstring>
#include <new>

namespace tpu {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Anonymous memory that begins on a huge page, or null.
char* map_aligned(std::size_t bytes) {
    void* raw = mmap(nullptr, bytes + kHugePage, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED) return nullptr;
    auto address = reinterpret_cast<std::uintptr_t>(raw);
    std::uintptr_t aligned = (address + kHugePage - 1) / kHugePage * kHugePage;
    std::size_t before = aligned - address;
    if (before > 0) munmap(raw, before);
    if (before < kHugePage) munmap(reinterpret_cast<void*>(aligned + bytes), kHugePage - before);
#ifdef MADV_HUGEPAGE
    madvise(reinterpret_cast<void*>(aligned), bytes, MADV_HUGEPAGE);
#endif
    return reinterpret_cast<char*>(aligned);
}

std::size_t whole_huge_pages(std::size_t bytes) {
    return (bytes + kHugePage - 1) / kHugePage * kHugePage;
}

}  // namespace

Ref<TextBlock> TextBlock::create(std::size_t capacity) {
    if (capacity >= kHugePage) {
        std::size_t mapped = whole_huge_pages(capacity);
        char* data = map_aligned(mapped);
        return data ? Ref(new TextBlock(data, capacity, mapped)) : Ref<TextBlock>();
    }
    char* data = static_cast<char*>(std::malloc(capacity ? capacity : 1));
    return data ? Ref(new TextBlock(data, capacity, 0)) : Ref<TextBlock>();
}

Ref<TextBlock> TextBlock::require(std::size_t capacity) {
    Ref<TextBlock> block = create(capacity);
    if (!block) throw std::bad_alloc();
    return block;
}

TextBlock::~TextBlock() {
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
    assert(!is_shared());
    if (capacity <= capacity_) return true;
    Ref<TextBlock> larger = create(capacity);
    if (!larger) return false;
    larger->append({data_, used_});
    std::swap(data_, larger->data_);
    std::swap(capacity_, larger->capacity_);
    std::swap(mapped_, larger->mapped_);
    return true;
}

}  // namespace tpu
