#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

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
    EXPECT_EQ(m_file.GetBufferPtr(CFile::bufferCheck), UINT{CFile::bufferDirect});
}

// What a file holds that has room for so many bytes.
struct FileModel {
    std::string content;
    size_t position = 0;
    size_t room = 1 << 20;

    bool setLength(size_t length) {
        if (length > room) return false;
        content.resize(length);
        position = std::min(position, length);
        return true;
    }
    bool write(const std::string& text) {
        if (text.empty()) return true;
        const size_t end = position + text.size();
        if (end > room) return false;
        content.resize(std::max(content.size(), end));
        content.replace(position, text.size(), text);
        position = end;
        return true;
    }
    std::string read(size_t count) {
        const std::string bytes = position < content.size() ? content.substr(position, count) : "";
        position += bytes.size();
        return bytes;
    }
    // Whether there is such a position.
    bool seek(LONGLONG offset, UINT from) {
        const size_t start = from == CFile::begin ? 0
                             : from == CFile::end ? content.size()
                                                  : position;
        if (offset < -static_cast<LONGLONG>(start)) return false;
        position = start + static_cast<size_t>(offset);
        return true;
    }
};

class RandomMemFile : public MemFile, public testing::WithParamInterface<bool> {
  protected:
    std::mt19937 m_random{20150716};
    FileModel m_model;

    UINT below(UINT limit) { return static_cast<UINT>(m_random() % limit); }
    void seekAnywhere() {
        const UINT origins[] = {CFile::begin, CFile::current, CFile::end};
        const UINT from = origins[below(3)];
        const LONGLONG offset = LONGLONG{below(60)} - 30;
        ULONGLONG position = m_file.GetPosition();
        const int cause = fileCause([&] { position = seek(offset, from); });
        EXPECT_EQ(position, m_file.GetPosition());
        EXPECT_EQ(cause, m_model.seek(offset, from) ? -1 : CFileException::badSeek);
    }
    void writeText() {
        const std::string text(below(30), static_cast<char>('a' + below(26)));
        EXPECT_NE(throwsA<CMemoryException>([&] { write(text.c_str()); }), m_model.write(text));
    }
    void writeToItsMemory() {
        std::string text(1 + below(30), static_cast<char>('a' + below(26)));
        const UINT room = offered(CFile::bufferWrite, static_cast<UINT>(text.size()));
        if (m_model.position + text.size() > m_model.room) text.resize(room);
        EXPECT_GE(room, text.size());
        if (text.empty()) return;
        std::memcpy(m_start, text.data(), text.size());
        EXPECT_EQ(m_file.GetLength(), m_model.content.size());
        EXPECT_EQ(m_file.GetPosition(), m_model.position);
        EXPECT_EQ(m_file.GetBufferPtr(CFile::bufferCommit, static_cast<UINT>(text.size())), 0u);
        m_model.write(text);
    }
    void readFromItsMemory() {
        const UINT count = below(8) == 0 ? UINT(-1) : below(40);
        const std::string bytes = m_model.read(count);
        ASSERT_EQ(offered(CFile::bufferRead, count), bytes.size());
        EXPECT_EQ(std::string(static_cast<char*>(m_start), static_cast<char*>(m_max)), bytes);
    }
    void changeLength() {
        const UINT length = below(80);
        const bool isRefused = throwsA<CMemoryException>([&] { m_file.SetLength(length); });
        EXPECT_NE(isRefused, m_model.setLength(length));
    }
    void doAnything() {
        switch (below(6)) {
            case 0:
                return seekAnywhere();
            case 1:
                return writeText();
            case 2:
                return writeToItsMemory();
            case 3:
                return readFromItsMemory();
            case 4:
                return changeLength();
        }
        const UINT count = below(40);
        EXPECT_EQ(read(count), m_model.read(count));
    }
};

INSTANTIATE_TEST_SUITE_P(MemFile, RandomMemFile, testing::Bool(),
                         [](const auto& each) { return each.param ? "Attached" : "Own"; });

// Bytes that the file is attached to cannot grow.
TEST_P(RandomMemFile, AgreesWithAPlainModel) {
    BYTE bytes[50] = {};
    if (GetParam()) {
        m_file.Attach(bytes, sizeof bytes);
        m_model = {std::string(sizeof bytes, 0), 0, sizeof bytes};
    }
    for (int i = 0; i < 5000 && !HasFailure(); ++i) {
        doAnything();
        expect(m_model.content, m_model.position);
    }
    if (!GetParam()) return;
    EXPECT_EQ(std::memcmp(bytes, m_model.content.data(), m_model.content.size()), 0);
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
    for (const UINT from : {UINT{CFile::current}, UINT{CFile::end}}) {
        EXPECT_EQ(fileCause([&] { seek(INT64_MAX, from); }), CFileException::badSeek);
    }
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

TEST_F(MemFile, DetachReturnsTheBlockAndEmptiesTheFile) {
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

TEST_F(MemFile, AttachedBlockIsEmptyWhenItMayGrow) {
    CMemFile file(m_bytes, 4, 16);
    EXPECT_EQ(file.GetLength(), 0u);
    m_file.Attach(m_bytes, 4, 16);
    write("XY");
    EXPECT_EQ(m_bytes[1], 'Y');
    expect("XY", 2);
}

TEST_F(MemFile, AttachedBlockGrowsAndStillBelongsToTheCaller) {
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

TEST_F(MemFile, OffersOnlyTheSpaceOfAFileThatCannotGrow) {
    m_file.Attach(m_bytes, 4);
    seek(1);
    EXPECT_EQ(offered(CFile::bufferWrite, 10), 3u);
    EXPECT_EQ(m_start, m_bytes + 1);
    seek(9);
    EXPECT_EQ(offered(CFile::bufferWrite, 10), 0u);
}

TEST_F(MemFile, WritesZerosBeforeTheSpaceOfferedByAFileThatCannotGrow) {
    m_file.Attach(m_bytes, 4);
    m_file.SetLength(1);
    seek(3);
    ASSERT_EQ(offered(CFile::bufferWrite, 10), 1u);
    *static_cast<char*>(m_start) = 'z';
    m_file.GetBufferPtr(CFile::bufferCommit, 1);
    expect(std::string("a\0\0z", 4), 4);
}

TEST_F(MemFile, ItsExceptionsHaveItsName) {
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
