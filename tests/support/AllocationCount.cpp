#include "tests/support/AllocationCount.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kHeader = alignof(std::max_align_t);  // holds the block's size

bool counting = false;
std::ptrdiff_t heldBytes = 0;
std::ptrdiff_t mostBytes = 0;
std::size_t untilFailure = kNever;

bool mustFail() {
    if (!counting || untilFailure == kNever) return false;
    if (untilFailure > 0) {
        --untilFailure;
        return false;
    }
    untilFailure = kNever;
    return true;
}

void count(std::ptrdiff_t bytes) {
    if (!counting) return;
    heldBytes += bytes;
    if (heldBytes > mostBytes) mostBytes = heldBytes;
}

}  // namespace

AllocationCount::AllocationCount() {
    heldBytes = mostBytes = 0;
    untilFailure = kNever - 1;
    counting = true;
}

AllocationCount::~AllocationCount() {
    counting = false;
}

std::size_t AllocationCount::peakBytes() const {
    return static_cast<std::size_t>(mostBytes);
}

void AllocationCount::failAfter(std::size_t count) {
    untilFailure = count;
}

bool AllocationCount::hasFailed() const {
    return untilFailure == kNever;
}

void* operator new(std::size_t size) {
    if (size > kNever - kHeader || mustFail()) throw std::bad_alloc();
    void* block = std::malloc(size + kHeader);
    if (block == nullptr) throw std::bad_alloc();
    *static_cast<std::size_t*>(block) = size;
    count(static_cast<std::ptrdiff_t>(size));
    return static_cast<char*>(block) + kHeader;
}

void operator delete(void* memory) noexcept {
    if (memory == nullptr) return;
    void* block = static_cast<char*>(memory) - kHeader;
    count(-static_cast<std::ptrdiff_t>(*static_cast<std::size_t*>(block)));
    std::free(block);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
