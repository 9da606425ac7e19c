// How an archive numbers the classes and objects that pass through it. Internal to the class
// library.
#pragma once

#include "CArchive.h"

#include <unordered_map>
#include <vector>

// Classes and objects share one sequence of numbers from 1; 0 stands for null. These limits are
// part of the encoding: do not change them.
inline constexpr WORD kNullTag = 0x0000;
inline constexpr WORD kNewClassTag = 0xFFFF;
inline constexpr WORD kBigTag = 0x7FFF;     // a 4-byte tag follows
inline constexpr WORD kClassFlag = 0x8000;  // in a 2-byte tag
inline constexpr DWORD kBigClassFlag = 0x80000000;
inline constexpr DWORD kLastNumber = 0x3FFFFFFE;
inline constexpr WORD kLongestClassName = 63;

// Nested deeper than any honest archive; keeps a hostile one from using up the stack.
inline constexpr int kDeepestNesting = 100;

class CArchive::ObjectNumbers {
  public:
    // The number of a class or an object written earlier; 0 when there is none.
    DWORD numberOf(const void* written) const {
        const auto found = m_written.find(written);
        return found != m_written.end() ? found->second : 0;
    }

    // False when all numbers are used up.
    bool addWritten(const void* written) {
        if (m_next > kLastNumber) return false;
        if (written != nullptr) m_written.emplace(written, m_next);
        ++m_next;
        return true;
    }

    struct Read {
        CRuntimeClass* pClass;  // null for an object
        UINT schema;            // of the class, as stored
        CObject* object;        // null for a class, and for an object that could not be read
    };

    // The number given; 0 when all are used up.
    DWORD addRead(const Read& read) {
        if (m_next > kLastNumber) return 0;
        m_read.push_back(read);
        return m_next++;
    }

    // What bears that number; null when nothing does.
    Read* find(DWORD number) {
        return number >= 1 && number <= m_read.size() ? &m_read[number - 1] : nullptr;
    }

    // The objects from that number on are gone: a read has failed half-way.
    void forgetFrom(DWORD number) {
        for (; number <= m_read.size(); ++number) m_read[number - 1].object = nullptr;
    }

  private:
    std::unordered_map<const void*, DWORD> m_written;
    std::vector<Read> m_read;
    DWORD m_next = 1;
};
