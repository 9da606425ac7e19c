#include "CArchiveObjects.h"

#include <atomic>

namespace {

// Whoever has set this marks objects. The rest of the marks' state is its own meanwhile.
constinit std::atomic<bool> marksTaken = false;
// The last mark that any archive gave. At a thousand millions a second it lasts for five centuries.
constinit uint64_t lastMark = 0;

}  // namespace

CArchive::WrittenNumbers::WrittenNumbers()
    : m_isMarking(!marksTaken.exchange(true, std::memory_order_acquire)) {
    if (!m_isMarking) return;
    m_base = m_last = lastMark;
    m_usualEnd = m_base + kLastNumber;
}

CArchive::WrittenNumbers::~WrittenNumbers() {
    if (!m_isMarking) return;
    lastMark = m_last;
    marksTaken.store(false, std::memory_order_release);
}

DWORD CArchive::WrittenNumbers::numberOfClass(const CRuntimeClass* pClass) const {
    for (const Class& known : m_classes) {
        if (known.pClass == pClass) return known.number;
    }
    return 0;
}

bool CArchive::WrittenNumbers::addClass(const CRuntimeClass* pClass) {
    const DWORD number = takeNumber();
    if (number == 0) return false;
    m_classes.push_back({pClass, number});
    return true;
}

bool CArchive::WrittenNumbers::addObject(const CObject* object) {
    const DWORD number = takeNumber();
    if (number == 0) return false;
    if (m_isMarking) {
        object->m_archiveMark = m_base + number;
    } else {
        m_numbers.add(object, number);
    }
    return true;
}
