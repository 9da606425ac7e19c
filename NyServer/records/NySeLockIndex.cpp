#include "NyServer/records/NySeLockIndex.h"

#include <cstring>
#include <typeinfo>

#include "NyServer/records/NySeLock.h"

namespace {

// As many are compared at once; the compiler makes a few wide comparisons of them.
constexpr size_t kBlock = 32;

// Equal for names that CompareNoCase calls equal.
uint32_t hashOf(const CString& name) {
    uint32_t hash = 2166136261U;
    for (LPCWSTR next = name.GetString(); *next != 0; ++next) {
        const uint32_t character = *next >= 'A' && *next <= 'Z' ? *next + ('a' - 'A') : *next;
        hash = (hash ^ character) * 16777619U;
    }
    return hash;
}

bool holds(const uint32_t* block, uint32_t hash) {
    unsigned int found = 0;
    for (size_t i = 0; i < kBlock; ++i) found |= block[i] == hash ? 1U : 0U;
    return found != 0;
}

// The next position of `hash` from `start` on; the number of hashes when there is none.
size_t nextOf(const std::vector<uint32_t>& hashes, uint32_t hash, size_t start) {
    size_t i = start;
    while (hashes.size() - i >= kBlock && !holds(&hashes[i], hash)) i += kBlock;
    while (i < hashes.size() && hashes[i] != hash) ++i;
    return i;
}

// Null for anything but a plain lock: a derived one may compare as it likes.
const NySeLock* plainLock(const CObject* element) {
    return element != nullptr && typeid(*element) == typeid(NySeLock)
               ? static_cast<const NySeLock*>(element)
               : nullptr;
}

size_t sizeOf(const QoArraySerial2& table) {
    return static_cast<size_t>(table.GetSize());
}

}  // namespace

std::optional<INT_PTR> NySeLockIndex::find(const QoArraySerial2& table, const CString& name) {
    if (!isCurrent(table)) {
        // To make an index takes longer than to search the table once: not before the next time.
        restart();
        return std::nullopt;
    }
    if (!extend(table)) return std::nullopt;
    const uint32_t hash = hashOf(name);
    for (size_t i = nextOf(m_hashes, hash, 0); i < m_hashes.size();
         i = nextOf(m_hashes, hash, i + 1)) {
        const NySeLock& lock = static_cast<const NySeLock&>(*m_locks[i]);
        if (lock.getStrLockName().CompareNoCase(name) == 0) return static_cast<INT_PTR>(i);
    }
    return -1;
}

// Whether all that is in the index is true of the beginning of the table.
bool NySeLockIndex::isCurrent(const QoArraySerial2& table) const {
    if (m_changes != NySeLockName::changes() || m_locks.size() > sizeOf(table)) return false;
    if (m_locks.empty()) return true;
    // NOLINTNEXTLINE(bugprone-sizeof-expression): it is the addresses that are compared
    const size_t bytes = m_locks.size() * sizeof(CObject*);
    return std::memcmp(m_locks.data(), table.GetData(), bytes) == 0;
}

void NySeLockIndex::restart() {
    m_locks.clear();
    m_hashes.clear();
    m_changes = NySeLockName::changes();
}

bool NySeLockIndex::extend(const QoArraySerial2& table) {
    for (size_t i = m_locks.size(); i < sizeOf(table); ++i) {
        const NySeLock* const lock = plainLock(table.GetData()[i]);
        if (lock == nullptr) return false;
        m_locks.push_back(lock);
        m_hashes.push_back(hashOf(lock->getStrLockName()));
        lock->m_lockName.enter(this);
    }
    return true;
}

void NySeLockIndex::remove(const QoArraySerial2& table, INT_PTR index) {
    const size_t position = static_cast<size_t>(index);
    const CObject* const element = table.GetData()[index];
    if (position >= m_locks.size() || m_locks[position] != element) return;
    if (const NySeLock* const lock = plainLock(element)) lock->m_lockName.leave(this);
    m_locks.erase(m_locks.begin() + index);
    m_hashes.erase(m_hashes.begin() + index);
}
