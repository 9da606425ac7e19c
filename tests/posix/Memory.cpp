#include <cstdlib>
#include <cstring>

#include "NyServer/base/WindowsPrelude.h"

namespace {

// In front of the bytes of a block, which therefore have another address than its handle. Blocks
// are not listed anywhere: a lock around such a list would order accesses of the code looked at.
struct alignas(16) GlobalBlock {
    SIZE_T size;
    UINT lockCount;
    UINT flags;

    void* bytes() { return this + 1; }
};

constexpr SIZE_T kPage = 4096;

GlobalBlock* blockOf(HGLOBAL handle) {
    return static_cast<GlobalBlock*>(handle);
}

// The size of a region stands in a page in front of it.
SIZE_T& sizeOfRegion(void* address) {
    return *reinterpret_cast<SIZE_T*>(static_cast<char*>(address) - kPage);
}

}  // namespace

HGLOBAL GlobalAlloc(UINT flags, SIZE_T size) {
    auto* const block = static_cast<GlobalBlock*>(std::calloc(1, sizeof(GlobalBlock) + size));
    if (block) *block = {size, 0, flags};
    return block;
}

HGLOBAL GlobalFree(HGLOBAL block) {
    std::free(block);
    return nullptr;
}

void* GlobalLock(HGLOBAL block) {
    ++blockOf(block)->lockCount;
    return blockOf(block)->size > 0 ? blockOf(block)->bytes() : nullptr;
}

BOOL GlobalUnlock(HGLOBAL block) {
    return --blockOf(block)->lockCount > 0;
}

HGLOBAL GlobalHandle(const void* address) {
    return const_cast<GlobalBlock*>(static_cast<const GlobalBlock*>(address) - 1);
}

SIZE_T GlobalSize(HGLOBAL block) {
    return blockOf(block)->size;
}

UINT GlobalFlags(HGLOBAL block) {
    return blockOf(block)->lockCount;
}

void* VirtualAlloc(void*, SIZE_T size, DWORD, DWORD protection) {
    void* const pages = ::mmap(nullptr, kPage + size, static_cast<int>(protection),
                               MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) return nullptr;
    void* const address = static_cast<char*>(pages) + kPage;
    sizeOfRegion(address) = size;
    return address;
}

BOOL VirtualProtect(void* address, SIZE_T size, DWORD protection, DWORD* before) {
    *before = PAGE_READWRITE;
    return ::mprotect(address, size, static_cast<int>(protection)) == 0;
}

BOOL VirtualFree(void* address, SIZE_T, DWORD) {
    return ::munmap(static_cast<char*>(address) - kPage, kPage + sizeOfRegion(address)) == 0;
}
