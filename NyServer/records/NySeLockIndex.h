// NySeLockIndex: finds a lock by its name without looking at every lock.
#pragma once

#include <afx.h>

#include <cstdint>
#include <optional>
#include <vector>

class NySeLock;
class QoArraySerial2;

// Belongs to one table, whose locks anybody may add, remove, replace, rename and delete meanwhile:
// the index keeps a number made of each name beside the lock's address, and is used only when the
// addresses are still those in the table and no name that an index relies on has changed. Not for
// concurrent use.
class NySeLockIndex {
  public:
    NySeLockIndex() = default;
    // A copy of a table has locks of its own.
    NySeLockIndex(const NySeLockIndex&) {}
    NySeLockIndex& operator=(const NySeLockIndex&) { return *this; }
    ~NySeLockIndex() = default;

    // The index in `table` of the first lock of that name without letter case; -1 when there is
    // none. No value when there have been changes since the last call, or when the table holds
    // something else than locks: then the table must be searched.
    std::optional<INT_PTR> find(const QoArraySerial2& table, const CString& name);

    // REQUIRES: called before `table` removes the lock there, and only then.
    void remove(const QoArraySerial2& table, INT_PTR index);

  private:
    bool isCurrent(const QoArraySerial2& table) const;
    void restart();
    // Takes in what is new at the end of the table; false when that is not all locks.
    bool extend(const QoArraySerial2& table);

    // Of the same length: each lock and the number made of its name.
    std::vector<const CObject*> m_locks;
    std::vector<uint32_t> m_hashes;
    std::optional<unsigned long long> m_changes;  // NySeLockName::changes() when it was started
};
