// Finds a record in a table by one of its texts. Internal to the records.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <typeinfo>

#include "NyServer/records/NySeRecord.h"

namespace NySe {

// A text that is compared with many others. The caller owns it.
class SoughtText {
  public:
    explicit SoughtText(const CString& text)
        : m_text(text.GetString()), m_length(std::char_traits<WCHAR>::length(m_text)) {
        if (m_length >= kTail) m_tail = foldTail(m_text + m_length);
    }

    // Returns whether other.CompareNoCase(text) is 0.
    bool equals(const CString& other) const {
        return mayEqual(other) && other.CompareNoCase(m_text) == 0;
    }

  private:
    static constexpr size_t kTail = 4;  // characters: as many as are compared at once
    static constexpr uint64_t kBeyondAscii = 0xFF80FF80FF80FF80;  // in any of them

    // Returns false for nearly every other text, by its length and its last four characters: a
    // search among names that begin alike takes a third to a tenth of the time. A zero character
    // ends either text, so that a longer one may be equal. Letters beyond ASCII are left to
    // CompareNoCase, which may fold them.
    bool mayEqual(const CString& other) const {
        if (static_cast<size_t>(other.GetLength()) < m_length) return false;
        const WCHAR* const end = other.GetString() + m_length;
        if (*end != 0 || m_length < kTail) return *end == 0;
        const uint64_t tail = foldTail(end);
        return tail == m_tail || ((tail | m_tail) & kBeyondAscii) != 0;
    }

    // The four characters before `end`: the same for two that differ only in letter case.
    static uint64_t foldTail(const WCHAR* end) {
        uint64_t tail;
        static_assert(sizeof tail == kTail * sizeof(WCHAR));
        std::memcpy(&tail, end - kTail, sizeof tail);
        return tail | 0x0020002000200020;
    }

    const WCHAR* m_text;
    size_t m_length;  // up to a zero character
    uint64_t m_tail = 0;
};

// A text of a record, and the key under which records are compared by it without letter case.
template <class RECORD>
struct TextKey {
    using Record = RECORD;

    const CString& (Record::*get)() const;
    void (Record::*set)(const CString&);
    short key;
};

// Returns what table.lookFor(probe, key) returns for a probe with that text. A derived class may
// compare differently: at the first record of one, the whole search is done with a probe. That is
// `given`, or a new one if it is null, which needs memory.
template <auto KEY, class Record = typename decltype(KEY)::Record>
INT_PTR lookForText(const QoArraySerial2& table, const CString& text,
                    const Record* given = nullptr) {
    const SoughtText sought(text);
    const CObject* const* const elements = table.GetData();
    const INT_PTR size = table.GetSize();
    for (INT_PTR i = 0; i < size; ++i) {
        const CObject& element = *elements[i];
        if (typeid(element) != typeid(Record)) [[unlikely]] {
            if (given != nullptr) return table.lookFor(given, KEY.key);
            Record probe;
            (probe.*KEY.set)(text);
            return table.lookFor(&probe, KEY.key);
        }
        if (sought.equals((static_cast<const Record&>(element).*KEY.get)())) return i;
    }
    return -1;
}

// Returns the record there, as table.find(probe, key) does; null if there is none.
template <auto KEY, class Record = typename decltype(KEY)::Record>
Record* findText(const QoArraySerial2& table, const CString& text) {
    const INT_PTR index = lookForText<KEY>(table, text);
    return index >= 0 ? Record::cast(table.GetAt(index)) : nullptr;
}

}  // namespace NySe
