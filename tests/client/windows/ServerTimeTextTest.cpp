#include <gtest/gtest.h>

#include <climits>

#include "NyServer/base/port/Platform.h"
#include "NyServer/client/ServerInformation.h"
#include "tests/support/CStringPrinter.h"

namespace {

// The user's default form of local date and time; at midnight the date stands alone.
CString shownTime(long seconds) {
    const ULONGLONG ticks = (11'644'473'600ull + static_cast<ULONGLONG>(seconds)) * 10'000'000;
    const FILETIME fileTime{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME universal;
    SYSTEMTIME local;
    EXPECT_TRUE(::FileTimeToSystemTime(&fileTime, &universal));
    EXPECT_TRUE(::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local));
    WCHAR date[80] = _T("");
    WCHAR time[80] = _T("");
    ::GetDateFormatW(LOCALE_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &local, nullptr, date, 80);
    ::GetTimeFormatW(LOCALE_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &local, nullptr, time, 80);
    EXPECT_TRUE(*date != 0 && *time != 0);
    const bool isMidnight = local.wHour == 0 && local.wMinute == 0 && local.wSecond == 0;
    return isMidnight ? CString(date) : CString(date) + _T(" ") + time;
}

constexpr long kNow = 1'700'000'000;

TEST(ServerTimeText, IsLocalSince1970) {
    for (const long seconds : {0L, 1L, 86'399L, 86'400L, 951'782'400L, kNow, LONG_MAX})
        EXPECT_EQ(shownTime(seconds), serverinformation::timeText(seconds)) << seconds;
    for (const long seconds : {-1L, LONG_MIN})
        EXPECT_EQ(CString("Invalid DateTime"), serverinformation::timeText(seconds));
}

}  // namespace
