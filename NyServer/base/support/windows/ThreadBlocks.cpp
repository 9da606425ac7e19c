#include "NyServer/base/support/ThreadBlocks.h"

#include "NyServer/base/WindowsPrelude.h"

#include <new>

namespace {

void returnBlocks(ThreadBlocks* blocks) {
    if (blocks == nullptr) return;
    returnThreadBlocks(*blocks);
    delete blocks;
}

void CALLBACK atThreadEnd(void* blocks) {
    returnBlocks(static_cast<ThreadBlocks*>(blocks));
}

// A slot of fiber-local storage, which has a callback at the end of a thread. When this module is
// unloaded, freeing the slot returns the blocks of all threads.
class Slot {
  public:
    Slot() : m_index(FlsAlloc(&atThreadEnd)) {}
    ~Slot() {
        const DWORD index = m_index;
        m_index = FLS_OUT_OF_INDEXES;
        if (index != FLS_OUT_OF_INDEXES) FlsFree(index);
    }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    ThreadBlocks* blocks() {
        if (m_index == FLS_OUT_OF_INDEXES) return nullptr;
        if (void* const known = FlsGetValue(m_index)) return static_cast<ThreadBlocks*>(known);
        auto* const made = new (std::nothrow) ThreadBlocks{};
        if (made != nullptr && FlsSetValue(m_index, made)) return made;
        delete made;
        return nullptr;
    }

  private:
    DWORD m_index;
};

}  // namespace

ThreadBlocks* threadBlocks() {
    static Slot slot;
    return slot.blocks();
}
