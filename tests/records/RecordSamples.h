// Records with given fields, and what the tests of all classes need to know of each.
#pragma once

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUserPtrArray.h"

inline NySeUser makeUser(const CString& name, LONG session = -1) {
    NySeUser user;
    user.setStrUserName(name);
    user.setSessionNumber(session);
    return user;
}

inline NySeConnection makeConnection(const CString& text, LONG id, LONG refCount = 0) {
    NySeConnection connection;
    connection.setStrConnection(text);
    connection.setId(id);
    connection.setRefCount(refCount);
    return connection;
}

inline NySeSessionLock makeSessionLock(LONG session, unsigned int state) {
    NySeSessionLock lock;
    lock.setSessionNumber(session);
    lock.setLockState(state);
    return lock;
}

inline NySeLock makeLock(const CString& name) {
    NySeLock lock;
    lock.setStrLockName(name);
    return lock;
}

inline NySeMessage makeMessage(const CString& text) {
    NySeMessage message;
    message.setStrMessage(text);
    return message;
}

template <class Table>
std::vector<LONG> sessionsOf(const Table& table) {
    std::vector<LONG> numbers;
    for (INT_PTR i = 0; i < table.GetSize(); ++i) {
        numbers.push_back(table.GetAt(i)->getSessionNumber());
    }
    return numbers;
}

using Sessions = std::vector<LONG>;

// A record of the class with no field at its default, sorted after a default one under key 1.
template <class Record>
Record makeSample();

template <>
inline NySeUser makeSample() {
    NySeUser user = makeUser(_T("Anna"), 7);
    user.setStrHostName(_T("ws-01"));
    user.setStrComputerName(_T("WS-01"));
    user.setPort(40123);
    user.setSchema(2015);
    user.setSoftType(3);
    return user;
}
inline void putBehind(NySeUser& record) {
    record.setStrUserName(_T("bob"));
}

template <>
inline NySeConnection makeSample() {
    return makeConnection(_T("Server=a;Db=b"), 3, 2);
}
inline void putBehind(NySeConnection& record) {
    record.setId(4);
}

template <>
inline NySeSessionLock makeSample() {
    return makeSessionLock(7, 0x18);
}
inline void putBehind(NySeSessionLock& record) {
    record.setSessionNumber(8);
}

template <>
inline NySeLock makeSample() {
    return makeLock(_T("part/42"));
}
inline void putBehind(NySeLock& record) {
    record.setStrLockName(_T("Part/43"));
}

template <>
inline NySeMessage makeSample() {
    return makeMessage(_T("saved"));
}
