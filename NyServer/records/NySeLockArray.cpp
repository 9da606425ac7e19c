#include "NyServer/records/NySeLockArray.h"

#include <memory>

#include "NyServer/records/NySeUser.h"

namespace {

void grant(NySeLock& lock, const NySeUser& user, unsigned int mode) {
    auto entry = std::make_unique<NySeSessionLock>();
    entry->setSessionNumber(user.getSessionNumber());
    entry->setLockState(mode);
    lock.getHolders().add(entry.get());
    static_cast<void>(entry.release());
}

}  // namespace

void NySeLockArray::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        NySe::storeRecords<NySeLock>(ar, *this);
    } else {
        NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeLock));
    }
}

INT_PTR NySeLockArray::lookForLockName(const CString& name) const {
    if (const std::optional<INT_PTR> index = m_index.find(*this, name)) return *index;
    NySeLock probe;
    probe.setStrLockName(name);
    return lookFor(&probe, 1);
}

INT_PTR NySeLockArray::addLock(const CString& name, const NySeUser& user, unsigned int mode) {
    const INT_PTR index = lookForLockName(name);
    if (index >= 0) {
        NySeLock& stored = *GetAt(index);
        if (!stored.seekShareMode(mode)) return -1;
        grant(stored, user, mode);
        return index;
    }
    auto lock = std::make_unique<NySeLock>();
    lock->setStrLockName(name);
    grant(*lock, user, mode);
    const INT_PTR last = append(lock.get());
    static_cast<void>(lock.release());
    return last;
}

bool NySeLockArray::removeLock(NySeLock& lock, const NySeUser& user) {
    const INT_PTR index = lookForNameOf(lock);
    if (index < 0) return false;
    NySeLock& stored = *GetAt(index);
    stored.removeUser(user);
    lock.vCopyFrom(stored);
    deleteUnheld(index);
    return true;
}

void NySeLockArray::deleteLockByUser(const NySeUser& user) {
    for (INT_PTR i = 0; i < GetSize();) {
        GetAt(i)->removeUser(user);
        if (!deleteUnheld(i)) ++i;
    }
}

INT_PTR NySeLockArray::lookForNameOf(const NySeLock& lock) const {
    if (const auto index = m_index.find(*this, lock.getStrLockName())) return *index;
    return lookFor(&lock, 1);
}

bool NySeLockArray::deleteUnheld(INT_PTR index) {
    if (GetAt(index)->getHolders().GetSize() > 0) return false;
    m_index.remove(*this, index);
    RemoveAt(index, 1);
    return true;
}
