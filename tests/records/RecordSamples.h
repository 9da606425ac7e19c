// Filled records and tables, one pair per class, for the tests of what all classes share.
#pragma once

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUserPtrArray.h"

// What the shared tests need to know of a record class.
template <class Record>
struct Sample;

template <>
struct Sample<NySeUser> {
    static constexpr const char* kName = "NySeUser";
    static CRuntimeClass* description() { return &NySeUser::classNySeUser; }
    static NySeUser make() {
        NySeUser user;
        user.setStrHostName(_T("ws-01"));
        user.setStrUserName(_T("Anna"));
        user.setStrComputerName(_T("WS-01"));
        user.setPort(40123);
        user.setSessionNumber(7);
        user.setSchema(2015);
        user.setSoftType(3);
        return user;
    }
    // Sorts `record` behind the sample under key 1.
    static void putBehind(NySeUser& record) { record.setStrUserName(_T("bob")); }
};

template <>
struct Sample<NySeConnection> {
    static constexpr const char* kName = "NySeConnection";
    static CRuntimeClass* description() { return &NySeConnection::classNySeConnection; }
    static NySeConnection make() {
        NySeConnection record;
        record.setStrConnection(_T("Server=a;Db=b"));
        record.setId(3);
        record.setRefCount(2);
        return record;
    }
    // Sorts `record` behind the sample under key 1.
    static void putBehind(NySeConnection& record) { record.setId(4); }
};

template <>
struct Sample<NySeSessionLock> {
    static constexpr const char* kName = "NySeSessionLock";
    static CRuntimeClass* description() { return &NySeSessionLock::classNySeSessionLock; }
    static NySeSessionLock make() {
        NySeSessionLock record;
        record.setSessionNumber(7);
        record.setLockState(0x18);
        return record;
    }
    // Sorts `record` behind the sample under key 1.
    static void putBehind(NySeSessionLock& record) { record.setSessionNumber(8); }
};

template <>
struct Sample<NySeLock> {
    static constexpr const char* kName = "NySeLock";
    static CRuntimeClass* description() { return &NySeLock::classNySeLock; }
    static NySeLock make() {
        NySeLock record;
        record.setStrLockName(_T("part/42"));
        return record;
    }
    // Sorts `record` behind the sample under key 1.
    static void putBehind(NySeLock& record) { record.setStrLockName(_T("Part/43")); }
};

template <>
struct Sample<NySeMessage> {
    static constexpr const char* kName = "NySeMessage";
    static CRuntimeClass* description() { return &NySeMessage::classNySeMessage; }
    static NySeMessage make() {
        NySeMessage record;
        record.setStrMessage(_T("saved"));
        return record;
    }
};

// What they need to know of a table class.
template <class Table>
struct TableSample;

template <>
struct TableSample<NySeUserPtrArray> {
    using Record = NySeUser;
    static constexpr const char* kName = "NySeUserPtrArray";
    static CRuntimeClass* description() { return &NySeUserPtrArray::classNySeUserPtrArray; }
};

template <>
struct TableSample<NySeConnectionArray> {
    using Record = NySeConnection;
    static constexpr const char* kName = "NySeConnectionArray";
    static CRuntimeClass* description() { return &NySeConnectionArray::classNySeConnectionArray; }
};

template <>
struct TableSample<NySeSessionLockPtrArray> {
    using Record = NySeSessionLock;
    static constexpr const char* kName = "NySeSessionLockPtrArray";
    static CRuntimeClass* description() {
        return &NySeSessionLockPtrArray::classNySeSessionLockPtrArray;
    }
};

template <>
struct TableSample<NySeLockArray> {
    using Record = NySeLock;
    static constexpr const char* kName = "NySeLockArray";
    static CRuntimeClass* description() { return &NySeLockArray::classNySeLockArray; }
};
