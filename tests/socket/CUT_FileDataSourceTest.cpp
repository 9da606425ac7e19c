#include "NyServer/socket/CUT_FileDataSource.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <type_traits>

#include "tests/support/TempFile.h"

namespace {

constexpr int kBuffer = 4096;

struct Line {
    int result;
    std::string text;
    bool operator==(const Line&) const = default;
};

void PrintTo(const Line& line, std::ostream* out) {
    *out << line.result << " '" << line.text << "'";
}

class FileDataSource : public testing::Test {
  protected:
    // Opens a file with this content for reading.
    void hold(std::string_view content, int buffer = kBuffer) {
        m_source =
            std::make_unique<CUT_FileDataSource>(m_folder.file(L"f", content).c_str(), buffer);
        ASSERT_EQ(m_source->Open(OM_READ), 0);
    }
    void open(OpenMsgType type, std::wstring_view name = L"f") {
        m_source = std::make_unique<CUT_FileDataSource>(m_folder.path(name).c_str(), kBuffer);
        ASSERT_EQ(m_source->Open(type), 0);
    }
    Line readLine(unsigned int maxLen = 200) {
        std::string line(8192, '#');
        const int result = m_source->ReadLine(line.data(), maxLen);
        return {result, line.c_str()};
    }
    std::string read(unsigned int count) {
        std::string bytes(count, '\0');
        const int done = m_source->Read(bytes.data(), count);
        return bytes.substr(0, static_cast<size_t>(std::max(done, 0)));
    }
    std::string closedContent() {
        m_source->Close();
        return m_folder.content(L"f");
    }

