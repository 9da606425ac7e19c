// Archives that try to have a record taken for another, owned twice, or read where there is none.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

const std::string kUser =
    "FFFF DF07 0800 'NySeUser' FFFFFFFF FFFEFF00 FFFEFF00 FFFEFF00 FFFFFFFF 00000000 00000000 ";
const std::string kLock = "FFFF DF07 0800 'NySeLock' ";
const std::string kLocksHead = "FFFF DF07 0D00 'NySeLockArray' ";
const std::string kHolder = "FFFF DF07 0F00 'NySeSessionLock' 18000000 07000000 ";

// The head of a new object of that class.
Bytes headOf(const CRuntimeClass* description) {
    const std::string name = description->m_lpszClassName;
    Bytes head = fromHex("FFFF 0000 0000");
    head[2] = static_cast<unsigned char>(description->m_wSchema);
    head[3] = static_cast<unsigned char>(description->m_wSchema >> 8);
    head[4] = static_cast<unsigned char>(name.size());
    return head + Bytes(name.begin(), name.end());
}

constexpr int kFine = -1;
constexpr int kBadClass = CArchiveException::badClass;
constexpr int kBadIndex = CArchiveException::badIndex;

// Reads an object of the class; `expected` is the cause with which that ends, -1 for none.
template <class Record>
void expectCause(int expected, const Bytes& bytes) {
    Loading loading(bytes);
    EXPECT_EQ(expected, archiveCause([&] {
                  std::unique_ptr<CObject>(loading.ar.ReadObject(RUNTIME_CLASS(Record)));
              }))
        << toHex(bytes);
}
template <class Record>
void expectCause(int expected, const std::string& text) {
    expectCause<Record>(expected, fromHex(text));
}
void expectOfHolders(int expected, const std::string& elements) {
    expectCause<NySeLock>(expected, kLock + "FFFEFF00" + elements);
}

template <class Table, class Record>
void expectOnly() {
    const CRuntimeClass* const others[] = {RUNTIME_CLASS(CObArray),
                                           RUNTIME_CLASS(NySeConnection),
                                           RUNTIME_CLASS(NySeConnectionArray),
                                           RUNTIME_CLASS(NySeLock),
                                           RUNTIME_CLASS(NySeLockArray),
                                           RUNTIME_CLASS(NySeMessage),
                                           RUNTIME_CLASS(NySeUser),
                                           RUNTIME_CLASS(NySeUserPtrArray),
                                           RUNTIME_CLASS(NySeSessionLock),
                                           RUNTIME_CLASS(NySeSessionLockPtrArray)};
    const Bytes one = headOf(RUNTIME_CLASS(Table)) + fromHex("0100");
    const Bytes zeros(64, 0);
    for (const CRuntimeClass* other : others) {
        const bool isRecord = other == RUNTIME_CLASS(Record);
        const bool isTable = other == RUNTIME_CLASS(Table);
        expectCause<Record>(isRecord ? kFine : kBadClass, headOf(other) + zeros);
        expectCause<Table>(isTable ? kFine : kBadClass, headOf(other) + zeros);
        expectCause<Table>(isRecord ? kFine : kBadClass, one + headOf(other) + zeros);
    }
    expectCause<Table>(kBadClass, one + zeros);                    // a null
    expectCause<Table>(kBadClass, one + fromHex("0180") + zeros);  // the table's own class
}

TEST(HostileRecords, EachRecordAndTableIsAcceptedAsNoOther) {
    expectOnly<NySeUserPtrArray, NySeUser>();
    expectOnly<NySeConnectionArray, NySeConnection>();
    expectOnly<NySeSessionLockPtrArray, NySeSessionLock>();
    expectOnly<NySeLockArray, NySeLock>();
}

TEST(HostileRecords, ALockTakesOnlySessionLocksAsHolders) {
    expectOfHolders(kFine, "0100" + kHolder);
    expectOfHolders(kBadClass, "0100" + kUser);
    expectOfHolders(kBadClass, "0100 0000");
    expectOfHolders(kBadClass, "0100 0180 FFFEFF00 0000");
    expectOfHolders(kBadIndex, "0100 0200");
}

TEST(HostileRecords, NoTwoLocksShareAHolder) {
    expectCause<NySeLockArray>(kBadIndex, kLocksHead + "0200" + kLock + "FFFEFF00 0100" + kHolder +
                                              "0380 FFFEFF00 0100 0600");
}

// A clone of a lock lacks its holders.
TEST(HostileRecords, ATableTakesNoHeldLockTwice) {
    const std::string lock = kLocksHead + "0200" + kLock + "FFFEFF00";
    expectCause<NySeLockArray>(kBadIndex, lock + "0100" + kHolder + "0400");
    expectCause<NySeLockArray>(kFine, lock + "0000 0400");
}

}  // namespace
