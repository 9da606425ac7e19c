#include "NyServer/records/NySeLockArray.h"

#include <memory>

#include "NyServer/records/NySeUser.h"
#include "NyServer/records/TextSearch.h"

namespace {

constexpr NySe::TextKey<NySeLock> kLockName = {&NySeLock::getStrLockName, &NySeLock::setStrLockName,
                                               1};

void grant(NySeLock& lock, const NySeUser& user, unsigned int mode) {
    auto entry = std::make_unique<NySeSessionLock>();
    entry->setSessionNumber(user.getSessionNumber());
    entry->setLockState(mode);
    lock.getHolders().add(entry.get());
    static_cast<void>(entry.release());
}

}  // namespace

void NySeLockArray::Serialize(CArchive& ar) {
    constexpr bool areCopiesComplete = false;  // they have no holders
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeLock), areCopiesComplete);
}

INT_PTR NySeLockArray::lookForLockName(const CString& name) const {
    return NySe::lookForText<kLockName>(*this, name);
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
    const INT_PTR index = NySe::lookForText<kLockName>(*this, lock.getStrLockName(), &lock);
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

bool NySeLockArray::deleteUnheld(INT_PTR index) {
    if (GetAt(index)->getHolders().GetSize() > 0) return false;
    RemoveAt(index, 1);
    return true;
}