    TempFolder m_folder;
    std::unique_ptr<CUT_FileDataSource> m_source;
};

TEST_F(FileDataSource, CannotOpenAMissingFileForReading) {
    CUT_FileDataSource source(m_folder.path(L"missing").c_str(), kBuffer);
    EXPECT_EQ(source.Open(OM_READ), -1);
    EXPECT_FALSE(m_folder.has(L"missing"));
}

TEST_F(FileDataSource, RefusesAnUnknownOpenType) {
    const std::wstring path = m_folder.file(L"f", "abc");
    CUT_FileDataSource source(path.c_str(), kBuffer);
    for (const int type : {3, 4, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(source.Open(static_cast<OpenMsgType>(type)), -1) << type;
    EXPECT_EQ(m_folder.content(L"f"), "abc");
}

TEST_F(FileDataSource, CannotBeOpenedWithoutAPath) {
    CUT_FileDataSource none(nullptr, kBuffer);
    CUT_FileDataSource empty(L"", kBuffer);
    EXPECT_EQ(none.Open(OM_WRITE), -1);
    EXPECT_EQ(empty.Open(OM_WRITE), -1);
}

TEST_F(FileDataSource, DoesNotOpenAShortenedPath) {
    const std::wstring longest = m_folder.path(L"") + std::wstring(300, L'x');
    CUT_FileDataSource tooLong(longest.c_str(), kBuffer);
    EXPECT_EQ(tooLong.Open(OM_WRITE), -1);
    EXPECT_FALSE(::GetFileAttributesW(longest.substr(0, 259).c_str()) != INVALID_FILE_ATTRIBUTES);
}

TEST_F(FileDataSource, OpensTheFileOfTheTrimmedName) {
    const std::wstring path = L" " + m_folder.file(L"f", "abc") + L" ";
    CUT_FileDataSource source(path.c_str(), kBuffer);
    EXPECT_EQ(source.Open(OM_READ), 0);
}

TEST_F(FileDataSource, MayOnlyReadWhatIsOpenForReading) {
    hold("abc");
    EXPECT_EQ(m_source->Write("x", 1), -1);
}

TEST_F(FileDataSource, EmptiesAFileThatIsOpenedForWriting) {
    m_folder.file(L"f", "abc");
    open(OM_WRITE);
    EXPECT_EQ(m_source->Write("xy", 2), 2);
    m_source->Seek(0, FILE_BEGIN);
    EXPECT_EQ(read(9), "xy");
    EXPECT_EQ(closedContent(), "xy");
}

TEST_F(FileDataSource, CreatesAMissingFileForWriting) {
    open(OM_WRITE);
    EXPECT_EQ(closedContent(), "");
}

TEST_F(FileDataSource, CreatesAMissingFileForAppending) {
    open(OM_APPEND, L"missing");
    EXPECT_TRUE(m_folder.has(L"missing"));
}

TEST_F(FileDataSource, AppendsWhereverItStands) {
    m_folder.file(L"f", "abc");
    open(OM_APPEND);
    m_source->Write("d", 1);
    m_source->Seek(1, FILE_BEGIN);
    EXPECT_EQ(m_source->Write("e", 1), 1);
    m_source->Seek(0, FILE_BEGIN);
    EXPECT_EQ(read(9), "abcde");
    EXPECT_EQ(closedContent(), "abcde");
}

TEST_F(FileDataSource, ReadsLinesThenTheRestThenNothing) {
    hold("ab\r\ncd");
    EXPECT_EQ(readLine(), (Line{4, "ab\r\n"}));
    EXPECT_EQ(readLine(), (Line{2, "cd"}));
    EXPECT_EQ(readLine(), (Line{0, ""}));
}

TEST_F(FileDataSource, ReadsEmptyLines) {
    hold("\r\n\r\nx\r\n");
    EXPECT_EQ(readLine(), (Line{2, "\r\n"}));
    EXPECT_EQ(readLine(), (Line{2, "\r\n"}));
    EXPECT_EQ(readLine(), (Line{3, "x\r\n"}));
    EXPECT_EQ(readLine(), (Line{0, ""}));
}

TEST_F(FileDataSource, TakesOnlyThePairForALineEnd) {
    hold("a\nb\rc\r\nd");
    EXPECT_EQ(readLine(), (Line{7, "a\nb\rc\r\n"}));
    EXPECT_EQ(readLine(), (Line{1, "d"}));
}

TEST_F(FileDataSource, HandsOutAWholeLineOnlyWithRoomToSpare) {
    hold("abcd\r\nefgh\r\n");
    EXPECT_EQ(readLine(8), (Line{6, "abcd\r\n"}));
    EXPECT_EQ(readLine(7),
              (Line{6, "efgh\r\n"}));  // in one piece, since a piece of 6 bytes holds it
    hold("abcd\r\nefgh\r\n");
    EXPECT_EQ(readLine(6), (Line{5, "abcd\r"}));
    EXPECT_EQ(readLine(200), (Line{7, "\nefgh\r\n"}));
}

TEST_F(FileDataSource, CutsALineThatDoesNotFit) {
    hold("abcdefgh\r\n");
    EXPECT_EQ(readLine(4), (Line{3, "abc"}));
    EXPECT_EQ(readLine(4), (Line{3, "def"}));
    EXPECT_EQ(readLine(4), (Line{3, "gh\r"}));
    EXPECT_EQ(readLine(4), (Line{1, "\n"}));
    EXPECT_EQ(readLine(4), (Line{0, ""}));
}

TEST_F(FileDataSource, CutsALineThatDoesNotFitTheBuffer) {
    hold("abcdefgh\r\nij\r\n", 8);
    EXPECT_EQ(readLine(), (Line{7, "abcdefg"}));
    EXPECT_EQ(readLine(), (Line{3, "h\r\n"}));
    EXPECT_EQ(readLine(), (Line{4, "ij\r\n"}));
}

TEST_F(FileDataSource, JoinsALineAcrossReads) {
    hold("ab\r\ncdef\r\n", 8);
    EXPECT_EQ(readLine(), (Line{4, "ab\r\n"}));
    EXPECT_EQ(readLine(), (Line{6, "cdef\r\n"}));
}

TEST_F(FileDataSource, StoresOnlyTheTerminatorWithRoomForNothingElse) {
    hold("ab\r\n");
    EXPECT_EQ(readLine(1), (Line{0, ""}));
    char untouched = '#';
    EXPECT_EQ(m_source->ReadLine(&untouched, 0), 0);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(readLine(2), (Line{1, "a"}));
    EXPECT_EQ(readLine(3), (Line{2, "b\r"}));
}

TEST_F(FileDataSource, EndsTheTextAtAZeroByte) {
    hold(std::string_view("ab\0cd\r\nef\r\n", 11));
    EXPECT_EQ(readLine(), (Line{2, "ab"}));
    EXPECT_EQ(readLine(), (Line{0, ""}));
}

TEST_F(FileDataSource, RefusesNullBuffers) {
    open(OM_WRITE);
    EXPECT_EQ(m_source->ReadLine(nullptr, 10), -1);
    EXPECT_EQ(m_source->WriteLine(nullptr), -1);
    EXPECT_EQ(m_source->Read(nullptr, 10), -1);
    EXPECT_EQ(m_source->Write(nullptr, 10), -1);
}

TEST_F(FileDataSource, AddsTheMissingLineEnd) {
    open(OM_WRITE);
    EXPECT_EQ(m_source->WriteLine("a"), 1);
    EXPECT_EQ(closedContent(), "a\r\n");
}

TEST_F(FileDataSource, KeepsAnExistingLineEnd) {
    open(OM_WRITE);
    EXPECT_EQ(m_source->WriteLine("a\n"), 2);
    EXPECT_EQ(m_source->WriteLine("b\r"), 2);
    EXPECT_EQ(m_source->WriteLine("\n"), 1);
    EXPECT_EQ(closedContent(), "a\nb\r\n");
}

TEST_F(FileDataSource, WritesAnEmptyLine) {
    open(OM_WRITE);
    EXPECT_EQ(m_source->WriteLine(""), 0);
    EXPECT_EQ(closedContent(), "\r\n");
}

TEST_F(FileDataSource, ReportsALineThatCannotBeWritten) {
    hold("abc");
    EXPECT_EQ(m_source->WriteLine("a"), -1);
}

TEST_F(FileDataSource, DropsWhatWasReadAheadWhenReadingBytes) {
    hold("ab\r\ncd", 6);
    readLine();
    EXPECT_EQ(read(9), "d");  // the c was read ahead
}

TEST_F(FileDataSource, ReadsLinesFromWhereBytesWereRead) {
    hold("ab\r\ncd\r\nef\r\n", 8);
    readLine();
    EXPECT_EQ(read(1), "\n");  // the bytes before it were read ahead
    EXPECT_EQ(readLine(), (Line{4, "ef\r\n"}));
}

TEST_F(FileDataSource, SeeksFromWhatTheCallerHasConsumed) {
    hold("ab\r\ncdef");
    readLine();
    EXPECT_EQ(m_source->Seek(1, FILE_CURRENT), 5);
    EXPECT_EQ(read(9), "def");
}

TEST_F(FileDataSource, SeeksFromTheReadAheadWhenNothingIsConsumed) {
    hold("abcdef");
    readLine(1);
    EXPECT_EQ(m_source->Seek(-1, FILE_CURRENT), 5);
}

TEST_F(FileDataSource, DropsWhatWasReadAheadWhenSeeking) {
    hold("ab\r\ncd\r\n");
    readLine();
    EXPECT_EQ(m_source->Seek(0, FILE_BEGIN), 0);
    EXPECT_EQ(readLine(), (Line{4, "ab\r\n"}));
    EXPECT_EQ(m_source->Seek(0, FILE_END), 8);
    EXPECT_EQ(readLine(), (Line{0, ""}));
}

TEST_F(FileDataSource, KeepsWhatWasReadAheadOverClose) {
    hold("ab\r\ncd\r\n");
    readLine();
    EXPECT_EQ(m_source->Close(), 0);
    EXPECT_EQ(readLine(), (Line{4, "cd\r\n"}));
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

TEST(FileDataSourceSizes, TakesABufferOfNoSize) {
    TempFolder folder;
    for (int size : {0, -5, 1}) {
        CUT_FileDataSource source(folder.file(L"f", "ab").c_str(), size);
        ASSERT_EQ(source.Open(OM_READ), 0);
        char line[20];
        EXPECT_EQ(source.ReadLine(line, sizeof line), 0);
        EXPECT_EQ(source.Read(line, sizeof line), 2);
    }
}

TEST(OpenMsgTypes, HaveTheirNumbers) {
    EXPECT_EQ(OM_READ, 0);
    EXPECT_EQ(OM_WRITE, 1);
    EXPECT_EQ(OM_APPEND, 2);
    EXPECT_EQ(sizeof(OpenMsgType), sizeof(int));
}

// A value that is refused must be one that the type can hold.
static_assert(std::is_same_v<std::underlying_type_t<OpenMsgType>, int>);

}  // namespace
