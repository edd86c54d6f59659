#include "memory/failing_allocations.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace failing {

namespace {

unsigned long until_failure = 0, left = 0;  // 0: no number of them fails
std::size_t most = static_cast<std::size_t>(-1);
bool has_failed = false, paused = false;

bool fails(std::size_t size) {
    if (paused) return false;
    bool counted = until_failure > 0 ? --until_failure == 0 && left > 0 : left > 0;
    if (counted) --left;
    if (!counted && size <= most) return false;
    return has_failed = true;
}

}  // namespace

void nth(unsigned long n, unsigned long count) {
    none();
    has_failed = false;
    until_failure = n;
    left = count;
}

void above(std::size_t bytes) {
    none();
    has_failed = false;
    most = bytes;
}

void none() {
    until_failure = left = 0;
    most = static_cast<std::size_t>(-1);
}

bool any() {
    return has_failed;
}

Pause::Pause() : outer_(std::exchange(paused, true)) {}

Pause::~Pause() {
    paused = outer_;
}

}  // namespace failing

#ifdef TPU_WRAPS_MALLOC
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* place, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_realloc(void* place, std::size_t size);

void* __wrap_malloc(std::size_t size) {
    return failing::fails(size) ? nullptr : __real_malloc(size);
}
void* __wrap_realloc(void* place, std::size_t size) {
    return failing::fails(size) ? nullptr : __real_realloc(place, size);
}
}
#else
#define __real_malloc std::malloc
#endif

namespace {

void* try_to_allocate(std::size_t size) {
    return failing::fails(size) ? nullptr : __real_malloc(size ? size : 1);
}

void* allocate(std::size_t size) {
    void* place = try_to_allocate(size);
    if (!place) throw std::bad_alloc();
    return place;
}

}  // namespace

// Values that are just being computed are lost with their statement.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return try_to_allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return try_to_allocate(size);
}
void operator delete(void* place) noexcept {
    std::free(place);
}
void operator delete[](void* place) noexcept {
    std::free(place);
}
void operator delete(void* place, std::size_t) noexcept {
    std::free(place);
}
void operator delete[](void* place, std::size_t) noexcept {
    std::free(place);
}
