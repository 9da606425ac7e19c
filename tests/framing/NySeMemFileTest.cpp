#include "NyServer/framing/NySeMemFile.h"

#include <gtest/gtest.h>

#include <memory>

#include "NyServer/records/NySeUser.h"
#include "tests/framing/FailingRecord.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

using NySe::ActionType;
using NySe::noAction;
using NySe::noSchema;
using NySe::schema2015;
using NySe::SchemaType;

constexpr ActionType kSome = NySe::actionLock;

class MemFile : public ::testing::Test {
  protected:
    NySeMemFile m_file;

    std::string bytes() { return toHex(contentsOf(m_file)); }
    static NySeUser user(LONG schema) {
        NySeUser one;
        one.setSchema(schema);
        return one;
    }
    void fill(const Bytes& content) {
        m_file.Write(content.data(), static_cast<UINT>(content.size()));
        m_file.SeekToBegin();
    }
};

constexpr char kUserHead[] = "FFFF DF07 0800 'NySeUser'";
constexpr char kUserStart[] = "FFFFFFFF FFFEFF00 FFFEFF00 FFFEFF00 FFFFFFFF";

TEST_F(MemFile, StartsEmptyWithoutAction) {
    EXPECT_EQ(noAction, m_file.getActionType());
    EXPECT_EQ(-1, m_file.getActionType());
    EXPECT_EQ(noSchema, m_file.getSchemaType());
    EXPECT_EQ(nullptr, m_file.getArchive());
    EXPECT_EQ(0u, m_file.getLength());
    EXPECT_EQ(nullptr, m_file.getBuffer());
}

TEST_F(MemFile, GrowsInStepsOf1024) {
    struct Peek : NySeMemFile {
        UINT step() const { return m_nGrowBytes; }
        size_t room() const { return m_nBufferSize; }
    } file;
    EXPECT_EQ(1024u, file.step());
    file.startWrite(schema2015);
    EXPECT_EQ(1024u, file.room());
}

TEST_F(MemFile, IsItsOwnBase) {
    EXPECT_EQ(static_cast<CMemFile*>(&m_file), &m_file.getMemFile());
}

TEST_F(MemFile, MessageWithActionStartsBehindEightBytes) {
    m_file.startWriteAction(kSome, schema2015);
    EXPECT_EQ(kSome, m_file.getActionType());
    EXPECT_EQ(schema2015, m_file.getSchemaType());
    EXPECT_EQ(8u, m_file.getLength());
    EXPECT_EQ(8u, m_file.GetPosition());
    ASSERT_NE(nullptr, m_file.getArchive());
    EXPECT_TRUE(m_file.getArchive()->IsStoring());
    EXPECT_EQ(0x800007DFu, m_file.getArchive()->GetObjectSchema());
}

TEST_F(MemFile, MessageWithoutActionStartsBehindFourBytesAndKeepsTheAction) {
    m_file.setActionType(kSome);
    m_file.startWrite(static_cast<SchemaType>(2014));
    EXPECT_EQ(kSome, m_file.getActionType());
    EXPECT_EQ(2014u, static_cast<unsigned>(m_file.getSchemaType()));
    EXPECT_EQ(4u, m_file.getLength());
    EXPECT_EQ(4u, m_file.GetPosition());
    EXPECT_EQ(0x800007DEu, m_file.getArchive()->GetObjectSchema());
}

TEST_F(MemFile, StoppingFillsInActionAndLength) {
    m_file.startWriteAction(kSome, schema2015);
    m_file.writeInteger(-2);
    m_file.stopWriting();
    EXPECT_EQ(hex("0B000000 04000000 FEFFFFFF"), bytes());
    EXPECT_EQ(0u, m_file.GetPosition());
    EXPECT_EQ(nullptr, m_file.getArchive());
}

TEST_F(MemFile, StoppingWithoutActionFillsInTheLength) {
    m_file.setActionType(kSome);
    m_file.startWrite(schema2015);
    m_file.writeString(_T("A"));
    m_file.stopWriting();
    EXPECT_EQ(hex("06000000 FFFEFF 01 4100"), bytes());
    EXPECT_EQ(0u, m_file.GetPosition());
}

