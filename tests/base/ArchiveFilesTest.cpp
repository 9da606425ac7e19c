// An archive over a file gives the same bytes and positions whatever the file and the buffer are.
#include <gtest/gtest.h>

#include <afxtempl.h>

#include <algorithm>
#include <tuple>

#include "tests/base/StreamFile.h"
#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

// One of everything, so that values, strings, blocks and objects meet every edge of a buffer.
void writeAll(CArchive& ar) {
    Foo foo(7);
    const Bytes block(1000, 0xAB);
    for (int i = 0; i < 40; ++i) {
        ar << static_cast<BYTE>(i) << static_cast<WORD>(i) << i << 0.5 * i << &foo;
        ar << CString(WCHAR('a' + i % 26), i * 7);
        ar.Write(block.data(), i * 25);
    }
}

void readAll(CArchive& ar) {
    Foo* first = nullptr;
    for (int i = 0; i < 40; ++i) {
        BYTE byte;
        WORD word;
        int number;
        double real;
        Foo* foo = nullptr;
        CString text;
        ar >> byte >> word >> number >> real >> foo >> text;
        Bytes block(static_cast<size_t>(i) * 25);
        EXPECT_EQ(ar.Read(block.data(), static_cast<UINT>(block.size())), block.size());
        EXPECT_TRUE(byte == i && word == i && number == i && real == 0.5 * i);
        EXPECT_EQ(text, CString(WCHAR('a' + i % 26), i * 7));
        EXPECT_EQ(block, Bytes(block.size(), 0xAB));
        if (first == nullptr) first = foo;
        EXPECT_EQ(foo, first);
    }
    EXPECT_EQ(first->m_value, 7);
    delete first;
}

