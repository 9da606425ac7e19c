#include "NyServer/client/ServerInformation.h"

#include <afxcoll.h>

#include "tests/client/ClientTest.h"
#include "tests/support/CStringPrinter.h"

namespace {

constexpr long kNow = 1'700'000'000;

class ServerInformation : public ClientTest {
  protected:
    // Expects that the client reports these, and nothing of what the array held.
    void expectReport(const CString& time, const CString& identity) {
        const CString port(std::to_string(client.getPort()).c_str());
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
    expectReport(serverinformation::timeText(kNow), _T("00-1a-2b-3c-4d-5e"));
    expectRequestsSent();
}

TEST_F(ServerInformation, ShowsTheEpochWithoutAReply) {
    expectReport(serverinformation::timeText(0), _T(""));
    serveRequest(goldenWire("request-getCurrentTime"), "", Then::close);
    expectReport(serverinformation::timeText(0), _T(""));
}

TEST_F(ServerInformation, ShowsAnInvalidTime) {
    answer(wireOf<LONG>(-1), wireOf<LONG>(0));
    expectReport(_T("Invalid DateTime"), _T(""));
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
