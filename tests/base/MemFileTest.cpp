#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

using namespace std::string_literals;

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

// A file with a step of 16 bytes, and four bytes that it may be made of.
class MemFile : public testing::Test {
  protected:
    WatchedFile m_file{16};
    BYTE m_bytes[4] = {'a', 'b', 'c', 'd'};
    void* m_start = nullptr;
    void* m_max = nullptr;

    void write(const char* text) { m_file.Write(text, static_cast<UINT>(std::strlen(text))); }
    ULONGLONG seek(LONGLONG offset, UINT from = CFile::begin) { return m_file.Seek(offset, from); }
    UINT offered(UINT command, UINT count) {
        return m_file.GetBufferPtr(command, count, &m_start, &m_max);
    }
    std::string read(UINT count) {
        std::string buffer(count, '-');
        buffer.resize(m_file.Read(buffer.data(), count));
        return buffer;
    }
    void expect(const std::string& content, ULONGLONG position) {
        const Bytes bytes = contentsOf(m_file);
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), content);
        EXPECT_EQ(m_file.GetLength(), content.size());
        EXPECT_EQ(m_file.GetPosition(), position);
    }
    template <class Action>
    void expectNoMemory(Action action) {
        EXPECT_TRUE(throwsA<CMemoryException>(action));
    }
};

TEST_F(MemFile, IsEmptyAtFirst) {
    BYTE byte = 7;
    EXPECT_EQ(m_file.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 7);
    expect("", 0);
    EXPECT_EQ(m_file.Detach(), nullptr);
}

TEST_F(MemFile, HoldsWhatWasWrittenAndOverwritten) {
    write("hello ");
    write("world");
    expect("hello world", 11);
    seek(2);
    write("XY");
    expect("heXYo world", 4);
}

TEST_F(MemFile, ReadStopsAtTheEnd) {
    write("abc");
    seek(1);
    EXPECT_EQ(read(10), "bc");
    EXPECT_EQ(read(10), "");
    seek(50);
    EXPECT_EQ(read(10), "");
    expect("abc", 50);
}

TEST_F(MemFile, SeeksFromEachOrigin) {
    write("abcdef");
    EXPECT_EQ(seek(2), 2u);
    EXPECT_EQ(seek(3, CFile::current), 5u);
    EXPECT_EQ(seek(-1, CFile::current), 4u);
    EXPECT_EQ(seek(-4, CFile::end), 2u);
    EXPECT_EQ(m_file.SeekToEnd(), 6u);
    m_file.SeekToBegin();
    expect("abcdef", 0);
}

TEST_F(MemFile, SeekOutsideAllPositionsThrowsAndStays) {
    write("abc");
    const struct {
        LONGLONG offset;
        UINT from;
    } rows[] = {{-1, CFile::begin},
                {-4, CFile::current},
                {-4, CFile::end},
                {INT64_MAX, CFile::current},
                {INT64_MAX, CFile::end}};
    for (const auto& row : rows) {
        EXPECT_EQ(fileCause([&] { seek(row.offset, row.from); }), CFileException::badSeek);
        expect("abc", 3);
    }
}

TEST_F(MemFile, SeekBeyondTheEndGrowsNothingUntilWritten) {
    write("abc");
    EXPECT_EQ(seek(6), 6u);
    m_file.Write("", 0);
    expect("abc", 6);
    write("x");
    expect("abc\0\0\0x"s, 7);
}

TEST_F(MemFile, SetLengthExtendsWithZeros) {
    write("abc");
    m_file.SetLength(5);
    expect("abc\0\0"s, 3);
    write("d");
    expect("abcd\0"s, 4);
}

TEST_F(MemFile, SetLengthCutsAndMovesThePositionToTheEnd) {
    write("abcdef");
    m_file.SetLength(2);
    expect("ab", 2);
    write("Z");
    expect("abZ", 3);
}

TEST_F(MemFile, BytesCutOffDoNotComeBack) {
    write("abcdef");
    m_file.SetLength(2);
    m_file.SetLength(4);
    expect("ab\0\0"s, 2);
    m_file.SetLength(2);
    seek(4);
    write("x");
    expect("ab\0\0x"s, 5);
}

TEST_F(MemFile, GrowsInMultiplesOfItsStep) {
    WatchedFile file(100);
    file.Write("a", 1);
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
    WatchedFile ofDefaultStep;
    ofDefaultStep.Write("a", 1);
    EXPECT_EQ(ofDefaultStep.lastSize, 1024u);
}

TEST_F(MemFile, SmallStepsDoNotMoveTheBlockEachTime) {
    for (int i = 0; i < 100000; ++i) write("0123456789");
    EXPECT_EQ(m_file.GetLength(), 1000000u);
    EXPECT_LT(m_file.reallocs, 50);
}

TEST_F(MemFile, WithoutMemoryNothingChanges) {
    write("abc");
    m_file.full = true;
    expectNoMemory([&] { m_file.SetLength(17); });
    expectNoMemory([&] { write("0123456789abcdef"); });
    expect("abc", 3);
}

TEST_F(MemFile, LengthsBeyondTheAddressSpaceAreRefused) {
    write("abc");
    expectNoMemory([&] { m_file.SetLength(UINT64_MAX); });
    expectNoMemory([&] { m_file.SetLength(ULONGLONG{INT64_MAX} + 1); });
    seek(INT64_MAX);
    expectNoMemory([&] { write("x"); });
    expect("abc", INT64_MAX);
}

