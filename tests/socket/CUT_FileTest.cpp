#include "NyServer/socket/CUT_File.h"

#include <gtest/gtest.h>

#include "tests/support/TempFile.h"

namespace {

class File : public testing::Test {
  protected:
    int openForReading(const WideText& path) {
        return m_file.Open(path.c_str(), GENERIC_READ, OPEN_EXISTING, 0);
    }
    int openForWriting(const WideText& path, int append) {
        return m_file.Open(path.c_str(), GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, append);
    }
    std::string read(DWORD count) {
        std::string bytes(count, '\0');
        const int done = m_file.Read(bytes.data(), count);
        return done < 0 ? "failed" : bytes.substr(0, static_cast<size_t>(done));
    }
    std::string closedContent() {
        m_file.Close();
        return m_folder.content("f");
    }
    bool canBeWritten() {
        return CUT_File().Open(m_folder.path("f").c_str(), GENERIC_WRITE, OPEN_EXISTING, 0) == 0;
    }

    TempFolder m_folder;
    CUT_File m_file;
};

TEST_F(File, RefusesEverythingWhileClosed) {
    char byte = 0;
    EXPECT_EQ(m_file.Read(&byte, 1), -1);
    EXPECT_EQ(m_file.Write(&byte, 1), -1);
    EXPECT_EQ(m_file.Seek(0, FILE_BEGIN), -1);
    EXPECT_EQ(m_file.GetSize(), -1);
    EXPECT_EQ(m_file.Close(), 0);
}

TEST_F(File, IsClosedAfterAFailedOpen) {
    for (const WCHAR* path : {_T("missing"), _T(""), _T("   ")}) {
        ASSERT_EQ(openForReading(m_folder.file("f", "abc")), 0);
        EXPECT_EQ(openForReading(path), -1);
        EXPECT_EQ(m_file.GetSize(), -1);
        EXPECT_TRUE(canBeWritten());
    }
    EXPECT_EQ(m_file.Open(nullptr, GENERIC_READ, OPEN_EXISTING, 0), -1);
}

TEST_F(File, FailsToReadWhatMayOnlyBeWritten) {
    ASSERT_EQ(m_file.Open(m_folder.path("f").c_str(), GENERIC_WRITE, CREATE_ALWAYS, 0), 0);
    EXPECT_EQ(read(1), "failed");
}

TEST_F(File, SeeksFromEachOriginAndReadsUpToTheEnd) {
    ASSERT_EQ(openForReading(m_folder.file("f", "abcdef")), 0);
    EXPECT_EQ(m_file.GetSize(), 6);
    EXPECT_EQ(m_file.Seek(2, FILE_BEGIN), 2);
    EXPECT_EQ(m_file.Seek(1, FILE_CURRENT), 3);
    EXPECT_EQ(m_file.Seek(-2, FILE_END), 4);
    EXPECT_EQ(m_file.Seek(-9, FILE_BEGIN), -1);
    EXPECT_EQ(read(9), "ef");
    EXPECT_EQ(read(9), "");
}

TEST_F(File, WritesAtThePositionAndInTheModeOfTheLastOpen) {
    ASSERT_EQ(openForWriting(m_folder.path("other"), 1), 0);
    ASSERT_EQ(openForWriting(m_folder.file("f", "abcdef"), 0), 0);
    EXPECT_EQ(m_file.Write("XY", 2), 2);
    EXPECT_EQ(closedContent(), "XYcdef");
}

TEST_F(File, AllowsOthersToReadButNotToWrite) {
    const WideText path = m_folder.file("f", "abc");
    ASSERT_EQ(openForReading(path), 0);
    CUT_File other;
    EXPECT_EQ(other.Open(path.c_str(), GENERIC_READ, OPEN_EXISTING, 0), 0);
    EXPECT_EQ(other.Open(path.c_str(), GENERIC_WRITE, OPEN_EXISTING, 0), -1);
}

TEST_F(File, IsClosedByItsDestructor) {
    {
        CUT_File file;
        file.Open(m_folder.file("f", "abc").c_str(), GENERIC_READ, OPEN_EXISTING, 0);
        EXPECT_FALSE(canBeWritten());
    }
    EXPECT_TRUE(canBeWritten());
}

}  // namespace
