#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/socket/CUT_DataSource.h"

namespace {

// A data source in memory.
class TextSource : public CUT_DataSource {
  public:
    explicit TextSource(std::string text) : m_text(std::move(text)) {}

    int failingSeek = -1;  // the number, from 0, of the Seek that fails
    int seeks = 0;

    CUT_DataSource* Clone() override { return nullptr; }
    int Open(OpenMsgType) override { return 0; }
    int Close() override { return 0; }
    int ReadLine(char*, unsigned int) override { return -1; }
    int WriteLine(const char*) override { return -1; }
    int Write(const char*, unsigned int) override { return -1; }
    int Read(char* buffer, unsigned int count) override {
        const size_t done = m_text.copy(buffer, count, m_position);
        m_position += done;
        return static_cast<int>(done);
    }
    long Seek(long offset, int origin) override {
        if (seeks++ == failingSeek || origin != FILE_BEGIN || offset < 0) return -1;
        m_position = std::min(static_cast<size_t>(offset), m_text.size());
        return offset;
    }

  private:
    std::string m_text;
    size_t m_position = 0;
};

// Text of `size` bytes that holds "needle" at `position`.
std::string hay(size_t size, size_t position) {
    return std::string(size, '.').replace(position, 6, "needle");
}

TEST(DataSourceFind, GivesThePositionFromTheBeginning) {
    TextSource source("one two one two");
    EXPECT_EQ(source.Find("two", 0, 1, 0), 4);
    EXPECT_EQ(source.Find("two", 4, 1, 0), 4);
    EXPECT_EQ(source.Find("two", 5, 1, 0), 12);
    EXPECT_EQ(source.Find("three", 0, 1, 0), -1);
}

TEST(DataSourceFind, HeedsTheCaseWhenAsked) {
    TextSource source("one Two");
    EXPECT_EQ(source.Find("tWO", 0, 0, 0), 4);
    EXPECT_EQ(source.Find("tWO", 0, 1, 0), -1);
    EXPECT_EQ(source.Find("Two", 0, 1, 0), 4);
}

TEST(DataSourceFind, RefusesTextsThatCannotBeSearched) {
    TextSource source(std::string(9000, 'a'));
    EXPECT_EQ(source.Find(nullptr, 0, 1, 0), -1);
    EXPECT_EQ(source.Find("", 0, 1, 0), -1);
    EXPECT_EQ(source.Find(std::string(4096, 'a').c_str(), 0, 1, 0), -1);
    EXPECT_EQ(source.seeks, 0);
    EXPECT_EQ(source.Find(std::string(4094, 'a').c_str(), 0, 1, 0), 0);
}

TEST(DataSourceFind, RefusesABoundShorterThanTheText) {
    TextSource source("one two");
    EXPECT_EQ(source.Find("two", 0, 1, 2), -1);
    EXPECT_EQ(source.seeks, 0);
    EXPECT_EQ(source.Find("two", 0, 1, 3), 4);
}

TEST(DataSourceFind, DoesNotFindATextThatIsTheWholeSource) {
    TextSource source("two");
    EXPECT_EQ(source.Find("two", 0, 1, 0), -1);
    TextSource longer("two.");
    EXPECT_EQ(longer.Find("two", 0, 1, 0), 0);
}

TEST(DataSourceFind, FindsAcrossTheSeamOfItsWindows) {
    for (size_t position = 4080; position <= 4100; ++position) {
        TextSource source(hay(9000, position));
        EXPECT_EQ(source.Find("needle", 0, 1, 0), static_cast<long>(position));
        EXPECT_EQ(source.Find("NEEDLE", 0, 0, 0), static_cast<long>(position));
    }
}

TEST(DataSourceFind, FindsInLaterWindows) {
    TextSource source(hay(60000, 54321));
    EXPECT_EQ(source.Find("needle", 0, 1, 0), 54321);
    EXPECT_EQ(source.Find("needle", 50000, 1, 0), 54321);
    EXPECT_EQ(source.Find("needle", 54322, 1, 0), -1);
}

TEST(DataSourceFind, StopsWhenAWindowBeginsBeyondTheBound) {
    // The second window begins at 4095 - 6 = 4089.
    TextSource source(hay(9000, 5000));
    EXPECT_EQ(source.Find("needle", 0, 1, 4088), -1);
    EXPECT_EQ(source.Find("needle", 0, 1, 4089), 5000);
    EXPECT_EQ(source.Find("needle", 900, 1, 4088), -1);
    EXPECT_EQ(source.Find("needle", 0, 1, -1), 5000);
}

TEST(DataSourceFind, EndsAtAFailedSeek) {
    TextSource first(hay(9000, 5000));
    first.failingSeek = 0;
    EXPECT_EQ(first.Find("needle", 0, 1, 0), -1);
    TextSource second(hay(9000, 5000));
    second.failingSeek = 1;
    EXPECT_EQ(second.Find("needle", 0, 1, 0), -1);
    EXPECT_EQ(second.seeks, 2);
}

TEST(DataSourceFind, EndsAWindowAtAZeroByte) {
    std::string text = hay(9000, 100);
    text[50] = '\0';
    TextSource source(text);
    EXPECT_EQ(source.Find("needle", 0, 1, 0), -1);
    EXPECT_EQ(source.Find("needle", 51, 1, 0), 100);
}

}  // namespace
