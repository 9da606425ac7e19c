#include "NyServer/client/ServerInformation.h"

#include <afxcoll.h>

#include "tests/client/ClientTest.h"
#include "tests/support/CStringPrinter.h"

namespace {

constexpr long kNow = 1'700'000'000;

// The user's default form of local date and time; at midnight the date stands alone.
CString shownTime(long seconds) {
    const ULONGLONG ticks = (11'644'473'600ull + static_cast<ULONGLONG>(seconds)) * 10'000'000;
    const FILETIME fileTime{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME universal;
    SYSTEMTIME local;
    EXPECT_TRUE(::FileTimeToSystemTime(&fileTime, &universal));
    EXPECT_TRUE(::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local));
    WCHAR date[80] = L"";
    WCHAR time[80] = L"";
    ::GetDateFormatW(LOCALE_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &local, nullptr, date, 80);
    ::GetTimeFormatW(LOCALE_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &local, nullptr, time, 80);
    EXPECT_TRUE(*date != 0 && *time != 0);
    const bool isMidnight = local.wHour == 0 && local.wMinute == 0 && local.wSecond == 0;
    return isMidnight ? CString(date) : CString(date) + _T(" ") + time;
}

class ServerInformation : public ClientTest {
  protected:
    // Expects that the client reports these, and nothing of what the array held.
    void expectReport(const CString& time, const CString& identity) {
        CString port;
        port.Format(_T("%ld"), static_cast<long>(client.getPort()));
        const CString rule = _T("####################################################");
        const CString expected[] = {
            rule,
            _T("\t\tCOLLABORATIVE SERVER INFORMATION"),
            rule,
            _T(" "),
            _T("ADDRESS                       \t: ") + client.getStrAddress(),
            _T("PORT                          \t: ") + port,
            _T("CURRENT TIME                  \t: ") + time,
            _T("MACHINE ID                    \t: ") + identity,
            _T("HOSTNAME                      \t: ") + client.getHostName(),
            _T("")};
        CStringArray lines;
        lines.Add(_T("before"));
        client.getServerInformation(lines);
        ASSERT_EQ(10, lines.GetSize());
        for (INT_PTR i = 0; i < 10; ++i) EXPECT_EQ(expected[i], lines[i]) << i;
    }
    void answer(const std::string& time, const std::string& identity) {
        serve({{goldenWire("request-getCurrentTime"), {time}},
               {goldenWire("request-getMachineIdentifiant"), {identity}}});
    }
};

TEST_F(ServerInformation, IsTenLines) {
    answer(wireOf<LONG>(kNow), goldenWire("reply-string"));
    expectReport(shownTime(kNow), _T("00-1a-2b-3c-4d-5e"));
    expectRequestsSent();
}

TEST_F(ServerInformation, ShowsTheEpochWithoutAReply) {
    expectReport(shownTime(0), _T(""));
    serveRequest(goldenWire("request-getCurrentTime"), "", Then::close);
    expectReport(shownTime(0), _T(""));
}

TEST_F(ServerInformation, ShowsAnInvalidTime) {
    answer(wireOf<LONG>(-1), wireOf<LONG>(0));
    expectReport(_T("Invalid DateTime"), _T(""));
}

TEST(ServerTimeText, IsLocalSince1970) {
    for (const long seconds : {0L, 1L, 86'399L, 86'400L, 951'782'400L, kNow, LONG_MAX})
        EXPECT_EQ(shownTime(seconds), serverinformation::timeText(seconds)) << seconds;
    for (const long seconds : {-1L, LONG_MIN})
        EXPECT_EQ(CString("Invalid DateTime"), serverinformation::timeText(seconds));
}

TEST(ServerInformationLine, PadsTheLabelTo30Characters) {
    using serverinformation::labelledLine;
    const CString label(_T('x'), 45);
    EXPECT_EQ(CString(_T(' '), 30) + _T("\t: "), labelledLine(_T(""), _T("")));
    EXPECT_EQ(label.Left(29) + _T(" \t: v"), labelledLine(label.Left(29), _T("v")));
    EXPECT_EQ(label.Left(30) + _T("\t: v"), labelledLine(label.Left(30), _T("v")));
    EXPECT_EQ(label + _T("\t: v %s"), labelledLine(label, _T("v %s")));
}

}  // namespace
