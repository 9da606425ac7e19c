#include "NyServer/records/NySeConnectionArray.h"

#include <memory>

#include "NyServer/records/TextSearch.h"

namespace {

constexpr NySe::TextKey<NySeConnection> kString = {&NySeConnection::getStrConnection,
                                                   &NySeConnection::setStrConnection, 2};

NySeConnection withId(LONG id) {
    NySeConnection probe;
    probe.setId(id);
    return probe;
}

}  // namespace

// The records, then the last id, then the free ids. After a failed load the table is like a new
// one.
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
        // Nobody else has pointers to the records, whether the table owns them or not.
        NySe::empty(*this, true);
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
    entry->setId(nextId());
    entry->setRefCount(1);
    add(entry.get());
    takeId();  // only after add, which may fail
    return entry.release()->getId();
}

LONG NySeConnectionArray::nextId() const {
    return m_freeIds.IsEmpty() ? NySe::sum(m_lastId, 1) : m_freeIds.GetAt(0);
}

void NySeConnectionArray::takeId() {
    if (m_freeIds.IsEmpty()) {
        m_lastId = nextId();
    } else {
        m_freeIds.RemoveAt(0, 1);
    }
}

bool NySeConnectionArray::closeConnection(LONG id) {
    NySeConnection* open = findById(id);
    if (open == nullptr) return false;
    const LONG left = NySe::sum(open->getRefCount(), -1);
    if (left <= 0) m_freeIds.insertSorted(id);  // first, since it may fail
    open->setRefCount(left);
    if (left > 0) return false;
    RemoveAt(lookForId(id), 1);
    return true;
}

NySeConnection* NySeConnectionArray::findByConnection(const CString& connection) const {
    return NySe::findText<kString>(*this, connection);
}

NySeConnection* NySeConnectionArray::findById(LONG id) const {
    const NySeConnection probe = withId(id);
    return NySeConnection::cast(find(&probe, 1));
}

INT_PTR NySeConnectionArray::lookForConnection(const CString& connection) const {
    return NySe::lookForText<kString>(*this, connection);
}

INT_PTR NySeConnectionArray::lookForId(LONG id) const {
    const NySeConnection probe = withId(id);
    return lookFor(&probe, 1);
}
