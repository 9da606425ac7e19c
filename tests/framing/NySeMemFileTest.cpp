#include "NyServer/framing/NySeMemFile.h"

#include <gtest/gtest.h>

#include <memory>

#include "NyServer/records/NySeUser.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

enum class Failure { archive, file, memory };

// Writes one integer, 7, and throws.
static void fail(CArchive& ar, Failure failure) {
    ar << 7;
    if (failure == Failure::archive) AfxThrowArchiveException(CArchiveException::genericException);
    if (failure == Failure::file) AfxThrowFileException(CFileException::diskFull);
    AfxThrowMemoryException();
}

// A record and a user that cannot be archived.
class FailingRecord : public CObject {
    DECLARE_SERIAL(FailingRecord)
  public:
    explicit FailingRecord(Failure failure = Failure::archive) : m_failure(failure) {}
    void Serialize(CArchive& ar) override { fail(ar, m_failure); }

  private:
    Failure m_failure;
};
IMPLEMENT_SERIAL(FailingRecord, CObject, 1)

class FailingUser : public NySeUser {
  public:
    explicit FailingUser(Failure failure) : m_failure(failure) {}
    void Serialize(CArchive& ar) override { fail(ar, m_failure); }

  private:
    Failure m_failure;
};

namespace {

using NySe::ActionType;
using NySe::noAction;
using NySe::noSchema;
using NySe::schema2015;
using NySe::SchemaType;

constexpr ActionType kSome = NySe::actionLock;

constexpr char kUserHead[] = "FFFF DF07 0800 'NySeUser'";
constexpr char kUserStart[] = "FFFFFFFF FFFEFF00 FFFEFF00 FFFEFF00 FFFFFFFF";

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
    // As any record, and not as a user with a schema of its own.
    void writeAnyObject(const CObject& object) { m_file.writeObject(object); }
    void expectStarted(ActionType action, unsigned schema, ULONGLONG length) {
        EXPECT_EQ(action, m_file.getActionType());
        EXPECT_EQ(schema, static_cast<unsigned>(m_file.getSchemaType()));
        EXPECT_EQ(length, m_file.getLength());
        EXPECT_EQ(length, m_file.GetPosition());
        ASSERT_NE(nullptr, m_file.getArchive());
        EXPECT_TRUE(m_file.getArchive()->IsStoring());
        EXPECT_EQ(0x80000000u | schema, m_file.getArchive()->GetObjectSchema());
    }
    // Ends the message, and expects these bytes and the position.
    void expectWritten(const std::string& content, ULONGLONG position = 0) {
        m_file.stopWriting();
        EXPECT_EQ(hex(content), bytes());
        EXPECT_EQ(position, m_file.GetPosition());
        EXPECT_EQ(nullptr, m_file.getArchive());
    }
};

