#include "NyServer/base/support/detail/SmallBlocks.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>
#include <utility>

#include "NyServer/base/support/ThreadBlocks.h"
#include "NyServer/detail/ThreadAnnotations.h"

// The address sanitizer checks blocks only if each is allocated separately.
#if defined(__SANITIZE_ADDRESS__)
#define NY_BLOCKS_ARE_SHARED 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NY_BLOCKS_ARE_SHARED 0
#endif
#endif
#ifndef NY_BLOCKS_ARE_SHARED
#define NY_BLOCKS_ARE_SHARED 1
#endif

namespace {

size_t sizeIndex(size_t bytes) {
    return (bytes + kBlockStep - 1) / kBlockStep - 1;
}
size_t blocksInBatch(size_t index) {
    return kBatchBytes / ((index + 1) * kBlockStep);
}

// Held for a few instructions, and usable before and after every constructor and destructor, which
// a mutex is not on every platform.
class NY_LOCK_TYPE("spin lock") SpinLock {
  public:
    void lock() NY_ACQUIRES() {
        while (m_isHeld.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() NY_RELEASES() { m_isHeld.clear(std::memory_order_release); }

  private:
    std::atomic_flag m_isHeld;
};

class NY_SCOPED_LOCK SpinLockHolder {
  public:
    explicit SpinLockHolder(SpinLock& lock) NY_ACQUIRES(lock) : m_lock(lock) { m_lock.lock(); }
    ~SpinLockHolder() NY_RELEASES() { m_lock.unlock(); }
    SpinLockHolder(const SpinLockHolder&) = delete;
    SpinLockHolder& operator=(const SpinLockHolder&) = delete;

  private:
    SpinLock& m_lock;
};

// Batches of free blocks that no thread keeps. Any thread may use it at any time.
class Store {
  public:
    void put(size_t index, FreeBlock* batch) {
        if (batch == nullptr) return;
        const SpinLockHolder lock(m_lock);
        batch->nextBatch = std::exchange(m_batches[index], batch);
    }
    FreeBlock* take(size_t index) {
        {
            const SpinLockHolder lock(m_lock);
            if (FreeBlock* const batch = m_batches[index]) {
                m_batches[index] = batch->nextBatch;
                return batch;
            }
        }
        return makeBatch(index);
    }

  private:
    // Neighbours in the list are neighbours in memory.
    static FreeBlock* makeBatch(size_t index) {
        const size_t size = (index + 1) * kBlockStep;
        char* const memory = static_cast<char*>(std::malloc(kBatchBytes));
        if (memory == nullptr) throw std::bad_alloc();
        FreeBlock* next = nullptr;
        for (size_t i = blocksInBatch(index); i > 0; --i) {
            next = new (memory + (i - 1) * size) FreeBlock{next, nullptr};
        }
        return next;
    }

    SpinLock m_lock;
    std::array<FreeBlock*, kBlockSizes> m_batches NY_GUARDED_BY(m_lock){};
};

// Never destroyed: blocks are freed until the process ends.
constinit Store store;

// The rare cases are separate functions, so that the common ones need no stack frame.

[[gnu::noinline]] void* allocateWithoutThread(size_t index) {
    FreeBlock* const batch = store.take(index);
    store.put(index, batch->next);
    return batch;
}

[[gnu::noinline]] void* allocateFromNextBatch(ThreadBlocks::List& list, size_t index) {
    FreeBlock* const batch =
        list.spare != nullptr ? std::exchange(list.spare, nullptr) : store.take(index);
    list.first = batch->next;
    list.spaceInBatch = 1;
    return batch;
}

[[gnu::noinline]] void releaseWithoutThread(void* memory, size_t index) {
    store.put(index, new (memory) FreeBlock{nullptr, nullptr});
}

[[gnu::noinline]] void releaseAfterWholeBatch(ThreadBlocks::List& list, void* memory,
                                              size_t index) {
    store.put(index, std::exchange(list.spare, list.first));
    list.first = new (memory) FreeBlock{nullptr, nullptr};
    list.spaceInBatch = blocksInBatch(index) - 1;
}

void* allocate(size_t index) {
    ThreadBlocks* const blocks = threadBlocks();
    if (blocks == nullptr) return allocateWithoutThread(index);
    ThreadBlocks::List& list = blocks->lists[index];
    FreeBlock* const block = list.first;
    if (block == nullptr) return allocateFromNextBatch(list, index);
    list.first = block->next;
    ++list.spaceInBatch;
    return block;
}

void release(void* memory, size_t index) {
    ThreadBlocks* const blocks = threadBlocks();
    if (blocks == nullptr) return releaseWithoutThread(memory, index);
    ThreadBlocks::List& list = blocks->lists[index];
    if (list.spaceInBatch == 0) return releaseAfterWholeBatch(list, memory, index);
    list.first = new (memory) FreeBlock{list.first, nullptr};
    --list.spaceInBatch;
}

}  // namespace

void returnThreadBlocks(ThreadBlocks& blocks) {
    for (size_t index = 0; index < kBlockSizes; ++index) {
        ThreadBlocks::List& list = blocks.lists[index];
        store.put(index, std::exchange(list.first, nullptr));
        store.put(index, std::exchange(list.spare, nullptr));
    }
}

void* allocateSmallBlock(size_t bytes) {
    if (!NY_BLOCKS_ARE_SHARED || bytes == 0 || bytes > kLargestBlock) {
        return ::operator new(bytes);
    }
    return allocate(sizeIndex(bytes));
}

void freeSmallBlock(void* block, size_t bytes) noexcept {
    if (!NY_BLOCKS_ARE_SHARED || bytes == 0 || bytes > kLargestBlock || block == nullptr) {
        ::operator delete(block);
        return;
    }
    release(block, sizeIndex(bytes));
}
