#include "apps/central/EventLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(EventLog, ListsTheNewestFirstWithTheirTimes) {
    EventLog log;
    for (const char* text : {"one", "two", "three"}) log.add(text);
    EXPECT_TRUE(std::string(log.newest(2)).find("one") == std::string::npos);
    const std::string list = log.newest(3);
    EXPECT_EQ(2, std::count(list.begin(), list.end(), '\n'));
    EXPECT_THAT(list, ::testing::MatchesRegex(
                          "\\d\\d\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d three\n.* two\n.* one"));
}

TEST(EventLog, ACountBelowOneListsNothing) {
    EventLog log;
    EXPECT_EQ("", log.newest(5));
    log.add("one");
    EXPECT_EQ("", log.newest(0));
    EXPECT_EQ("", log.newest(-1));
}

TEST(EventLog, ForgetsTheOldest) {
    EventLog log;
    for (size_t i = 0; i <= EventLog::kCapacity; ++i) log.add("event " + std::to_string(i));
    const std::string list = log.newest(INT32_MAX);
    EXPECT_EQ(static_cast<long>(EventLog::kCapacity) - 1,
              std::count(list.begin(), list.end(), '\n'));
    EXPECT_TRUE(list.ends_with("event 1"));
}

TEST(EventLog, AnEventStaysOneLineOfBoundedLength) {
    EventLog log;
    log.add("a\r\nb\x7F");
    EXPECT_TRUE(log.newest(1).ends_with(" a  b "));
    log.add(std::string(199, 'x') + "\xC3\xA9");
    EXPECT_TRUE(log.newest(1).ends_with(" " + std::string(199, 'x')));
}

TEST(EventLog, AWarningIsOnStandardErrorToo) {
    EventLog log;
    ::testing::internal::CaptureStderr();
    log.warn("beware");
    EXPECT_EQ("beware\n", ::testing::internal::GetCapturedStderr());
    EXPECT_TRUE(log.newest(1).ends_with(" beware"));
}

}  // namespace
