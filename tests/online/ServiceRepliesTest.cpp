// What becomes of what the service answers.
#include "tests/online/OnlineTest.h"
#include "tests/support/Gate.h"

namespace {

using NyFctWebService::pingWebServer;

const std::string kVersion = "<VERSION>2.1</VERSION>";

// No failure but that of a read may show a box.
class OnlineReplies : public OnlineTest {
  protected:
    // The version when `rest` follows `first` only after the library has answered.
    static CString versionBefore(const std::string& first, const std::string& rest) {
        Gate answered;
        const WebServer custom([&](peers::Connection& connection) {
            const auto length = static_cast<long long>(first.size() + rest.size());
            connection.send(webAnswer(first, "200 OK", length));
            EXPECT_TRUE(answered.pass());
            connection.send(rest);
        });
        const CString found = versionAt(custom.address());
        answered.open();
        return found;
    }

    const NoMessageBoxes m_none;
};

TEST_F(OnlineReplies, OfAnyStatusShowThatTheServiceIsRunning) {
    for (const char* status : {"200 OK", "404 Not Found", "500 Internal Server Error"}) {
        const WebServer server(page("", status));
        addresses::production = server.address();
        EXPECT_TRUE(pingWebServer()) << status;
    }
}

TEST_F(OnlineReplies, AreMissingWithoutAListenerOrAnAddressThatResolves) {
    const peers::RefusingPort nobody;
    for (const CString& address :
         {refusingAddress(nobody), CString(_T("http://service.nyserver.invalid/")), CString()}) {
        addresses::production = address;
        EXPECT_FALSE(pingWebServer());
        EXPECT_EQ(_T(""), version());
    }
}

TEST_F(OnlineReplies, HoldTheVersionInAnElement) {
    const std::pair<peers::Script, CString> rows[] = {
        {page("<ANSWER>" + kVersion + "</ANSWER>"), _T("2.1")},
        {page(kVersion, "404 Not Found"), _T("2.1")},
        {page("<VERSION>\xE9\x80</VERSION>"), CString("\xE9\x80")},  // in the ANSI code page
        {page(kVersion + '\0'), _T("2.1")},
        {page('\0' + kVersion), _T("")},  // a zero byte ends the text
        {page("no element"), _T("")},
        {page(""), _T("")},
    };
    for (const auto& [answer, version] : rows) EXPECT_EQ(version, versionBy(answer));
}

TEST_F(OnlineReplies, AreReadAsFarAsTheyArrivedBeforeTheConnectionWasLost) {
    EXPECT_EQ(_T("2.1"), versionBy(cutPage(kVersion, 1000)));
    EXPECT_EQ(_T(""), versionBy(cutPage("<VERSION>2.1", 1000)));
    EXPECT_EQ(_T(""), versionBy(cutPage("", 1000)));
}

TEST_F(OnlineReplies, MayAnnounceAFalseLength) {
    EXPECT_EQ(_T("2.1"), versionBy(cutPage(kVersion, 4000000000)));
    EXPECT_EQ(_T("2.1"), versionBy(cutPage(kVersion, 8589934592)));
}

TEST_F(OnlineReplies, AreAwaitedUpToTheirFirstBytesAndNoFurther) {
    const std::string megabyte(1 << 20, 'x');
    EXPECT_EQ(_T("2.1"), versionBy(pageInPieces({"", kVersion}, 200)));
    EXPECT_EQ(_T("2.1"), versionBy(page(kVersion + megabyte)));
    EXPECT_EQ(_T("2.1"), versionBefore(kVersion, "and more"));
    EXPECT_EQ(_T(""), versionBefore("<VERSION>2.", "1</VERSION>"));
    EXPECT_EQ(_T(""), versionBefore(megabyte, kVersion))
        << "only what the first look finds is read";
}

TEST_F(OnlineReplies, HaveNoVersionWhenProductionIsDown) {
    const peers::RefusingPort nobody;
    addresses::production = refusingAddress(nobody);
    const WebServer custom(page(kVersion));
    EXPECT_EQ(_T(""), versionAt(custom.address()));
    EXPECT_EQ(0, custom.connections());
}

TEST_F(OnlineReplies, HaveNoVersionWhenOnlyProductionIsUp) {
    const peers::RefusingPort nobody;
    EXPECT_EQ(_T(""), versionAt(refusingAddress(nobody)));
    EXPECT_EQ((Paths{"/"}), m_production.paths());
}

TEST_F(OnlineReplies, HaveAVersionWhateverProductionReplies) {
    const WebServer production(page("", "503 Service Unavailable"));
    addresses::production = production.address();
    EXPECT_EQ(_T("2.1"), versionBy(page(kVersion)));
}

TEST_F(OnlineReplies, AreMissingWhenOutOfMemory) {
    addresses::isMemoryLeft = false;
    EXPECT_FALSE(pingWebServer());
    EXPECT_EQ(_T(""), version());
    EXPECT_EQ(_T(""), versionBy(page(kVersion)));
}

}  // namespace
