// Memory that holds text: counted, and never changed once written.
//
// A block is filled from front to back. What lies before used() is frozen for
// ever, so any number of pieces may point into it; what lies behind it is free
// for whoever appends next. Counting is not atomic: the editor has one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "os/descriptor.h"

namespace tpu {

// A counted pointer to an object with members retain() and release().
template <class T>
class Ref {
  public:
    Ref() = default;
    explicit Ref(T* object) : object_(object) {
        if (object_) object_->retain();
    }
    Ref(const Ref& other) : Ref(other.object_) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_) object_->release();
    }

    T* get() const { return object_; }
    T& operator*() const { return *object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    friend bool operator==(const Ref& a, const Ref& b) { return a.object_ == b.object_; }

  private:
    T* object_ = nullptr;
};

class TextBlock {
  public:
    // A block with room for `capacity` bytes; null when memory is short.
    static Ref<TextBlock> create(std::size_t capacity);
    // The same for text that there must be room for: fails as operator new does.
    static Ref<TextBlock> require(std::size_t capacity);

    // A block that shows the first `size` bytes of an open file, with nothing copied
    // yet; null when the file cannot be mapped. Until the block is detached, who
    // changes the file may change the text, so that has to follow soon.
    static Ref<TextBlock> map_file(int fd, std::size_t size);

    // Copies a few megabytes more of the blocks that still show files into memory of
    // their own. True when all are detached. Bytes that the file has lost meanwhile
    // read as zeros.
    static bool detach_some();
    // True when there were such bytes in this block.
    bool is_damaged() const { return damaged_; }

    // Whoever looks at what a file has lost before it is detached gets a bus error. This
    // repairs it: zeros appear there. False: the address is in no such block. For the
    // handler of that signal, without which files must not shrink.
    static bool repair_fault(void* address);

    const char* data() const { return data_; }
    std::size_t used() const { return used_; }
    std::size_t room() const { return capacity_ - used_; }
    bool is_shared() const { return count_ > 1; }

    // Copies `text` behind the used part and returns where it stands.
    // The caller has seen to it that there is room.
    const char* append(std::string_view text);

    // Where the next byte goes: to fill the block from a file without a copy in
    // between; room() bytes may be written, then claimed with extend().
    char* end() { return data_ + used_; }
    void extend(std::size_t bytes) { used_ += bytes; }

    // Gives a block that only its filler knows more room, moving it if need be.
    // False, with the block as it was, when memory is short.
    bool grow(std::size_t capacity);

    void retain() { ++count_; }
    void release() {
        if (--count_ == 0) delete this;
    }

    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;

  private:
    TextBlock(char* data, std::size_t capacity, std::size_t mapped)
        : data_(data), capacity_(capacity), mapped_(mapped) {}
    ~TextBlock();
    void detach();
    bool is_detached() const { return detached_ >= mapped_; }

    std::size_t count_ = 0;
    char* data_;
    std::size_t capacity_;
    std::size_t mapped_;  // bytes of a mapped file; 0 for a block on the heap
    std::size_t used_ = 0;
    std::size_t detached_ = SIZE_MAX;  // bytes of a mapped file that are our own by now
    Descriptor file_;                  // for the rest
    bool damaged_ = false;
};

}  // namespace tpu