TEST_F(MemFile, StartsEmptyWithoutAction) {
    EXPECT_EQ(noAction, m_file.getActionType());
    EXPECT_EQ(-1, m_file.getActionType());
    EXPECT_EQ(noSchema, m_file.getSchemaType());
    EXPECT_EQ(nullptr, m_file.getArchive());
    EXPECT_EQ(0u, m_file.getLength());
    EXPECT_EQ(nullptr, m_file.getBuffer());
    EXPECT_EQ(static_cast<CMemFile*>(&m_file), &m_file.getMemFile());
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

TEST_F(MemFile, MessageWithActionStartsAfterEightBytes) {
    m_file.startWriteAction(kSome, schema2015);
    expectStarted(kSome, 2015, 8);
    m_file.writeInteger(-2);
    expectWritten("0B000000 04000000 FEFFFFFF");
}

TEST_F(MemFile, MessageWithoutActionStartsAfterFourBytesAndKeepsTheAction) {
    m_file.setActionType(kSome);
    m_file.startWrite(static_cast<SchemaType>(2014));
    expectStarted(kSome, 2014, 4);
    m_file.writeString(_T("A"));
    expectWritten("06000000 FFFEFF 01 4100");
    m_file.startWrite(schema2015);
    expectWritten("00000000");
}

TEST_F(MemFile, ActionAloneIsEightBytes) {
    m_file.writeAction(NySe::actionGetAllUser, schema2015);
    EXPECT_EQ(schema2015, m_file.getSchemaType());
    expectWritten("46000000 00000000");
}

TEST_F(MemFile, NoActionLeavesTheHeaderUnwrittenAndThePositionAtTheEnd) {
    m_file.startWriteAction(noAction, schema2015);
    m_file.writeInteger(7);
    expectWritten("00000000 00000000 07000000", 12);
}

TEST_F(MemFile, OtherNegativeActionsFillInTheirHeader) {
    m_file.writeAction(static_cast<ActionType>(-2), schema2015);
    expectWritten("FEFFFFFF 00000000");
    m_file.writeAction(static_cast<ActionType>(INT32_MIN), schema2015);
    expectWritten("00000080 00000000");
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
    expectWritten("04000000 03000000");
}

TEST_F(MemFile, StoppingTwiceIsStoppingOnceAndWithoutStartingNothing) {
    m_file.stopReading();
    expectWritten("");
    m_file.startWriteAction(kSome, schema2015);
    m_file.stopWriting();
    m_file.setActionType(NySe::actionUnLock);
    m_file.Seek(5, CFile::begin);
    expectWritten("0B000000 00000000", 5);
}

TEST_F(MemFile, SettersTouchNeitherBytesNorArchive) {
    m_file.startWriteAction(kSome, schema2015);
    CArchive* const archive = m_file.getArchive();
    m_file.setSchemaType(noSchema);
    m_file.setActionType(NySe::actionUnLock);
    EXPECT_EQ(archive, m_file.getArchive());
    EXPECT_EQ(0x800007DFu, archive->GetObjectSchema());
    EXPECT_EQ(8u, m_file.getLength());
    expectWritten("0C000000 00000000");
    m_file.setActionType(kSome);
    EXPECT_EQ(hex("0C000000 00000000"), bytes());
}

TEST_F(MemFile, LongMessagesAreWrittenWhole) {
    m_file.startWriteAction(kSome, schema2015);
    std::string content = "0B000000 204E0000";
    for (LONG i = 0; i < 5000; ++i) {
        m_file.writeInteger(i);
        content += toHex({static_cast<BYTE>(i), static_cast<BYTE>(i >> 8), 0, 0});
    }
    expectWritten(content);
}

TEST_F(MemFile, NothingIsWrittenWithoutAStoringArchive) {
    const auto writeAll = [this] {
        m_file.writeInteger(1);
        m_file.writeString(_T("A"));
        writeAnyObject(user(2015));
        m_file.writeObject(user(2015));
    };
    writeAll();
    EXPECT_EQ(0u, m_file.getLength());
    fill(fromHex("01020304"));
    m_file.startReading();
    writeAll();
    m_file.stopReading();
    EXPECT_EQ(hex("01020304"), bytes());
}

TEST_F(MemFile, ReadingStartsAtTheFilesPosition) {
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
    writeAnyObject(one);
    writeAnyObject(other);
    expectWritten(std::string("40000000") + kUserHead + kUserStart + "DF070000" + "0180" +
                  kUserStart + "01000000");
}

TEST_F(MemFile, UsersFollowTheirOwnSchema) {
    m_file.startWriteAction(kSome, schema2015);
    m_file.writeObject(user(2014));
    m_file.writeObject(user(2015));
    m_file.writeInteger(9);
    expectWritten(std::string("0B000000 54000000") + kUserHead + kUserStart + "DE070000" +
                  kUserHead + kUserStart + "DF070000 00000000 09000000");
}

TEST_F(MemFile, UsersShareNoTagsWithTheRestOfTheMessage) {
    const NySeUser one = user(2015);
    m_file.startWrite(schema2015);
    writeAnyObject(one);
    m_file.writeObject(one);
    writeAnyObject(one);
    const std::string full = std::string(kUserHead) + kUserStart + "DF070000 00000000";
    expectWritten("56000000" + full + full + "0200");
}

TEST_F(MemFile, ArchiveErrorsLeaveATruncatedObjectOrUser) {
    for (const Failure failure : {Failure::archive, Failure::file}) {
        m_file.startWrite(schema2015);
        m_file.writeObject(FailingRecord(failure));
        m_file.writeInteger(1);
        m_file.writeObject(FailingUser(failure));
        m_file.writeInteger(2);
        expectWritten(std::string("31000000 FFFF 0100 0D00 'FailingRecord' 07000000 01000000") +
                      kUserHead + "07000000 02000000");
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
    m_file.startWriteAction(kSome, schema2015);
    EXPECT_TRUE(m_file.writeMemfile(source));  // of an empty one nothing
    source.Write("abc", 3);
    EXPECT_TRUE(m_file.writeMemfile(source));
    // At once and not through the archive.
    EXPECT_EQ(11u, m_file.getLength());
    EXPECT_EQ(11u, m_file.GetPosition());
    EXPECT_EQ(0u, source.GetLength());
    EXPECT_EQ(nullptr, source.Detach());
    m_file.writeInteger(1);
    expectWritten("0B000000 07000000 'abc' 01000000");
    source.Write("de", 2);
    m_file.Seek(8, CFile::begin);
    EXPECT_TRUE(m_file.writeMemfile(source));  // with no archive open
    EXPECT_EQ(hex("0B000000 07000000 'dec' 01000000"), bytes());
}

TEST_F(MemFile, BufferIsTheMessageAndStaysTheFiles) {
    m_file.writeAction(kSome, schema2015);
    const BYTE* buffer = m_file.getBuffer();
    EXPECT_EQ(hex("0B000000 00000000"), toHex(Bytes(buffer, buffer + 8)));
    EXPECT_EQ(8u, m_file.getLength());
    EXPECT_EQ(hex("0B000000 00000000"), bytes());
    EXPECT_EQ(buffer, m_file.getBuffer());
    // It cannot grow any more.
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
