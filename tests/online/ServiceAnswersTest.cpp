// What becomes of what the service answers.
#include "tests/online/OnlineTest.h"
#include "tests/support/Gate.h"
#include "tests/support/MessageBoxWatch.h"

namespace {

using NyFctWebService::pingWebServer;

const std::string kVersion = "<VERSION>2.1</VERSION>";

// No failure but that of a read may show a box.
class OnlineAnswers : public OnlineTest {
  protected:
    ~OnlineAnswers() override { EXPECT_EQ(0u, m_watch.boxes().size()); }

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

    MessageBoxWatch m_watch{IDOK};
};

TEST_F(OnlineAnswers, OfAnyStatusShowThatTheServiceIsThere) {
    for (const char* status : {"200 OK", "404 Not Found", "500 Internal Server Error"}) {
        const WebServer server(page("", status));
        addresses::production = server.address();
        EXPECT_TRUE(pingWebServer()) << status;
    }
}

TEST_F(OnlineAnswers, AreMissingWhereNobodyListens) {
    const peers::RefusingPort nobody;
    addresses::production = refusingAddress(nobody);
    EXPECT_FALSE(pingWebServer());
    EXPECT_EQ(L"", version());
}

TEST_F(OnlineAnswers, AreMissingForANameThatDoesNotResolve) {
    addresses::production = L"http://service.nyserver.invalid/";
    EXPECT_FALSE(pingWebServer());
    EXPECT_EQ(L"", version());
}

TEST_F(OnlineAnswers, AreMissingWithoutAnAddress) {
    addresses::production = L"";
    EXPECT_FALSE(pingWebServer());
    EXPECT_EQ(L"", version());
}

TEST_F(OnlineAnswers, HoldTheVersionInAnElement) {
    EXPECT_EQ(L"2.1", versionBy(page("<ANSWER>" + kVersion + "</ANSWER>")));
    EXPECT_EQ(L"a=\"1\">2.1", versionBy(page("<VERSION a=\"1\">2.1</VERSION>")));
    EXPECT_EQ(L"", versionBy(page("<VERSION></VERSION>")));
    EXPECT_EQ(L"", versionBy(page("<version>2.1</version>")));
    EXPECT_EQ(L"", versionBy(page("no element")));
    EXPECT_EQ(L"", versionBy(page("")));
}

TEST_F(OnlineAnswers, AreReadWhateverTheirStatus) {
    EXPECT_EQ(L"2.1", versionBy(page(kVersion, "404 Not Found")));
}

TEST_F(OnlineAnswers, AreInTheAnsiCodePage) {
    EXPECT_EQ(CString("\xE9\x80"), versionBy(page("<VERSION>\xE9\x80</VERSION>")));
}

TEST_F(OnlineAnswers, EndAtAZeroByte) {
    EXPECT_EQ(L"2.1", versionBy(page(kVersion + '\0')));
    EXPECT_EQ(L"", versionBy(page('\0' + kVersion)));
}

TEST_F(OnlineAnswers, CountAsFarAsTheyCameBeforeTheConnectionBroke) {
    EXPECT_EQ(L"2.1", versionBy(cutPage(kVersion, 1000)));
    EXPECT_EQ(L"", versionBy(cutPage("<VERSION>2.1", 1000)));
    EXPECT_EQ(L"", versionBy(cutPage("", 1000)));
}

TEST_F(OnlineAnswers, AreNotBelievedAboutTheirLength) {
    EXPECT_EQ(L"2.1", versionBy(cutPage(kVersion, 4000000000)));
    EXPECT_EQ(L"2.1", versionBy(cutPage(kVersion, 8589934592)));
}

TEST_F(OnlineAnswers, MayBeLong) {
    const std::string megabyte(1 << 20, 'x');
    EXPECT_EQ(L"2.1", versionBy(page(kVersion + megabyte)));
    // Only what the first look finds is read.
    EXPECT_EQ(L"", versionBefore(megabyte, kVersion));
}

TEST_F(OnlineAnswers, AreAwaitedUpToTheirFirstBytes) {
    EXPECT_EQ(L"2.1", versionBy(pageInPieces({"", kVersion}, 200)));
}

TEST_F(OnlineAnswers, AreNotAwaitedAnyFurther) {
    EXPECT_EQ(L"", versionBefore("<VERSION>2.", "1</VERSION>"));
    EXPECT_EQ(L"2.1", versionBefore(kVersion, "and more"));
}

TEST_F(OnlineAnswers, GiveNoVersionWhenProductionIsDown) {
    const peers::RefusingPort nobody;
    addresses::production = refusingAddress(nobody);
    const WebServer custom(page(kVersion));
    EXPECT_EQ(L"", versionAt(custom.address()));
    EXPECT_EQ(0, custom.connections());
}

TEST_F(OnlineAnswers, GiveNoVersionWhenOnlyProductionIsUp) {
    const peers::RefusingPort nobody;
    EXPECT_EQ(L"", versionAt(refusingAddress(nobody)));
    EXPECT_EQ((Paths{"/"}), m_production.paths());
}

TEST_F(OnlineAnswers, GiveAVersionWhateverProductionSays) {
    const WebServer production(page("", "503 Service Unavailable"));
    addresses::production = production.address();
    EXPECT_EQ(L"2.1", versionBy(page(kVersion)));
}

TEST_F(OnlineAnswers, AreMissingWhenMemoryRunsOut) {
    addresses::isMemoryLeft = false;
    EXPECT_FALSE(pingWebServer());
    EXPECT_EQ(L"", version());
    EXPECT_EQ(L"", versionBy(page(kVersion)));
}

}  // namespace
