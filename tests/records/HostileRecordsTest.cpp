// Archives that try to have a record taken for another, owned twice, or read where there is none.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Golden.h"
#include "tests/support/Thrown.h"

namespace {

const std::string kUserFields = "FFFFFFFF FFFEFF00 FFFEFF00 FFFEFF00 FFFFFFFF 00000000 00000000 ";
const std::string kUser = "FFFF DF07 0800 'NySeUser' " + kUserFields;
const std::string kUsersHead = "FFFF DF07 1000 'NySeUserPtrArray' ";
const std::string kLock = "FFFF DF07 0800 'NySeLock' ";
const std::string kLocksHead = "FFFF DF07 0D00 'NySeLockArray' ";
const std::string kHolder = "FFFF DF07 0F00 'NySeSessionLock' 18000000 07000000 ";

// The head of a new object of that class.
Bytes headOf(const CRuntimeClass* description) {
    const std::string name = description->m_lpszClassName;
    Bytes head = fromHex("FFFF DF07 0000");
    head[4] = static_cast<unsigned char>(name.size());
    return head + Bytes(name.begin(), name.end());
}

// The cause with which reading an object of the class ends, -1 for none.
template <class Record>
int readObject(const Bytes& bytes) {
    Loading loading(bytes);
    return archiveCause([&] {
        const std::unique_ptr<CObject> object(loading.ar.ReadObject(RUNTIME_CLASS(Record)));
    });
}

template <class Record>
int readObject(const std::string& text) {
    return readObject<Record>(fromHex(text));
}

TEST(HostileRecords, EveryByteOfTheHeadHasItsAnswerWhenItIsInverted) {
    const Bytes whole = golden("user-plain-object").bytes;
    using E = CArchiveException;
    const int kFine = -1;
    const int answers[] = {E::badIndex, E::badIndex,  // the tag
                           kFine,       kFine,        // the schema: any is read
                           E::badIndex, E::badIndex,  // the length of the name
                           E::badClass, E::badClass, E::badClass, E::badClass,
                           E::badClass, E::badClass, E::badClass, E::badClass};
    for (size_t i = 0; i < std::size(answers); ++i) {
        Bytes bytes = whole;
        bytes[i] = static_cast<unsigned char>(~bytes[i]);
        EXPECT_EQ(answers[i], readObject<NySeUser>(bytes)) << "byte " << i;
    }
}

TEST(HostileRecords, ARecordIsNotTakenForAnother) {
    EXPECT_EQ(CArchiveException::badClass, readObject<NySeUserPtrArray>(kUser));
    EXPECT_EQ(CArchiveException::badClass, readObject<NySeUser>(kUsersHead + "0000"));
    EXPECT_EQ(CArchiveException::badClass, readObject<NySeUser>("FFFF 0000 0800 'CObArray' 0000"));
}

TEST(HostileRecords, ATableTakesOnlyItsOwnRecords) {
    EXPECT_EQ(-1, readObject<NySeUserPtrArray>(kUsersHead + "0100" + kUser));
    EXPECT_EQ(CArchiveException::badClass,
              readObject<NySeUserPtrArray>(kUsersHead + "0200" + kUser + "0000"));
    EXPECT_EQ(CArchiveException::badClass,
              readObject<NySeUserPtrArray>(kUsersHead + "0100 0180 0000"));
    EXPECT_EQ(CArchiveException::badClass,
              readObject<NySeUserPtrArray>(kUsersHead + "0100 FFFF 0000 0800 'CObArray' 0000"));
}

template <class Table, class Record>
void expectOnly() {
    const CRuntimeClass* const others[] = {RUNTIME_CLASS(NySeConnection),
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
        const int expected = other == RUNTIME_CLASS(Record) ? -1 : CArchiveException::badClass;
        EXPECT_EQ(expected, readObject<Table>(one + headOf(other) + zeros))
            << other->m_lpszClassName;
    }
    EXPECT_EQ(CArchiveException::badClass, readObject<Table>(one + zeros));
}

TEST(HostileRecords, EachTableTakesNoOthersRecordsNorTables) {
    expectOnly<NySeUserPtrArray, NySeUser>();
    expectOnly<NySeConnectionArray, NySeConnection>();
    expectOnly<NySeSessionLockPtrArray, NySeSessionLock>();
    expectOnly<NySeLockArray, NySeLock>();
}

TEST(HostileRecords, ALockTakesOnlySessionLocksAsHolders) {
    EXPECT_EQ(-1, readObject<NySeLock>(kLock + "FFFEFF00 0100" + kHolder));
    EXPECT_EQ(CArchiveException::badClass, readObject<NySeLock>(kLock + "FFFEFF00 0100" + kUser));
    EXPECT_EQ(CArchiveException::badClass, readObject<NySeLock>(kLock + "FFFEFF00 0100 0000"));
    EXPECT_EQ(CArchiveException::badClass,
              readObject<NySeLock>(kLock + "FFFEFF00 0100 0180 FFFEFF00 0000"));
    EXPECT_EQ(CArchiveException::badIndex, readObject<NySeLock>(kLock + "FFFEFF00 0100 0200"));
}

TEST(HostileRecords, NoTwoLocksShareAHolder) {
    EXPECT_EQ(CArchiveException::badIndex,
              readObject<NySeLockArray>(kLocksHead + "0200" + kLock + "FFFEFF00 0100" + kHolder +
                                        "0380 FFFEFF00 0100 0600"));
}

// A clone of a lock lacks its holders.
TEST(HostileRecords, ATableTakesNoHeldLockTwice) {
    EXPECT_EQ(CArchiveException::badIndex,
              readObject<NySeLockArray>(kLocksHead + "0200" + kLock + "FFFEFF00 0100" + kHolder +
                                        "0400"));
    EXPECT_EQ(-1, readObject<NySeLockArray>(kLocksHead + "0200" + kLock + "FFFEFF00 0000 0400"));
}

TEST(HostileRecords, ATableTakesNothingTwiceButItsOwnRecords) {
    EXPECT_EQ(-1, readObject<NySeUserPtrArray>(kUsersHead + "0200" + kUser + "0400"));
    for (const char* other : {"0100", "0200", "0300", "0500"}) {
        EXPECT_EQ(CArchiveException::badIndex,
                  readObject<NySeUserPtrArray>(kUsersHead + "0200" + kUser + other))
            << other;
    }
    EXPECT_EQ(CArchiveException::badIndex, readObject<NySeUserPtrArray>(kUsersHead + "0100 0200"));
    EXPECT_EQ(CArchiveException::badIndex, readObject<NySeUserPtrArray>(kUsersHead + "0100 0100"));
}

TEST(HostileRecords, ATableTakesNoRecordOfAnotherTable) {
    Loading loading(fromHex(kUsersHead + "0100" + kUser + "0180 0100 0400"));
    const std::unique_ptr<CObject> first(loading.ar.ReadObject(RUNTIME_CLASS(NySeUserPtrArray)));
    EXPECT_EQ(CArchiveException::badIndex,
              archiveCause([&] { loading.ar.ReadObject(RUNTIME_CLASS(NySeUserPtrArray)); }));
}

TEST(HostileRecords, CountsBeyondTheDataEndTooEarly) {
    for (const char* count : {"0200", "FEFF", "FFFF 02000000", "FFFF FFFFFFFF"}) {
        EXPECT_EQ(CArchiveException::endOfFile,
                  readObject<NySeUserPtrArray>(kUsersHead + count + kUser))
            << count;
    }
}

TEST(HostileRecords, LongFormsOfCountAndTagsAreRead) {
    EXPECT_EQ(-1, readObject<NySeUserPtrArray>(kUsersHead + "FFFF 02000000" + kUser +
                                               "FF7F 03000080" + kUserFields));
}

}  // namespace
