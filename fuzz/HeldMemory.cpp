#include "fuzz/HeldMemory.h"

#include <sanitizer/allocator_interface.h>

#include <algorithm>

#include "fuzz/Require.h"

namespace {

thread_local bool isCounting = false;
thread_local std::ptrdiff_t heldBytes = 0;
thread_local std::ptrdiff_t mostBytes = 0;

void count(const volatile void* block, std::ptrdiff_t sign) {
    if (!isCounting || block == nullptr) return;
    const auto size = __sanitizer_get_allocated_size(const_cast<const void*>(block));
    heldBytes += sign * static_cast<std::ptrdiff_t>(size);
    mostBytes = std::max(mostBytes, heldBytes);
}

void countAllocated(const volatile void* block, size_t) {
    count(block, 1);
}
void countFreed(const volatile void* block) {
    count(block, -1);
}

const int hooks = __sanitizer_install_malloc_and_free_hooks(&countAllocated, &countFreed);

}  // namespace

HeldMemory::HeldMemory() {
    require(hooks != 0, "allocations can be counted");
    heldBytes = mostBytes = 0;
    isCounting = true;
}

HeldMemory::~HeldMemory() {
    isCounting = false;
}

void HeldMemory::requireAtMost(size_t bytes) const {
    isCounting = false;
    require(mostBytes <= static_cast<std::ptrdiff_t>(bytes), "memory is bounded by the bytes");
    isCounting = true;
}
