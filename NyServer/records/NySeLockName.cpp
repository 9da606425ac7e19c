#include "NyServer/records/NySeLockName.h"

#include <atomic>

namespace {

std::atomic<unsigned long long> changeCount = 0;

}  // namespace

unsigned long long NySeLockName::changes() {
    return changeCount.load(std::memory_order_relaxed);
}

void NySeLockName::countChange() {
    m_index = nullptr;
    changeCount.fetch_add(1, std::memory_order_relaxed);
}