class EveryBuffer : public testing::TestWithParam<std::tuple<int, UINT>> {
  protected:
    int buffer() const { return std::get<0>(GetParam()); }
    UINT step() const { return std::get<1>(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(ArchiveFiles, EveryBuffer,
                         testing::Combine(testing::Values(-5, 0, 1, 127, 128, 129, 200, 4096,
                                                          1000000),
                                          testing::Values(1u, 2u, 3u, 7u, 4096u, UINT(-1))));

TEST_P(EveryBuffer, StoresTheSameBytes) {
    StreamFile file(step());
    CArchive ar(&file, CArchive::store, buffer());
    writeAll(ar);
    ar.Close();
    EXPECT_TRUE(file.m_bytes == stored(writeAll));
    EXPECT_EQ(file.GetPosition(), file.m_bytes.size());
}

TEST_P(EveryBuffer, LoadsTheSameBytes) {
    StreamFile file(step(), stored(writeAll));
    CArchive ar(&file, CArchive::load, buffer());
    readAll(ar);
    EXPECT_EQ(ar.BytesLeft(), 0u);
    BYTE byte = 9;
    EXPECT_EQ(archiveCause([&] { ar >> byte; }), CArchiveException::endOfFile);
}

TEST_P(EveryBuffer, MayBelongToTheCaller) {
    Bytes room(static_cast<size_t>(std::max(buffer(), 0)) + 1);
    StreamFile file(step());
    CArchive out(&file, CArchive::store, buffer(), room.data());
    writeAll(out);
    out.Close();
    file.Seek(0, CFile::begin);
    CArchive in(&file, CArchive::load, buffer(), room.data());
    readAll(in);
    EXPECT_EQ(room.back(), 0);
}

// The file's position after every number of bytes extracted, flushed in between.
TEST_P(EveryBuffer, ReturnsUnreadBytesToTheFileOnFlush) {
    Bytes bytes(300);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<BYTE>(i);
    StreamFile file(step(), bytes);
    CArchive ar(&file, CArchive::load, buffer());
    for (size_t i = 0; i < bytes.size(); ++i) {
        BYTE byte;
        ar >> byte;
        ASSERT_EQ(byte, bytes[i]);
        if (i % 3 != 0) continue;
        ar.Flush();
        ASSERT_EQ(file.GetPosition(), i + 1);
    }
}

// The same story over both kinds of file.
class BothFiles : public testing::TestWithParam<bool> {
  protected:
    CFile& file() { return GetParam() ? static_cast<CFile&>(m_memory) : m_stream; }
    std::string bytes() { return toHex(GetParam() ? contentsOf(m_memory) : m_stream.m_bytes); }
    void put(const char* text) {
        const Bytes bytes = fromHex(text);
        file().Write(bytes.data(), static_cast<UINT>(bytes.size()));
    }

  private:
    CMemFile m_memory;
    StreamFile m_stream;
};

INSTANTIATE_TEST_SUITE_P(ArchiveFiles, BothFiles, testing::Bool(),
                         [](const auto& each) { return each.param ? "Memory" : "Stream"; });

// f, c and a flush, close and abort an archive; a digit is written as a byte.
void play(CArchive& ar, const std::string& script) {
    for (const char step : script) {
        if (step == 'f') {
            ar.Flush();
        } else if (step == 'c') {
            ar.Close();
        } else if (step == 'a') {
            ar.Abort();
        } else {
            ar << static_cast<BYTE>(step - '0');
        }
    }
}

struct Ending {
    const char* script;
    UINT flags;         // besides those for storing
    const char* soFar;  // what the file holds then, and when the archive is destroyed
    const char* inTheEnd;
};

constexpr Ending kEndings[] = {{"12", 0, "", "01 02"},
                               {"12f3", 0, "01 02", "01 02 03"},
                               {"1f2a", 0, "01", "01"},
                               {"1f2", CArchive::bNoFlushOnDelete, "01", "01"},
                               {"1c", CArchive::bNoFlushOnDelete, "01", "01"},
                               {"1cca", 0, "01", "01"},
                               {"1afc", 0, "", ""}};

TEST_P(BothFiles, HoldWhatIsFlushedByThemselvesOrByTheEnd) {
    for (const Ending& ending : kEndings) {
        SCOPED_TRACE(ending.script);
        file().SetLength(0);
        file().SeekToBegin();
        {
            CArchive ar(&file(), CArchive::store | ending.flags);
            EXPECT_TRUE(ar.IsStoring());
            play(ar, ending.script);
            EXPECT_EQ(bytes(), ending.soFar);
            EXPECT_EQ(file().GetPosition(), file().GetLength());
        }
        EXPECT_EQ(bytes(), ending.inTheEnd);
    }
}

TEST_P(BothFiles, ArchivesBeginAtTheFilesPosition) {
    put("11 22 33 44");
    file().Seek(1, CFile::begin);
    {
        CArchive ar(&file(), CArchive::store);
        ar << WORD{0xBBAA};
    }
    EXPECT_EQ(bytes(), "11 AA BB 44");
    EXPECT_EQ(file().GetPosition(), 3u);
    CArchive in(&file(), CArchive::load);
    BYTE byte = 0;
    in >> byte;
    EXPECT_EQ(byte, 0x44);
}

TEST_P(BothFiles, MayBeWrittenWhileTheArchiveHoldsNothing) {
    CArchive ar(&file(), CArchive::store);
    put("11");
    ar << BYTE{0x22};
    ar.Flush();
    put("33");
    // Long enough to move the file's block.
    const Bytes block(5000, 0x44);
    file().Write(block.data(), 5000);
    ar << BYTE{0x55};
    ar.Close();
    EXPECT_EQ(bytes(), hex("11 22 33") + " " + toHex(block) + " 55");
}

TEST_P(BothFiles, MayBeWrittenWhileALoadingArchiveHoldsNothing) {
    put("11 22");
    file().Seek(0, CFile::begin);
    CArchive ar(&file(), CArchive::load);
    BYTE byte = 0;
    ar >> byte;
    ar >> byte;
    put("33");
    file().Seek(-1, CFile::current);
    ar >> byte;
    EXPECT_EQ(byte, 0x33);
    ar.Flush();
    file().Seek(0, CFile::begin);
    ar >> byte;
    EXPECT_EQ(byte, 0x11);
}

TEST_P(BothFiles, TakeOneArchiveAfterAnother) {
    for (const BYTE value : {BYTE{1}, BYTE{2}}) {
        CArchive ar(&file(), CArchive::store);
        ar << value;
        ar.Close();
    }
    file().Seek(0, CFile::begin);
    for (const BYTE value : {BYTE{1}, BYTE{2}}) {
        CArchive ar(&file(), CArchive::load);
        BYTE byte = 0;
        ar >> byte;
        EXPECT_EQ(byte, value);
        ar.Close();
        EXPECT_EQ(file().GetPosition(), ULONGLONG{value});
    }
}

TEST_P(BothFiles, AreReturnedByTheirArchive) {
    file().SetFilePath(_T("queue.bin"));
    CArchive out(&file(), CArchive::store);
    EXPECT_EQ(out.GetFile(), &file());
    EXPECT_EQ(out.m_strFileName, _T("queue.bin"));
    EXPECT_TRUE(out.IsStoring());
    EXPECT_FALSE(out.IsLoading());
    CArchive in(&file(), CArchive::load);
    EXPECT_TRUE(in.IsLoading());
    EXPECT_FALSE(in.IsStoring());
    out.Close();
    EXPECT_EQ(out.GetFile(), nullptr);
}

TEST_P(BothFiles, HaveNothingLeftBeyondTheirEnd) {
    put("01 02");
    file().Seek(9, CFile::begin);
    CArchive ar(&file(), CArchive::load);
    EXPECT_EQ(ar.BytesLeft(), 0u);
    BYTE byte = 9;
    EXPECT_EQ(ar.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 9);
}

// The bytes that are too few for one value are still there for smaller ones.
TEST_P(BothFiles, KeepTheBytesBeforeTheirEnd) {
    put("01 02 03");
    file().Seek(0, CFile::begin);
    CArchive ar(&file(), CArchive::load);
    BYTE byte = 0;
    int number = 9;
    WORD word = 0;
    ar >> byte;
    EXPECT_EQ(archiveCause([&] { ar >> number; }), CArchiveException::endOfFile);
    EXPECT_EQ(number, 9);
    ar >> word;
    EXPECT_EQ(word, 0x0302);
}

TEST(ArchiveFiles, ThatCannotGrowRefuseValuesWhole) {
    BYTE bytes[3] = {9, 9, 9};
    CMemFile file(bytes, 3);
    CArchive ar(&file, CArchive::store);
    ar << WORD{0x0201};
    EXPECT_TRUE(throwsA<CMemoryException>([&] { ar << WORD{0x0403}; }));
    ar << BYTE{3};
    EXPECT_TRUE(throwsA<CMemoryException>([&] { ar.Write("x", 1); }));
    ar.Close();
    EXPECT_EQ(toHex(contentsOf(file)), "01 02 03");
}

TEST(ArchiveFiles, OwnExceptionsPassThroughCloseAndTheDestructor) {
    for (const char* script : {"1c", "1"}) {
        StreamFile file;
        file.m_failsIn = 0;
        EXPECT_EQ(fileCause([&] {
                      CArchive ar(&file, CArchive::store);
                      play(ar, script);
                  }),
                  CFileException::diskFull);
    }
}

TEST(ArchiveFiles, ThatFailWhileReadingLoseNothing) {
    StreamFile file(2, fromHex("01 02 03 04 05 06"));
    CArchive ar(&file, CArchive::load);
    BYTE byte = 0;
    int number = 9;
    ar >> byte;
    file.m_failsIn = 1;
    EXPECT_EQ(fileCause([&] { ar >> number; }), CFileException::hardIO);
    EXPECT_EQ(number, 9);
    ar >> number;
    EXPECT_EQ(number, 0x05040302);
}

TEST(ArchiveFiles, ThatEndEarlyEndTheValue) {
    for (const char* bytes : {"FF FE FF 03 61 00 62 00", "03 'ab'"}) {
        StreamFile file(2, fromHex(bytes));
        file.m_lie = 1000;
        CArchive ar(&file, CArchive::load);
        CString text(_T("before"));
        EXPECT_EQ(archiveCause([&] { ar >> text; }), CArchiveException::endOfFile) << bytes;
        EXPECT_EQ(text, _T("before"));
    }
}

TEST(ArchiveFiles, ThatEndEarlyEndTheArray) {
    StreamFile file(2, fromHex("03 00 01 00 00 00"));
    file.m_lie = 1000;
    CArchive ar(&file, CArchive::load);
    CArray<LONG, LONG> array;
    EXPECT_EQ(archiveCause([&] { array.Serialize(ar); }), CArchiveException::endOfFile);
}

TEST(ArchiveFiles, LargeBlocksBypassTheBuffer) {
    StreamFile file;
    const Bytes block(10000, 1);
    CArchive ar(&file, CArchive::store, 256);
    ar << BYTE{7};
    ar.Write(block.data(), 10000);
    EXPECT_EQ(file.m_writes, 2);
    ar << BYTE{8};
    ar.Close();
    EXPECT_EQ(file.m_bytes, fromHex("07") + block + fromHex("08"));
}

}  // namespace
