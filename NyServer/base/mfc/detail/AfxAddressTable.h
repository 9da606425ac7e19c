// A table from objects' addresses to their numbers. Internal to the class library.
#pragma once

#include <cstdint>
#include <vector>

#include "CObject.h"

// A hash table with linear probing, at most half full. Not for concurrent use.
class AfxObjectNumbers {
  public:
    // The number of the object; 0 for one that is not in the table.
    DWORD find(const CObject* object) const {
        return m_entries.empty() ? 0 : m_entries[slotOf(object)].number;
    }
    // Without effect on an object that is in the table already. REQUIRES: neither is null or 0.
    void add(const CObject* object, DWORD number) {
        if (2 * (m_used + 1) > m_entries.size()) grow();
        Entry& entry = m_entries[slotOf(object)];
        if (entry.object != nullptr) return;
        entry = {object, number};
        ++m_used;
    }

  private:
    struct Entry {
        const CObject* object = nullptr;  // null: a free slot
        DWORD number = 0;
    };

    // Where the object is, or belongs. Neighbours stay neighbours, in groups that are spread:
    // objects are written in about the order in which they lie in memory.
    size_t slotOf(const CObject* object) const {
        constexpr uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;
        constexpr int kGroupBits = 6;
        constexpr size_t kInGroup = (size_t{1} << kGroupBits) - 1;
        const uintptr_t place = reinterpret_cast<uintptr_t>(object) / kObjectStep;
        const auto group = static_cast<size_t>((place >> kGroupBits) * kGoldenRatio >> 32);
        const size_t last = m_entries.size() - 1;
        size_t slot = (group & ~kInGroup) | (place & kInGroup);
        for (;; ++slot) {
            const Entry& entry = m_entries[slot & last];
            if (entry.object == object || entry.object == nullptr) return slot & last;
        }
    }
    void grow() {
        std::vector<Entry> larger(m_entries.empty() ? kFewEntries : m_entries.size() * 4);
        m_entries.swap(larger);
        for (const Entry& entry : larger) {
            if (entry.object != nullptr) m_entries[slotOf(entry.object)] = entry;
        }
    }

    static constexpr size_t kFewEntries = 64;
    static constexpr size_t kObjectStep = 16;  // bytes; most objects are no nearer to each other

    std::vector<Entry> m_entries;  // as many as a power of two
    size_t m_used = 0;
};
