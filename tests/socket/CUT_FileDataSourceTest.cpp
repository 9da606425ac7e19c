#include "NyServer/socket/CUT_FileDataSource.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <type_traits>

#include "tests/support/TempFile.h"

namespace {

constexpr int kBuffer = 4096;

class FileDataSource : public testing::Test {
  protected:
    int open(const WideText& path, OpenMsgType type, int buffer = kBuffer) {
        m_source = std::make_unique<CUT_FileDataSource>(path.c_str(), buffer);
        return m_source->Open(type);
    }
    // Opens a file with this content for reading.
    void hold(std::string_view content, int buffer = kBuffer) {
        m_source.reset();
        ASSERT_EQ(open(m_folder.file("f", content), OM_READ, buffer), 0);
    }
    void write() { ASSERT_EQ(open(m_folder.path("f"), OM_WRITE), 0); }
    // The line. A result that is not its length comes before it.
    std::string readLine(unsigned int maxLen = 200) {
        std::string buffer(8192, '#');
        const int result = m_source->ReadLine(buffer.data(), maxLen);
        const std::string line = buffer.c_str();
        return result == static_cast<int>(line.size()) ? line : std::to_string(result) + line;
    }
    // These lines stand in the file; the last of the lengths is asked for again and again.
    void expectLines(const std::string& content, const std::vector<std::string>& lines,
                     const std::vector<unsigned int>& maxLens = {200}, int buffer = kBuffer) {
        hold(content, buffer);
        for (size_t i = 0; i < lines.size(); ++i)
            EXPECT_EQ(readLine(maxLens[std::min(i, maxLens.size() - 1)]), lines[i]) << content;
    }
    std::string read(unsigned int count) {
        std::string bytes(count, '\0');
        const int done = m_source->Read(bytes.data(), count);
        return bytes.substr(0, static_cast<size_t>(std::max(done, 0)));
    }
    std::string closedContent() {
        m_source->Close();
        return m_folder.content("f");
    }

