// Archives that try to have a record taken for another, owned twice, or read where there is none.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Golden.h"
#include "tests/support/Thrown.h"

namespace {

const std::string kUserFields = "FFFFFFFF FFFEFF00 FFFEFF00 FFFEFF00 FFFFFFFF 00000000 00000000 ";
const std::string kUser = "FFFF DF07 0800 'NySeUser' " + kUserFields;
const std::string kUsersHead = "FFFF DF07 1000 'NySeUserPtrArray' ";

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

TEST(HostileRecords, ATableTakesNoRecordTwice) {
    EXPECT_EQ(CArchiveException::badIndex,
              readObject<NySeUserPtrArray>(kUsersHead + "0200" + kUser + "0400"));
    EXPECT_EQ(CArchiveException::badIndex, readObject<NySeUserPtrArray>(kUsersHead + "0100 0200"));
    EXPECT_EQ(CArchiveException::badIndex, readObject<NySeUserPtrArray>(kUsersHead + "0100 0100"));
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
