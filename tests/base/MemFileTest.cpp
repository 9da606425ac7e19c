#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

void write(CMemFile& file, const char* text) {
    file.Write(text, static_cast<UINT>(std::strlen(text)));
}

std::string textOf(CMemFile& file) {
    const Bytes bytes = contentsOf(file);
    return std::string(bytes.begin(), bytes.end());
}

// Counts and steers the memory operations.
class WatchedFile : public CMemFile {
  public:
    using CMemFile::CMemFile;
    ~WatchedFile() override { Close(); }

    int allocs = 0;
    int reallocs = 0;
    int frees = 0;
    size_t lastSize = 0;
    bool full = false;
    size_t capacity() const { return m_nBufferSize; }

  protected:
    BYTE* Alloc(size_t bytes) override {
        ++allocs;
        lastSize = bytes;
        return full ? nullptr : CMemFile::Alloc(bytes);
    }
    BYTE* Realloc(BYTE* memory, size_t bytes) override {
        ++reallocs;
        lastSize = bytes;
        return full ? nullptr : CMemFile::Realloc(memory, bytes);
    }
    void Free(BYTE* memory) override {
        ++frees;
        CMemFile::Free(memory);
    }
};

BYTE* newBlock(const char* text) {
    const size_t length = std::strlen(text);
    BYTE* block = static_cast<BYTE*>(std::malloc(length));
    std::memcpy(block, text, length);
    return block;
}

