#include "NyServer/records/NySeConnection.h"

void NySeConnection::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_strConnection << m_id << m_refCount;
    } else {
        ar >> m_strConnection >> m_id >> m_refCount;
    }
}

void NySeConnection::typeCopyFrom(const NySeConnection& other) {
    m_strConnection = other.m_strConnection;
    m_id = other.m_id;
    m_refCount = other.m_refCount;
}

void NySeConnection::typeCompareTo(const NySeConnection& other, short key,
                                   QoSort::CompareResult& result) const {
    if (key == 1) result = NySe::compareNumbers(m_id, other.m_id);
    if (key == 2) result = NySe::compareTexts(m_strConnection, other.m_strConnection);
}