TEST_F(MemFile, ActionAloneIsEightBytes) {
    m_file.writeAction(NySe::actionGetAllUser, schema2015);
    EXPECT_EQ(hex("46000000 00000000"), bytes());
    EXPECT_EQ(schema2015, m_file.getSchemaType());
    EXPECT_EQ(nullptr, m_file.getArchive());
}

TEST_F(MemFile, NoActionLeavesTheHeaderUnwrittenAndThePositionAtTheEnd) {
    m_file.startWriteAction(noAction, schema2015);
    m_file.writeInteger(7);
    m_file.stopWriting();
    EXPECT_EQ(12u, m_file.getLength());
    EXPECT_EQ(12u, m_file.GetPosition());
    EXPECT_EQ(hex("00000000 00000000 07000000"), bytes());
    EXPECT_EQ(nullptr, m_file.getArchive());
}

TEST_F(MemFile, OtherNegativeActionsFillTheirHeaderIn) {
    for (const LONG action : {-2, INT32_MIN}) {
        m_file.writeAction(static_cast<ActionType>(action), schema2015);
        LONG written = 0;
        EXPECT_EQ(0u, m_file.GetPosition());
        m_file.Read(&written, sizeof written);
        EXPECT_EQ(action, written);
    }
}

TEST_F(MemFile, EmptyMessageWithoutActionIsFourZeroBytes) {
    m_file.startWrite(schema2015);
    m_file.stopWriting();
    EXPECT_EQ(hex("00000000"), bytes());
}

TEST_F(MemFile, NewMessageReplacesTheOldOne) {
    m_file.startWrite(schema2015);
    m_file.stopWriting();
    m_file.startWriteAction(kSome, schema2015);
    EXPECT_EQ(8u, m_file.getLength());
    m_file.writeInteger(1);
    m_file.writeInteger(2);
    m_file.startWrite(schema2015);  // with an archive still open
    m_file.writeInteger(3);
    m_file.stopWriting();
    EXPECT_EQ(hex("04000000 03000000"), bytes());
}

TEST_F(MemFile, StoppingTwiceIsStoppingOnce) {
    m_file.startWriteAction(kSome, schema2015);
    m_file.stopWriting();
    m_file.setActionType(NySe::actionUnLock);
    m_file.Seek(5, CFile::begin);
    m_file.stopWriting();
    EXPECT_EQ(hex("0B000000 00000000"), bytes());
    EXPECT_EQ(5u, m_file.GetPosition());
}

TEST_F(MemFile, StoppingWithoutStartingDoesNothing) {
    m_file.stopWriting();
    m_file.stopReading();
    EXPECT_EQ(0u, m_file.getLength());
}

TEST_F(MemFile, SettersTouchNeitherBytesNorArchive) {
    m_file.startWriteAction(kSome, schema2015);
    CArchive* const archive = m_file.getArchive();
    m_file.setSchemaType(noSchema);
    m_file.setActionType(NySe::actionUnLock);
    EXPECT_EQ(archive, m_file.getArchive());
    EXPECT_EQ(0x800007DFu, archive->GetObjectSchema());
    EXPECT_EQ(8u, m_file.getLength());
    m_file.stopWriting();
    EXPECT_EQ(hex("0C000000 00000000"), bytes());
    m_file.setActionType(kSome);
    EXPECT_EQ(hex("0C000000 00000000"), bytes());
}

TEST_F(MemFile, LongMessagesComeOutWhole) {
    m_file.startWriteAction(kSome, schema2015);
    for (LONG i = 0; i < 5000; ++i) m_file.writeInteger(i);
    m_file.stopWriting();
    ASSERT_EQ(20008u, m_file.getLength());
    const Bytes content = contentsOf(m_file);
    EXPECT_EQ(hex("0B000000 204E0000 00000000"),
              toHex(Bytes(content.begin(), content.begin() + 12)));
    EXPECT_EQ(hex("87130000"), toHex(Bytes(content.end() - 4, content.end())));
}

