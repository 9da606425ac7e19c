#include "NyServer/records/NySeUser.h"

// The port comes first and the soft type only under the current schema: that is the wire order.
void NySeUser::Serialize(CArchive& ar) {
    const bool withSoftType = NySe::objectSchema(ar) >= NySe::kRecordSchema;
    if (ar.IsStoring()) {
        ar << m_port << m_strHostName << m_strUserName << m_strComputerName << m_sessionNumber
           << m_schema;
        if (withSoftType) ar << m_softType;
    } else {
        ar >> m_port >> m_strHostName >> m_strUserName >> m_strComputerName >> m_sessionNumber >>
            m_schema;
        if (withSoftType) ar >> m_softType;
    }
}

void NySeUser::typeCopyFrom(const NySeUser& other) {
    m_strHostName = other.m_strHostName;
    m_strUserName = other.m_strUserName;
    m_strComputerName = other.m_strComputerName;
    m_port = other.m_port;
    m_sessionNumber = other.m_sessionNumber;
    m_schema = other.m_schema;
    m_softType = other.m_softType;
}

void NySeUser::typeCompareTo(const NySeUser& other, short key,
                             QoSort::CompareResult& result) const {
    if (key == 1 || key == 3) result = NySe::compareTexts(m_strUserName, other.m_strUserName);
    if (key == 2 || (key == 3 && result == NySe::kEqual)) {
        result = NySe::compareNumbers(m_sessionNumber, other.m_sessionNumber);
    }
}
