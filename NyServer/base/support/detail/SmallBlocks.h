// Memory for records, short texts and short arrays. A table of records consists of very many of
// them, and allocating each from the C library costs more than reading the record.
#pragma once

#include <cstddef>
#include <type_traits>

#include "NyServer/base/support/NyBaseApi.h"

// Each thread has a free list for each size and refills it from a shared store. A block may be
// freed by any thread. Memory of small blocks is reused for blocks of that size and never returned
// to the system.

// Like operator new and delete: `bytes` is the same in both; throws std::bad_alloc.
NYBASE_API void* allocateSmallBlock(std::size_t bytes);
NYBASE_API void freeSmallBlock(void* block, std::size_t bytes) noexcept;

// The same for containers.
template <class T>
struct SmallBlockAllocator {
    using value_type = T;
    using is_always_equal = std::true_type;

    SmallBlockAllocator() = default;
    template <class U>
    SmallBlockAllocator(const SmallBlockAllocator<U>&) {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= alignof(std::max_align_t));
        return static_cast<T*>(allocateSmallBlock(bytesOf(count)));
    }
    void deallocate(T* block, std::size_t count) noexcept { freeSmallBlock(block, bytesOf(count)); }

    friend bool operator==(SmallBlockAllocator, SmallBlockAllocator) { return true; }

  private:
    static std::size_t bytesOf(std::size_t count) {
        return count * sizeof(T);  // NOLINT(bugprone-sizeof-expression): T may be a pointer
    }
};