TEST(MemFile, IsEmptyAtFirst) {
    CMemFile file;
    BYTE byte = 7;
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(file.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(file.Detach(), nullptr);
}

TEST(MemFile, ReadsWhatWasWritten) {
    CMemFile file;
    write(file, "hello ");
    write(file, "world");
    EXPECT_EQ(file.GetPosition(), 11u);
    EXPECT_EQ(file.GetLength(), 11u);
    EXPECT_EQ(textOf(file), "hello world");
}

TEST(MemFile, ReadStopsAtTheEnd) {
    CMemFile file;
    write(file, "abc");
    file.Seek(1, CFile::begin);
    char buffer[10] = {};
    EXPECT_EQ(file.Read(buffer, 10), 2u);
    EXPECT_STREQ(buffer, "bc");
    EXPECT_EQ(file.Read(buffer, 10), 0u);
    EXPECT_EQ(file.GetPosition(), 3u);
    file.Seek(50, CFile::begin);
    EXPECT_EQ(file.Read(buffer, 10), 0u);
    EXPECT_EQ(file.GetPosition(), 50u);
}

TEST(MemFile, OverwritesInTheMiddle) {
    CMemFile file;
    write(file, "abcdef");
    file.Seek(2, CFile::begin);
    write(file, "XY");
    EXPECT_EQ(textOf(file), "abXYef");
    EXPECT_EQ(file.GetPosition(), 4u);
}

TEST(MemFile, SeeksFromEachOrigin) {
    CMemFile file;
    write(file, "abcdef");
    EXPECT_EQ(file.Seek(2, CFile::begin), 2u);
    EXPECT_EQ(file.Seek(3, CFile::current), 5u);
    EXPECT_EQ(file.Seek(-1, CFile::current), 4u);
    EXPECT_EQ(file.Seek(-4, CFile::end), 2u);
    EXPECT_EQ(file.SeekToEnd(), 6u);
    file.SeekToBegin();
    EXPECT_EQ(file.GetPosition(), 0u);
}

TEST(MemFile, SeekBeforeTheBeginningThrowsAndStays) {
    CMemFile file;
    write(file, "abc");
    EXPECT_EQ(fileCause([&] { file.Seek(-1, CFile::begin); }), CFileException::badSeek);
    EXPECT_EQ(fileCause([&] { file.Seek(-4, CFile::current); }), CFileException::badSeek);
    EXPECT_EQ(fileCause([&] { file.Seek(-4, CFile::end); }), CFileException::badSeek);
    EXPECT_EQ(file.GetPosition(), 3u);
}

TEST(MemFile, SeekBeyondAllPositionsThrowsAndStays) {
    CMemFile file;
    write(file, "abc");
    EXPECT_EQ(fileCause([&] { file.Seek(INT64_MAX, CFile::current); }), CFileException::badSeek);
    EXPECT_EQ(fileCause([&] { file.Seek(INT64_MAX, CFile::end); }), CFileException::badSeek);
    EXPECT_EQ(file.GetPosition(), 3u);
}

TEST(MemFile, SeekBeyondTheEndGrowsNothingUntilWritten) {
    CMemFile file;
    write(file, "abc");
    EXPECT_EQ(file.Seek(6, CFile::begin), 6u);
    EXPECT_EQ(file.GetLength(), 3u);
    file.Write("", 0);
    EXPECT_EQ(file.GetLength(), 3u);
    write(file, "x");
    EXPECT_EQ(file.GetLength(), 7u);
    EXPECT_EQ(textOf(file), std::string("abc\0\0\0x", 7));
}

TEST(MemFile, SetLengthExtendsWithZeros) {
    CMemFile file;
    write(file, "abc");
    file.SetLength(5);
    EXPECT_EQ(textOf(file), std::string("abc\0\0", 5));
    EXPECT_EQ(file.GetPosition(), 3u);
    write(file, "d");
    EXPECT_EQ(textOf(file), std::string("abcd\0", 5));
}

TEST(MemFile, SetLengthCutsAndMovesThePositionToTheEnd) {
    CMemFile file;
    write(file, "abcdef");
    file.SetLength(2);
    EXPECT_EQ(file.GetPosition(), 2u);
    EXPECT_EQ(textOf(file), "ab");
    write(file, "Z");
    EXPECT_EQ(textOf(file), "abZ");
}

TEST(MemFile, BytesCutOffDoNotComeBack) {
    CMemFile file;
    write(file, "abcdef");
    file.SetLength(2);
    file.SetLength(4);
    EXPECT_EQ(textOf(file), std::string("ab\0\0", 4));
    file.SetLength(2);
    file.Seek(4, CFile::begin);
    write(file, "x");
    EXPECT_EQ(textOf(file), std::string("ab\0\0x", 5));
}

TEST(MemFile, GrowsInMultiplesOfItsStep) {
    WatchedFile file(100);
    write(file, "a");
    EXPECT_EQ(file.lastSize, 100u);
    EXPECT_EQ(file.allocs, 1);
    file.SetLength(100);
    EXPECT_EQ(file.reallocs, 0);
    file.SetLength(101);
    EXPECT_EQ(file.reallocs, 1);
    EXPECT_EQ(file.lastSize, 200u);
    file.SetLength(1001);
    EXPECT_EQ(file.lastSize, 1100u);
    file.SetLength(2000);
    EXPECT_EQ(file.lastSize, 2000u);
}

TEST(MemFile, DefaultStepIsOneKilobyte) {
    WatchedFile file;
    write(file, "a");
    EXPECT_EQ(file.lastSize, 1024u);
}

TEST(MemFile, SmallStepsDoNotMoveTheBlockEachTime) {
    WatchedFile file(16);
    for (int i = 0; i < 100000; ++i) write(file, "0123456789");
    EXPECT_EQ(file.GetLength(), 1000000u);
    EXPECT_LT(file.reallocs, 50);
}

TEST(MemFile, WithoutMemoryNothingChanges) {
    WatchedFile file(16);
    write(file, "abc");
    file.full = true;
    EXPECT_TRUE(throwsA<CMemoryException>([&] { file.SetLength(17); }));
    EXPECT_TRUE(throwsA<CMemoryException>([&] { write(file, "0123456789abcdef"); }));
    EXPECT_EQ(file.GetPosition(), 3u);
    EXPECT_EQ(textOf(file), "abc");
}

TEST(MemFile, LengthsBeyondTheAddressSpaceAreRefused) {
    CMemFile file;
    write(file, "abc");
    EXPECT_TRUE(throwsA<CMemoryException>([&] { file.SetLength(UINT64_MAX); }));
    EXPECT_TRUE(throwsA<CMemoryException>([&] { file.SetLength(ULONGLONG{INT64_MAX} + 1); }));
    file.Seek(INT64_MAX, CFile::begin);
    EXPECT_TRUE(throwsA<CMemoryException>([&] { write(file, "x"); }));
    EXPECT_EQ(file.GetPosition(), static_cast<ULONGLONG>(INT64_MAX));
    EXPECT_EQ(file.GetLength(), 3u);
}

TEST(MemFile, FreesItsOwnBlockOnceOnCloseOrDestruction) {
    WatchedFile file(16);
    write(file, "abc");
    file.Close();
    EXPECT_EQ(file.frees, 1);
    EXPECT_EQ(file.GetLength(), 0u);
    file.Close();
    EXPECT_EQ(file.frees, 1);
    write(file, "d");
    EXPECT_EQ(textOf(file), "d");
    file.Abort();
    EXPECT_EQ(file.frees, 2);
}

TEST(MemFile, DetachHandsOverTheBlockAndEmptiesTheFile) {
    WatchedFile file(16);
    write(file, "abc");
    BYTE* block = file.Detach();
    EXPECT_EQ(std::memcmp(block, "abc", 3), 0);
    EXPECT_EQ(file.GetLength(), 0u);
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(file.capacity(), 0u);
    file.Close();
    EXPECT_EQ(file.frees, 0);
    std::free(block);
}

TEST(MemFile, AttachedBytesAreTheFile) {
    BYTE bytes[] = {'a', 'b', 'c', 'd'};
    CMemFile file(bytes, 4);
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(file.GetLength(), 4u);
    EXPECT_EQ(textOf(file), "abcd");
    write(file, "X");
    EXPECT_EQ(bytes[0], 'X');
}

TEST(MemFile, AttachedBytesCannotGrow) {
    BYTE bytes[] = {'a', 'b', 'c', 'd'};
    CMemFile file(bytes, 4);
    file.Seek(2, CFile::begin);
    EXPECT_TRUE(throwsA<CMemoryException>([&] { write(file, "XYZ"); }));
    EXPECT_TRUE(throwsA<CMemoryException>([&] { file.SetLength(5); }));
    EXPECT_EQ(file.GetPosition(), 2u);
    EXPECT_EQ(textOf(file), "abcd");
    write(file, "XY");
    EXPECT_EQ(textOf(file), "abXY");
}

TEST(MemFile, WritingBeyondAttachedBytesIsRefused) {
    BYTE bytes[] = {'a', 'b', 'c', 'd'};
    CMemFile file(bytes, 4);
    file.Seek(20, CFile::begin);
    EXPECT_TRUE(throwsA<CMemoryException>([&] { write(file, "X"); }));
    EXPECT_EQ(file.GetPosition(), 20u);
    EXPECT_EQ(file.GetLength(), 4u);
}

TEST(MemFile, ShortenedAttachedBytesCanBeFilledAgain) {
    BYTE bytes[] = {'a', 'b', 'c', 'd'};
    CMemFile file(bytes, 4);
    file.SetLength(1);
    file.Seek(3, CFile::begin);
    write(file, "Z");
    EXPECT_EQ(textOf(file), std::string("a\0\0Z", 4));
}

TEST(MemFile, AttachedRoomIsEmptyWhenItMayGrow) {
    BYTE bytes[] = {'a', 'b', 'c', 'd'};
    CMemFile file(bytes, 4, 16);
    EXPECT_EQ(file.GetLength(), 0u);
    write(file, "XY");
    EXPECT_EQ(bytes[1], 'Y');
    EXPECT_EQ(textOf(file), "XY");
}

TEST(MemFile, AttachedRoomGrowsAndStaysTheCallers) {
    BYTE* block = newBlock("abcd");
    WatchedFile file;
    file.Attach(block, 4, 16);
    write(file, "0123456789");
    EXPECT_EQ(file.reallocs, 1);
    EXPECT_EQ(file.lastSize, 16u);
    EXPECT_EQ(textOf(file), "0123456789");
    block = file.Detach();
    file.Close();
    EXPECT_EQ(file.frees, 0);
    std::free(block);
}

TEST(MemFile, AttachReleasesTheFilesOwnBlock) {
    BYTE bytes[] = {'a', 'b'};
    WatchedFile file(16);
    write(file, "0123456789");
    file.Attach(bytes, 2);
    EXPECT_EQ(file.frees, 1);
    EXPECT_EQ(textOf(file), "ab");
    EXPECT_EQ(file.GetPosition(), 0u);
    file.Close();
    EXPECT_EQ(file.frees, 1);
}

TEST(MemFile, AnOwnBlockAfterAnAttachedOneIsFreed) {
    BYTE bytes[] = {'a', 'b'};
    WatchedFile file;
    file.Attach(bytes, 2, 16);
    file.Detach();
    write(file, "c");
    file.Close();
    EXPECT_EQ(file.allocs, 1);
    EXPECT_EQ(file.frees, 1);
}

TEST(MemFile, OffersItsMemoryForReading) {
    CMemFile file;
    write(file, "abcdef");
    file.Seek(1, CFile::begin);
    void* start = nullptr;
    void* max = nullptr;
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferCheck), UINT{CFile::bufferDirect});
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, 2, &start, &max), 2u);
    EXPECT_EQ(std::memcmp(start, "bc", 2), 0);
    EXPECT_EQ(static_cast<BYTE*>(max) - static_cast<BYTE*>(start), 2);
    EXPECT_EQ(file.GetPosition(), 3u);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, UINT(-1), &start, &max), 3u);
    EXPECT_EQ(std::memcmp(start, "def", 3), 0);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, UINT(-1), &start, &max), 0u);
    EXPECT_EQ(start, max);
    EXPECT_EQ(file.GetPosition(), 6u);
}

