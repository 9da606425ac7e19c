// Memory for records, short texts and short arrays. A table of records is made of very many of
// these, and asking the C library for each costs more than reading the record.
#pragma once

#include <cstddef>
#include <type_traits>

#include "NyServer/base/support/NyBaseApi.h"

// Each thread keeps a few free blocks of each size and asks the others' store for more only when
// they are used up. A block may be freed by another thread than the one that it was allocated by.
// Memory that was a small block once is used for blocks of that size again and never returned.

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
