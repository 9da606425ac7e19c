// Filled records and tables, one pair per class, for the tests of what all classes share.
#pragma once

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

// What they need to know of a table class.
template <class Table>
struct TableSample;

template <>
struct TableSample<NySeUserPtrArray> {
    using Record = NySeUser;
    static constexpr const char* kName = "NySeUserPtrArray";
    static CRuntimeClass* description() { return &NySeUserPtrArray::classNySeUserPtrArray; }
};