TEST_F(MemFile, NothingIsWrittenWithoutAStoringArchive) {
    m_file.writeInteger(1);
    m_file.writeString(_T("A"));
    m_file.writeObject(static_cast<const CObject&>(user(2015)));
    m_file.writeObject(user(2015));
    EXPECT_EQ(0u, m_file.getLength());
    fill(fromHex("01020304"));
    m_file.startReading();
    m_file.writeInteger(1);
    m_file.writeString(_T("A"));
    m_file.writeObject(static_cast<const CObject&>(user(2015)));
    m_file.writeObject(user(2015));
    m_file.stopReading();
    EXPECT_EQ(hex("01020304"), bytes());
}

TEST_F(MemFile, ReadingStartsWhereTheFileStands) {
    fill(fromHex("01000000 02000000"));
    m_file.Seek(4, CFile::begin);
    m_file.startReading();
    ASSERT_NE(nullptr, m_file.getArchive());
    EXPECT_TRUE(m_file.getArchive()->IsLoading());
    LONG value = 0;
    *m_file.getArchive() >> value;
    EXPECT_EQ(2, value);
    m_file.stopReading();
    EXPECT_EQ(nullptr, m_file.getArchive());
}

TEST_F(MemFile, ReadingReplacesAnOpenArchive) {
    m_file.startWrite(schema2015);
    m_file.writeInteger(5);
    m_file.startReading();
    EXPECT_TRUE(m_file.getArchive()->IsLoading());
    EXPECT_EQ(hex("00000000 05000000"), bytes());
}

TEST_F(MemFile, ObjectsAreTaggedAndFollowTheMessagesSchema) {
    const NySeUser one = user(2015);
    const NySeUser other = user(1);
    m_file.startWrite(static_cast<SchemaType>(2014));
    m_file.writeObject(static_cast<const CObject&>(one));
    m_file.writeObject(static_cast<const CObject&>(other));
    m_file.stopWriting();
    EXPECT_EQ(hex(std::string("40000000") + kUserHead + kUserStart + "DF070000" + "0180" +
                  kUserStart + "01000000"),
              bytes());
}

TEST_F(MemFile, UsersFollowTheirOwnSchema) {
    m_file.startWriteAction(kSome, schema2015);
    m_file.writeObject(user(2014));
    m_file.writeObject(user(2015));
    m_file.stopWriting();
    EXPECT_EQ(hex(std::string("0B000000 50000000") + kUserHead + kUserStart + "DE070000" +
                  kUserHead + kUserStart + "DF070000 00000000"),
              bytes());
}

TEST_F(MemFile, UsersShareNoTagsWithTheRestOfTheMessage) {
    const NySeUser one = user(2015);
    m_file.startWrite(schema2015);
    m_file.writeObject(static_cast<const CObject&>(one));
    m_file.writeObject(one);
    m_file.writeObject(static_cast<const CObject&>(one));
    m_file.stopWriting();
    const std::string full = std::string(kUserHead) + kUserStart + "DF070000 00000000";
    EXPECT_EQ(hex("56000000" + full + full + "0200"), bytes());
}

TEST_F(MemFile, UserAndObjectMayFollowInOneMessage) {
    m_file.startWriteAction(kSome, schema2015);
    m_file.writeObject(user(2015));
    m_file.writeInteger(9);
    m_file.stopWriting();
    const Bytes content = contentsOf(m_file);
    EXPECT_EQ(hex("09000000"), toHex(Bytes(content.end() - 4, content.end())));
}

TEST_F(MemFile, ArchiveErrorsLeaveATruncatedObject) {
    for (const Failure failure : {Failure::archive, Failure::file}) {
        m_file.startWrite(schema2015);
        m_file.writeObject(FailingRecord(failure));
        m_file.writeInteger(1);
        m_file.stopWriting();
        EXPECT_EQ(hex("1B000000 FFFF 0100 0D00 'FailingRecord' 07000000 01000000"), bytes());
    }
}

