#include "NyServer/records/NySeLock.h"

#include "NyServer/records/NySeShareMode.h"
#include "NyServer/records/NySeUser.h"

namespace {

constexpr unsigned int kAccessBits = NySe::access1 | NySe::access2;
constexpr unsigned int kExcludeBits = NySe::exclude1 | NySe::exclude2;

}  // namespace

void NySeLock::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_strLockName;
    } else {
        ar >> m_strLockName;
    }
    m_holders.Serialize(ar);
}

// Copies have no holders: a grant belongs to one lock, not to its copies.
void NySeLock::typeCopyFrom(const NySeLock& other) {
    setStrLockName(other.getStrLockName());
}

void NySeLock::typeCompareTo(const NySeLock& other, short key,
                             QoSort::CompareResult& result) const {
    if (key == 1) result = NySe::compareTexts(getStrLockName(), other.getStrLockName());
}

bool NySeLock::seekShareMode(unsigned int mode) const {
    if ((mode & kAccessBits) == 0) return true;
    for (INT_PTR i = 0; i < m_holders.GetSize(); ++i) {
        if ((m_holders.GetAt(i)->getLockState() & kExcludeBits) != 0) return false;
    }
    return true;
}

void NySeLock::removeUser(const NySeUser& user) {
    for (INT_PTR i = 0; i < m_holders.GetSize();) {
        if (m_holders.GetAt(i)->getSessionNumber() == user.getSessionNumber()) {
            m_holders.RemoveAt(i, 1);
        } else {
            ++i;
        }
    }
}

void NySeLock::writeUserArray(CMemFile& file) const {
    CArchive archive(&file, CArchive::store);
    archive.SetObjectSchema(NySe::kRecordSchema);
    archive.WriteObject(&m_holders);
}
