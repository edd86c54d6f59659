// Allocations that fail when a test says so: those of C++, and where the linker can be told
// to, those of the program's own calls of malloc.
#pragma once

#include <cstddef>

namespace failing {

// The nth allocation from now on fails, counting from 1, and as many in all from there on.
void nth(unsigned long n, unsigned long count = 1);
// Those of more bytes than that fail.
void above(std::size_t bytes);
void none();
bool any();  // has failed since they were told to

// What a test needs for itself does not fail, nor count.
class Pause {
  public:
    Pause();
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

  private:
    bool outer_;
};

}  // namespace failing