TEST_F(MemFile, FreesItsOwnBlockOnceOnCloseOrDestruction) {
    write("abc");
    for (int i = 0; i < 2; ++i) {
        m_file.Close();
        EXPECT_EQ(m_file.frees, 1);
        expect("", 0);
    }
    write("d");
    expect("d", 1);
    m_file.Abort();
    EXPECT_EQ(m_file.frees, 2);
}

TEST_F(MemFile, DetachHandsOverTheBlockAndEmptiesTheFile) {
    write("abc");
    BYTE* block = m_file.Detach();
    EXPECT_EQ(std::memcmp(block, "abc", 3), 0);
    expect("", 0);
    EXPECT_EQ(m_file.capacity(), 0u);
    m_file.Close();
    EXPECT_EQ(m_file.frees, 0);
    std::free(block);
}

TEST_F(MemFile, AttachedBytesAreTheFile) {
    CMemFile file(m_bytes, 4);
    EXPECT_EQ(file.GetLength(), 4u);
    m_file.Attach(m_bytes, 4);
    expect("abcd", 0);
    write("X");
    EXPECT_EQ(m_bytes[0], 'X');
}

TEST_F(MemFile, AttachedBytesCannotGrow) {
    m_file.Attach(m_bytes, 4);
    seek(2);
    expectNoMemory([&] { write("XYZ"); });
    expectNoMemory([&] { m_file.SetLength(5); });
    expect("abcd", 2);
    write("XY");
    expect("abXY", 4);
    seek(20);
    expectNoMemory([&] { write("X"); });
    expect("abXY", 20);
}

TEST_F(MemFile, ShortenedAttachedBytesCanBeFilledAgain) {
    m_file.Attach(m_bytes, 4);
    m_file.SetLength(1);
    seek(3);
    write("Z");
    expect("a\0\0Z"s, 4);
}

TEST_F(MemFile, AttachedRoomIsEmptyWhenItMayGrow) {
    CMemFile file(m_bytes, 4, 16);
    EXPECT_EQ(file.GetLength(), 0u);
    m_file.Attach(m_bytes, 4, 16);
    write("XY");
    EXPECT_EQ(m_bytes[1], 'Y');
    expect("XY", 2);
}

TEST_F(MemFile, AttachedRoomGrowsAndStaysTheCallers) {
    m_file.Attach(static_cast<BYTE*>(std::malloc(4)), 4, 16);
    write("0123456789");
    EXPECT_EQ(m_file.reallocs, 1);
    EXPECT_EQ(m_file.lastSize, 16u);
    expect("0123456789", 10);
    BYTE* const block = m_file.Detach();
    m_file.Close();
    EXPECT_EQ(m_file.frees, 0);
    std::free(block);
}

TEST_F(MemFile, AttachReleasesTheFilesOwnBlock) {
    write("0123456789");
    m_file.Attach(m_bytes, 2);
    expect("ab", 0);
    m_file.Close();
    EXPECT_EQ(m_file.frees, 1);
}

TEST_F(MemFile, AnOwnBlockAfterAnAttachedOneIsFreed) {
    m_file.Attach(m_bytes, 2, 16);
    m_file.Detach();
    write("c");
    m_file.Close();
    EXPECT_EQ(m_file.allocs, 1);
    EXPECT_EQ(m_file.frees, 1);
}

TEST_F(MemFile, OffersItsMemoryForReading) {
    const auto expectOffered = [this](UINT asked, const std::string& bytes) {
        ASSERT_EQ(offered(CFile::bufferRead, asked), bytes.size());
        EXPECT_EQ(std::string(static_cast<char*>(m_start), static_cast<char*>(m_max)), bytes);
    };
    write("abcdef");
    seek(1);
    EXPECT_EQ(m_file.GetBufferPtr(CFile::bufferCheck), UINT{CFile::bufferDirect});
    expectOffered(2, "bc");
    EXPECT_EQ(m_file.GetPosition(), 3u);
    expectOffered(UINT(-1), "def");
    expectOffered(UINT(-1), "");
    expect("abcdef", 6);
}

TEST_F(MemFile, OffersItsMemoryForWriting) {
    write("ab");
    EXPECT_GE(offered(CFile::bufferWrite, 5000), 5000u);
    std::memcpy(m_start, "xyz", 3);
    expect("ab", 2);
    EXPECT_EQ(m_file.GetBufferPtr(CFile::bufferCommit, 3), 0u);
    expect("abxyz", 5);
}

TEST_F(MemFile, OffersOnlyTheRoomOfAFileThatCannotGrow) {
    m_file.Attach(m_bytes, 4);
    seek(1);
    EXPECT_EQ(offered(CFile::bufferWrite, 10), 3u);
    EXPECT_EQ(m_start, m_bytes + 1);
    seek(9);
    EXPECT_EQ(offered(CFile::bufferWrite, 10), 0u);
}

TEST_F(MemFile, ItsExceptionsBearItsName) {
    EXPECT_EQ(m_file.GetFilePath(), _T(""));
    m_file.SetFilePath(_T("queue.bin"));
    EXPECT_EQ(m_file.GetFilePath(), _T("queue.bin"));
    try {
        seek(-1);
        FAIL();
    } catch (CFileException* thrown) {
        EXPECT_EQ(thrown->m_strFileName, _T("queue.bin"));
        EXPECT_EQ(thrown->m_lOsError, -1);
        thrown->Delete();
    }
}

}  // namespace