TEST(MemFile, OffersItsMemoryForWriting) {
    CMemFile file;
    write(file, "ab");
    void* start = nullptr;
    void* max = nullptr;
    EXPECT_GE(file.GetBufferPtr(CFile::bufferWrite, 5000, &start, &max), 5000u);
    std::memcpy(start, "xyz", 3);
    EXPECT_EQ(file.GetLength(), 2u);
    EXPECT_EQ(file.GetPosition(), 2u);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferCommit, 3), 0u);
    EXPECT_EQ(file.GetPosition(), 5u);
    EXPECT_EQ(textOf(file), "abxyz");
}

TEST(MemFile, OffersOnlyTheRoomOfAFileThatCannotGrow) {
    BYTE bytes[4] = {};
    CMemFile file(bytes, 4);
    file.Seek(1, CFile::begin);
    void* start = nullptr;
    void* max = nullptr;
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferWrite, 10, &start, &max), 3u);
    EXPECT_EQ(start, bytes + 1);
    file.Seek(9, CFile::begin);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferWrite, 10, &start, &max), 0u);
}

TEST(MemFile, ItsExceptionsBearItsName) {
    CMemFile file;
    EXPECT_EQ(file.GetFilePath(), _T(""));
    file.SetFilePath(_T("queue.bin"));
    EXPECT_EQ(file.GetFilePath(), _T("queue.bin"));
    try {
        file.Seek(-1, CFile::begin);
        FAIL();
    } catch (CFileException* thrown) {
        EXPECT_EQ(thrown->m_strFileName, _T("queue.bin"));
        EXPECT_EQ(thrown->m_lOsError, -1);
        thrown->Delete();
    }
}

}  // namespace
