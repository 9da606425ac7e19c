#include "tests/base/native/AllocationCount.h"

#include <cstdlib>
#include <new>

size_t AllocationCount::asked = 0;

void* operator new(size_t bytes) {
    AllocationCount::asked += bytes;
    void* memory = std::malloc(bytes != 0 ? bytes : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
