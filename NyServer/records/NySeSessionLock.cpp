#include "NyServer/records/NySeSessionLockPtrArray.h"

void NySeSessionLock::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar.Write(&m_fields, sizeof m_fields);
    } else {
        ar >> m_fields.lockState >> m_fields.sessionNumber;
    }
}

void NySeSessionLock::typeCopyFrom(const NySeSessionLock& other) {
    m_fields = other.m_fields;
}

void NySeSessionLock::typeCompareTo(const NySeSessionLock& other, short key,
                                    QoSort::CompareResult& result) const {
    if (key == 1) result = NySe::compareNumbers(getSessionNumber(), other.getSessionNumber());
}

void NySeSessionLockPtrArray::Serialize(CArchive& ar) {
    if (ar.IsStoring()) return NySe::storeTable<NySeSessionLock>(*this, ar);
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeSessionLock));
}
