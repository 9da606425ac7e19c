#include "NyServer/records/NySeSessionLock.h"

void NySeSessionLock::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        storeFields(ar);
    } else {
        ar >> m_lockState >> m_sessionNumber;
    }
}

void NySeSessionLock::typeCopyFrom(const NySeSessionLock& other) {
    m_sessionNumber = other.m_sessionNumber;
    m_lockState = other.m_lockState;
}

void NySeSessionLock::typeCompareTo(const NySeSessionLock& other, short key,
                                    QoSort::CompareResult& result) const {
    if (key == 1) result = NySe::compareNumbers(m_sessionNumber, other.m_sessionNumber);
}
