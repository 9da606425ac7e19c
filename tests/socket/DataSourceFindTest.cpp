#include <gtest/gtest.h>

#include "tests/support/ScriptedSource.h"

namespace {

// Text of `size` bytes that holds "needle" at `position`.
std::string hay(size_t size, size_t position) {
    return std::string(size, '.').replace(position, 6, "needle");
}

TEST(DataSourceFind, ReturnsThePositionFromTheBeginning) {
    const std::string zeroAt50 = hay(9000, 100).replace(50, 1, 1, '\0');
    const struct {
        const char* story;
        std::string source;
        std::string text;
        long start;
        int isCaseSensitive;
        long maxSearch;
        long found;
    } rows[] = {
        {"the first", "one two one two", "two", 0, 1, 0, 4},
        {"from it on", "one two one two", "two", 4, 1, 0, 4},
        {"the next", "one two one two", "two", 5, 1, 0, 12},
        {"none", "one two one two", "three", 0, 1, 0, -1},
        {"in any case", "one Two", "tWO", 0, 0, 0, 4},
        {"in another case", "one Two", "tWO", 0, 1, 0, -1},
        {"in its case", "one Two", "Two", 0, 1, 0, 4},
        {"no bound that the text fits", "one two", "two", 0, 1, 3, 4},
        {"the whole source", "two", "two", 0, 1, 0, -1},
        {"all but the end", "two.", "two", 0, 1, 0, 0},
        {"the longest text", std::string(9000, 'a'), std::string(4094, 'a'), 0, 1, 0, 0},
        {"in a later window", hay(60000, 54321), "needle", 0, 1, 0, 54321},
        {"from late on", hay(60000, 54321), "needle", 50000, 1, 0, 54321},
        {"from too late on", hay(60000, 54321), "needle", 54322, 1, 0, -1},
        // The second window begins at 4095 - 6 = 4089.
        {"a window beyond the bound", hay(9000, 5000), "needle", 0, 1, 4088, -1},
        {"a window at the bound", hay(9000, 5000), "needle", 0, 1, 4089, 5000},
        {"a bound from the start", hay(9000, 5000), "needle", 900, 1, 4088, -1},
        {"no bound", hay(9000, 5000), "needle", 0, 1, -1, 5000},
        {"a zero byte ends a window", zeroAt50, "needle", 0, 1, 0, -1},
        {"after a zero byte", zeroAt50, "needle", 51, 1, 0, 100},
    };
    for (const auto& row : rows) {
        ScriptedSource source(row.source);
        EXPECT_EQ(source.Find(row.text.c_str(), row.start, row.isCaseSensitive, row.maxSearch),
                  row.found)
            << row.story;
    }
}

TEST(DataSourceFind, RefusesTextsThatCannotBeSearched) {
    ScriptedSource source(std::string(9000, 'a'));
    EXPECT_EQ(source.Find(nullptr, 0, 1, 0), -1);
    EXPECT_EQ(source.Find("", 0, 1, 0), -1);
    EXPECT_EQ(source.Find(std::string(4096, 'a').c_str(), 0, 1, 0), -1);
    EXPECT_EQ(source.Find("aaa", 0, 1, 2), -1) << "a bound shorter than the text";
    EXPECT_EQ(source.seeks, 0);
}

TEST(DataSourceFind, FindsAcrossTheBoundaryOfItsWindows) {
    for (size_t position = 4080; position <= 4100; ++position) {
        ScriptedSource source(hay(9000, position));
        EXPECT_EQ(source.Find("needle", 0, 1, 0), static_cast<long>(position));
        EXPECT_EQ(source.Find("NEEDLE", 0, 0, 0), static_cast<long>(position));
    }
}

TEST(DataSourceFind, EndsAtAFailedSeek) {
    for (const int failing : {0, 1}) {
        ScriptedSource source(hay(9000, 5000));
        source.failingSeek = failing;
        EXPECT_EQ(source.Find("needle", 0, 1, 0), -1);
        EXPECT_EQ(source.seeks, failing + 1);
    }
}

}  // namespace