TEST_F(MemFile, ArchiveErrorsLeaveATruncatedUser) {
    for (const Failure failure : {Failure::archive, Failure::file}) {
        m_file.startWrite(schema2015);
        m_file.writeObject(FailingUser(failure));
        m_file.writeInteger(1);
        m_file.stopWriting();
        EXPECT_EQ(hex(std::string("16000000") + kUserHead + "07000000 01000000"), bytes());
    }
}

TEST_F(MemFile, OtherErrorsPass) {
    m_file.startWrite(schema2015);
    EXPECT_TRUE(
        throwsA<CMemoryException>([&] { m_file.writeObject(FailingRecord(Failure::memory)); }));
    EXPECT_TRUE(
        throwsA<CMemoryException>([&] { m_file.writeObject(FailingUser(Failure::memory)); }));
    EXPECT_TRUE(throwsA<CNotSupportedException>([&] { m_file.writeObject(m_file); }));
}

TEST_F(MemFile, TakesTheContentOfAnotherFile) {
    CMemFile source;
    source.Write("abc", 3);
    m_file.startWriteAction(kSome, schema2015);
    EXPECT_TRUE(m_file.writeMemfile(source));
    m_file.writeInteger(1);
    m_file.stopWriting();
    EXPECT_EQ(hex("0B000000 07000000 'abc' 01000000"), bytes());
    EXPECT_EQ(0u, source.GetLength());
    EXPECT_EQ(nullptr, source.Detach());
}

TEST_F(MemFile, TakesTheContentAtOnceAndNotThroughItsArchive) {
    CMemFile source;
    source.Write("abc", 3);
    m_file.startWriteAction(kSome, schema2015);
    m_file.writeMemfile(source);
    EXPECT_EQ(11u, m_file.getLength());
    EXPECT_EQ(11u, m_file.GetPosition());
    m_file.stopWriting();
    source.Write("de", 2);
    m_file.Seek(8, CFile::begin);
    EXPECT_TRUE(m_file.writeMemfile(source));  // with no archive open
    EXPECT_EQ(hex("0B000000 03000000 'dec'"), bytes());
}

TEST_F(MemFile, TakesNothingFromAnEmptyFile) {
    CMemFile source;
    m_file.startWriteAction(kSome, schema2015);
    EXPECT_TRUE(m_file.writeMemfile(source));
    m_file.stopWriting();
    EXPECT_EQ(hex("0B000000 00000000"), bytes());
}

TEST_F(MemFile, BufferIsTheMessageAndStaysTheFiles) {
    m_file.writeAction(kSome, schema2015);
    const BYTE* buffer = m_file.getBuffer();
    EXPECT_EQ(hex("0B000000 00000000"), toHex(Bytes(buffer, buffer + 8)));
    EXPECT_EQ(8u, m_file.getLength());
    EXPECT_EQ(hex("0B000000 00000000"), bytes());
    EXPECT_EQ(buffer, m_file.getBuffer());
}

TEST_F(MemFile, CannotGrowOnceTheBufferWasHandedOut) {
    m_file.writeAction(kSome, schema2015);
    m_file.getBuffer();
    m_file.Seek(8, CFile::begin);
    EXPECT_TRUE(throwsA<CMemoryException>([&] { m_file.Write("a", 1); }));
    EXPECT_EQ(8u, m_file.getLength());
    m_file.startWrite(schema2015);
    EXPECT_TRUE(throwsA<CMemoryException>([&] {
        for (LONG i = 0; i < 2; ++i) m_file.writeInteger(i);
    }));
}

TEST_F(MemFile, MayLoseItsBytesWhileItIsRead) {
    {
        NySeMemFile file;
        file.startWrite(NySe::schema2015);
        file.writeInteger(1);
        file.writeInteger(2);
        file.stopWriting();
        file.startReading();
        LONG length = 0;
        *file.getArchive() >> length;
        EXPECT_EQ(8, length);
        file.SetLength(0);
        file.stopReading();
        EXPECT_EQ(nullptr, file.getArchive());
        file.startReading();
    }
    SUCCEED() << "neither the end of reading nor the destructor threw";
}

}  // namespace
