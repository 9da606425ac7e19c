#include "NyServer/records/NySeMessage.h"

void NySeMessage::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_strMessage;
    } else {
        ar >> m_strMessage;
    }
}

void NySeMessage::typeCopyFrom(const NySeMessage& other) {
    m_strMessage = other.m_strMessage;
}

void NySeMessage::typeCompareTo(const NySeMessage&, short, QoSort::CompareResult&) const {}
