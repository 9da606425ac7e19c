#include "NyServer/client/ServerInformation.h"

#include <afxcoll.h>

#include "tests/client/ClientTest.h"
#include "tests/support/CStringPrinter.h"

namespace {

constexpr long kNow = 1'700'000'000;

SYSTEMTIME localTime(long seconds) {
    const ULONGLONG ticks = (11'644'473'600ull + static_cast<ULONGLONG>(seconds)) * 10'000'000;
    const FILETIME fileTime{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME universal;
    SYSTEMTIME local;
    EXPECT_TRUE(::FileTimeToSystemTime(&fileTime, &universal));
    EXPECT_TRUE(::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local));
    return local;
}

// The user's default form of date and time; at midnight the date stands alone.
CString shownTime(long seconds) {
    const SYSTEMTIME local = localTime(seconds);
    WCHAR date[80];
    WCHAR time[80];
    EXPECT_NE(
        0, ::GetDateFormatW(LOCALE_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &local, nullptr, date, 80));
    EXPECT_NE(
        0, ::GetTimeFormatW(LOCALE_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &local, nullptr, time, 80));
    const bool isMidnight = local.wHour == 0 && local.wMinute == 0 && local.wSecond == 0;
    return isMidnight ? CString(date) : CString(date) + _T(" ") + time;
}

class ServerInformation : public ClientTest {
  protected:
    // What the client reports when the server answers so.
    void report(const std::string& time, const std::string& identity) {
        serve({{goldenWire("request-getCurrentTime"), {time}},
               {goldenWire("request-getMachineIdentifiant"), {identity}}});
        report();
    }
    void report() {
        address = client.getStrAddress();
        port.Format(_T("%ld"), static_cast<long>(client.getPort()));
        client.getServerInformation(lines);
    }
    void expectLines(const CString& time, const CString& identity) {
        const CString rule = _T("####################################################");
        const CString expected[] = {rule,
                                    _T("\t\tCOLLABORATIVE SERVER INFORMATION"),
                                    rule,
                                    _T(" "),
                                    _T("ADDRESS                       \t: ") + address,
                                    _T("PORT                          \t: ") + port,
                                    _T("CURRENT TIME                  \t: ") + time,
                                    _T("MACHINE ID                    \t: ") + identity,
                                    _T("HOSTNAME                      \t: ") + client.getHostName(),
                                    _T("")};
        ASSERT_EQ(10, lines.GetSize());
        for (INT_PTR i = 0; i < 10; ++i) EXPECT_EQ(expected[i], lines[i]) << i;
    }

    CStringArray lines;
    CString address;
    CString port;
};

TEST_F(ServerInformation, IsTenLines) {
    lines.Add(_T("before"));
    report(wireOf<LONG>(kNow), goldenWire("reply-string"));
    EXPECT_EQ(CString("127.0.0.1"), address);
    expectLines(shownTime(kNow), _T("00-1a-2b-3c-4d-5e"));
    expectRequestsSent();
}

TEST_F(ServerInformation, ShowsTheEpochWithoutAnswer) {
    serveRequest(goldenWire("request-getCurrentTime"), "", Then::close);
    report();
    expectLines(shownTime(0), _T(""));
}

TEST_F(ServerInformation, ShowsTheEpochWithoutConnection) {
    lines.Add(_T("before"));
    report();
    expectLines(shownTime(0), _T(""));
}

TEST_F(ServerInformation, ShowsAnInvalidTime) {
    report(wireOf<LONG>(-1), wireOf<LONG>(0));
    expectLines(_T("Invalid DateTime"), _T(""));
}

TEST(ServerTimeText, IsLocal) {
    for (const long seconds : {0L, 1L, 86'399L, 86'400L, 951'782'400L, kNow, LONG_MAX}) {
        EXPECT_EQ(shownTime(seconds), serverinformation::timeText(seconds)) << seconds;
    }
}

TEST(ServerTimeText, IsInvalidBefore1970) {
    EXPECT_EQ(CString("Invalid DateTime"), serverinformation::timeText(-1));
    EXPECT_EQ(CString("Invalid DateTime"), serverinformation::timeText(LONG_MIN));
}

TEST(ServerInformationLine, PadsTheLabelTo30Characters) {
    const CString label30(_T('x'), 30);
    EXPECT_EQ(CString(_T(' '), 30) + _T("\t: "), serverinformation::labelledLine(_T(""), _T("")));
    EXPECT_EQ(label30.Left(29) + _T(" \t: v"),
              serverinformation::labelledLine(label30.Left(29), _T("v")));
    EXPECT_EQ(label30 + _T("\t: v"), serverinformation::labelledLine(label30, _T("v")));
}

TEST(ServerInformationLine, KeepsALongerLabelAndItsTab) {
    const CString label(_T('x'), 45);
    EXPECT_EQ(label + _T("\t: v %s"), serverinformation::labelledLine(label, _T("v %s")));
}

}  // namespace
