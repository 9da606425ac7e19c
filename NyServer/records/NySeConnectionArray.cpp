#include "NyServer/records/NySeConnectionArray.h"

#include <memory>

namespace {

NySeConnection withId(LONG id) {
    NySeConnection probe;
    probe.setId(id);
    return probe;
}

NySeConnection withString(const CString& connection) {
    NySeConnection probe;
    probe.setStrConnection(connection);
    return probe;
}

}  // namespace

// The records, then the last id, then the free ids. After a failed load the table is as a new one.
void NySeConnectionArray::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        QoArraySerial2::Serialize(ar);
        ar << m_lastId;
        m_freeIds.Serialize(ar);
        return;
    }
    forgetIds();
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeConnection));
    try {
        ar >> m_lastId;
        m_freeIds.Serialize(ar);
    } catch (...) {
        NySe::deleteLoaded(*this);
        forgetIds();
        throw;
    }
}

void NySeConnectionArray::forgetIds() {
    m_lastId = -1;
    m_freeIds.RemoveAll();
}

LONG NySeConnectionArray::openConnection(const CString& connection) {
    if (NySeConnection* open = findByConnection(connection)) {
        open->setRefCount(NySe::sum(open->getRefCount(), 1));
        return open->getId();
    }
    auto entry = std::make_unique<NySeConnection>();
    entry->setStrConnection(connection);
    entry->setId(takeId());
    entry->setRefCount(1);
    add(entry.get());
    return entry.release()->getId();
}

LONG NySeConnectionArray::takeId() {
    if (m_freeIds.IsEmpty()) return m_lastId = NySe::sum(m_lastId, 1);
    const LONG id = m_freeIds.GetAt(0);
    m_freeIds.RemoveAt(0, 1);
    return id;
}

bool NySeConnectionArray::closeConnection(LONG id) {
    NySeConnection* open = findById(id);
    if (open == nullptr) return false;
    open->setRefCount(NySe::sum(open->getRefCount(), -1));
    if (open->getRefCount() > 0) return false;
    const INT_PTR index = lookForId(id);
    m_freeIds.insertSorted(id);
    RemoveAt(index, 1);
    return true;
}

NySeConnection* NySeConnectionArray::findByConnection(const CString& connection) const {
    const NySeConnection probe = withString(connection);
    return NySeConnection::cast(find(&probe, 2));
}

NySeConnection* NySeConnectionArray::findById(LONG id) const {
    const NySeConnection probe = withId(id);
    return NySeConnection::cast(find(&probe, 1));
}

INT_PTR NySeConnectionArray::lookForConnection(const CString& connection) const {
    const NySeConnection probe = withString(connection);
    return lookFor(&probe, 2);
}

INT_PTR NySeConnectionArray::lookForId(LONG id) const {
    const NySeConnection probe = withId(id);
    return lookFor(&probe, 1);
}