    TempFolder m_folder;
    std::unique_ptr<CUT_FileDataSource> m_source;
};

TEST_F(FileDataSource, CannotOpenAMissingFileForReading) {
    EXPECT_EQ(open(m_folder.path("missing"), OM_READ), -1);
    EXPECT_FALSE(m_folder.has("missing"));
}

TEST_F(FileDataSource, RefusesAnUnknownOpenType) {
    const WideText path = m_folder.file("f", "abc");
    for (const int type : {3, 4, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(open(path, static_cast<OpenMsgType>(type)), -1) << type;
    EXPECT_EQ(m_folder.content("f"), "abc");
}

TEST_F(FileDataSource, OpensTheTrimmedPathOnlyAndAsAWhole) {
    EXPECT_EQ(open(_T("  ") + m_folder.file("a name", "abc") + _T("  "), OM_READ), 0);
    EXPECT_EQ(read(9), "abc");
    EXPECT_EQ(open(_T(""), OM_WRITE), -1);
    EXPECT_EQ(CUT_FileDataSource(nullptr, kBuffer).Open(OM_WRITE), -1);
    const std::string tooLong(300, 'x');
    EXPECT_EQ(open(m_folder.path(tooLong), OM_WRITE), -1);
    EXPECT_EQ(m_folder.count(), 1) << "a shortened name is another file's";
}

TEST_F(FileDataSource, MayOnlyReadWhatIsOpenForReading) {
    hold("abc");
    EXPECT_EQ(m_source->Write("x", 1), -1);
    EXPECT_EQ(m_source->WriteLine("a"), -1);
}

TEST_F(FileDataSource, CreatesOrEmptiesAFileThatIsOpenedForWriting) {
    write();
    EXPECT_TRUE(m_folder.has("f"));
    m_source->Close();
    m_folder.file("f", "abc");
    write();
    EXPECT_EQ(m_source->Write("xy", 2), 2);
    m_source->Seek(0, FILE_BEGIN);
    EXPECT_EQ(read(9), "xy");
    EXPECT_EQ(closedContent(), "xy");
}

TEST_F(FileDataSource, AppendsFromAnyPositionAndCreatesAMissingFile) {
    EXPECT_EQ(open(m_folder.path("missing"), OM_APPEND), 0);
    EXPECT_TRUE(m_folder.has("missing"));
    ASSERT_EQ(open(m_folder.file("f", "abc"), OM_APPEND), 0);
    m_source->Write("d", 1);
    m_source->Seek(1, FILE_BEGIN);
    EXPECT_EQ(m_source->Write("e", 1), 1);
    m_source->Seek(0, FILE_BEGIN);
    EXPECT_EQ(read(9), "abcde");
    EXPECT_EQ(closedContent(), "abcde");
}

TEST_F(FileDataSource, ReadsLinesThenTheRestThenNothing) {
    expectLines("ab\r\ncd", {"ab\r\n", "cd", ""});
    expectLines("\r\n\r\nx\r\n", {"\r\n", "\r\n", "x\r\n", ""});
    expectLines("ab\r\ncdef\r\n", {"ab\r\n", "cdef\r\n"}, {200}, 8);
}

TEST_F(FileDataSource, TakesOnlyThePairForALineEndAndAZeroByteForTheEndOfTheText) {
    expectLines("a\nb\rc\r\nd", {"a\nb\rc\r\n", "d"});
    expectLines(std::string("ab\0cd\r\nef\r\n", 11), {"ab", ""});
}

TEST_F(FileDataSource, ReturnsAWholeLineOnlyWithSpaceLeft) {
    // In one piece at last, since a piece of 6 bytes holds it.
    expectLines("abcd\r\nefgh\r\n", {"abcd\r\n", "efgh\r\n"}, {8, 7});
    expectLines("abcd\r\nefgh\r\n", {"abcd\r", "\nefgh\r\n"}, {6, 200});
}

TEST_F(FileDataSource, CutsALineThatDoesNotFit) {
    expectLines("abcdefgh\r\n", {"abc", "def", "gh\r", "\n", ""}, {4});
    expectLines("abcdefgh\r\nij\r\n", {"abcdefg", "h\r\n", "ij\r\n"}, {200}, 8);
    expectLines("ab\r\n", {"", "a", "b\r"}, {1, 2, 3});
    char untouched = '#';
    EXPECT_EQ(m_source->ReadLine(&untouched, 0), 0);
    EXPECT_EQ(untouched, '#');
}

TEST_F(FileDataSource, RefusesNullBuffers) {
    write();
    EXPECT_EQ(m_source->ReadLine(nullptr, 10), -1);
    EXPECT_EQ(m_source->WriteLine(nullptr), -1);
    EXPECT_EQ(m_source->Read(nullptr, 10), -1);
    EXPECT_EQ(m_source->Write(nullptr, 10), -1);
}

TEST_F(FileDataSource, AddsAMissingLineEndAndKeepsAnExistingOne) {
    const struct {
        const char* line;
        int result;
        const char* content;
    } rows[] = {
        {"a", 1, "a\r\n"}, {"a\n", 2, "a\n"}, {"b\r", 2, "b\r"}, {"\n", 1, "\n"}, {"", 0, "\r\n"}};
    for (const auto& row : rows) {
        write();
        EXPECT_EQ(m_source->WriteLine(row.line), row.result);
        EXPECT_EQ(closedContent(), row.content);
    }
}

TEST_F(FileDataSource, DropsWhatWasReadAheadWhenReadingBytes) {
    hold("ab\r\ncd\r\nef\r\n", 8);
    readLine();
    EXPECT_EQ(read(1), "\n");  // the bytes before it were read ahead
    EXPECT_EQ(readLine(), "ef\r\n");
}

TEST_F(FileDataSource, SeeksFromWhatTheCallerHasConsumedOrElseFromTheReadAhead) {
    hold("ab\r\ncdef");
    readLine();
    EXPECT_EQ(m_source->Seek(1, FILE_CURRENT), 5);
    EXPECT_EQ(read(9), "def");
    hold("abcdef");
    readLine(1);
    EXPECT_EQ(m_source->Seek(-1, FILE_CURRENT), 5);
}

TEST_F(FileDataSource, DropsWhatWasReadAheadWhenSeeking) {
    hold("ab\r\ncd\r\n");
    readLine();
    EXPECT_EQ(m_source->Seek(0, FILE_BEGIN), 0);
    EXPECT_EQ(readLine(), "ab\r\n");
    EXPECT_EQ(m_source->Seek(0, FILE_END), 8);
    EXPECT_EQ(readLine(), "");
}

TEST_F(FileDataSource, KeepsWhatWasReadAheadOverClose) {
    hold("ab\r\ncd\r\n");
    readLine();
    EXPECT_EQ(m_source->Close(), 0);
    EXPECT_EQ(readLine(), "cd\r\n");
    EXPECT_EQ(m_source->Close(), 0);
}

TEST_F(FileDataSource, ClonesPathAndBufferSizeButNotTheState) {
    hold("abcdefgh\r\n", 8);
    std::unique_ptr<CUT_DataSource> clone(m_source->Clone());
    char line[20];
    EXPECT_EQ(clone->Read(line, 1), -1);
    ASSERT_EQ(clone->Open(OM_READ), 0);
    EXPECT_EQ(clone->ReadLine(line, sizeof line), 7);
}

TEST_F(FileDataSource, AcceptsABufferOfNoSize) {
    for (const int size : {0, -5, 1}) {
        hold("ab", size);
        EXPECT_EQ(readLine(20), "");
        EXPECT_EQ(read(20), "ab");
    }
}

// A value that is refused must be one that the type can hold.
static_assert(OM_READ == 0 && OM_WRITE == 1 && OM_APPEND == 2);
static_assert(std::is_same_v<std::underlying_type_t<OpenMsgType>, int>);

}  // namespace
