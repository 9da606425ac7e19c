// Which service is asked for which page, and how.
#include "NyServer/online/ServiceAddress.h"
#include "tests/online/OnlineTest.h"

namespace {

using NyFctWebService::connectToTestBase;
using NyFctWebService::getServerUrlType;
using NyFctWebService::pingWebServer;
using NyFctWebService::setCustomServerUrl;

class OnlineService : public OnlineTest {
  protected:
    void expectAsked(NyFctWebService::ServerUrlType type, LPCWSTR answer) {
        EXPECT_EQ(type, getServerUrlType());
        EXPECT_TRUE(pingWebServer());
        EXPECT_EQ(answer, version());
    }

    WebServer m_custom{page("<VERSION>custom</VERSION>")};
    CString m_customAddress = m_custom.address();
};

// For the version, production is tried first.
TEST_F(OnlineService, RequestsFromTheChosenOne) {
    expectAsked(NyFctWebService::serverUrlProduction, L"production");
    EXPECT_EQ((Paths{kPingPath, "/", kVersionPath}), m_production.paths());
    connectToTestBase(true);
    expectAsked(NyFctWebService::serverUrlTest, L"test");
    setCustomServerUrl(m_customAddress);
    expectAsked(NyFctWebService::serverUrlCustom, L"custom");
    for (const WebServer* one : {&m_test, &m_custom})
        EXPECT_EQ((Paths{kPingPath, kVersionPath}), one->paths());
    EXPECT_EQ((Paths{kPingPath, "/", kVersionPath, "/", "/"}), m_production.paths());
}

TEST_F(OnlineService, ReturnsToProductionAndClearsTheCustomAddress) {
    setCustomServerUrl(m_customAddress);
    connectToTestBase(false);
    expectAsked(NyFctWebService::serverUrlProduction, L"production");
    EXPECT_EQ(Paths{}, m_custom.paths());
}

TEST_F(OnlineService, AppendsPagesDirectlyToTheCallersTextAndProductsInDecimal) {
    CString address = L"no address";
    setCustomServerUrl(address);
    EXPECT_FALSE(pingWebServer());
    address = m_customAddress + L"service/x_";
    EXPECT_TRUE(pingWebServer());
    EXPECT_EQ("/service/x__Utilities/Ping.aspx", m_custom.paths().back());
    for (const long product : {42L, 0L, -7L, 2147483647L}) {
        EXPECT_EQ(L"custom", NyFctWebService::getOnlineVersionFromSoftwareID(product));
        EXPECT_EQ("/service/x__Utilities/Version.aspx?sid=" + std::to_string(product),
                  m_custom.paths().back());
    }
}

// One for a ping and two for a version.
TEST_F(OnlineService, CallsItselfQuillmarkOnAConnectionForEachRequest) {
    pingWebServer();
    EXPECT_EQ(1, m_production.connections());
    version();
    EXPECT_EQ(3, m_production.connections());
    ASSERT_EQ(3u, m_production.requests().size());
    for (const WebRequest& request : m_production.requests()) {
        EXPECT_EQ("quillmark", request.header("User-Agent"));
        EXPECT_EQ(0u, request.head.find("GET "));
        EXPECT_EQ("", request.header("If-Modified-Since")) << "no copy is to be confirmed";
        EXPECT_EQ("", request.header("If-None-Match"));
    }
}

TEST_F(OnlineService, WritesNoFile) {
    wchar_t folder[MAX_PATH] = L"";
    ::GetTempPathW(MAX_PATH, folder);
    NyFctWebService::Util::setStrTempFolderPath(folder);
    pingWebServer();
    EXPECT_EQ(L"production", version());
    for (const CString& place : {CString(folder), CString()}) {
        for (const wchar_t* name : {L"nyWebServerPing.xml", L"nyOnlineVersion.xml"}) {
            EXPECT_EQ(INVALID_FILE_ATTRIBUTES, ::GetFileAttributesW(place + name));
        }
    }
}

// Answers, and adds the cursor that the thread shows meanwhile.
peers::Script keepingCursor(DWORD thread, std::vector<HCURSOR>& cursors) {
    return [thread, &cursors](peers::Connection& connection) {
        ::AttachThreadInput(::GetCurrentThreadId(), thread, TRUE);
        cursors.push_back(::GetCursor());
        ::AttachThreadInput(::GetCurrentThreadId(), thread, FALSE);
        connection.send(webAnswer("<VERSION>2.1</VERSION>"));
    };
}

TEST_F(OnlineService, ShowsTheWaitCursorDuringARequest) {
    const HCURSOR wait = ::LoadCursorW(nullptr, IDC_WAIT);
    const HCURSOR cross = ::LoadCursorW(nullptr, IDC_CROSS);
    ::SetCursor(cross);
    std::vector<HCURSOR> cursors;
    const WebServer server(keepingCursor(::GetCurrentThreadId(), cursors));
    addresses::production = server.address();
    pingWebServer();
    EXPECT_EQ(cross, ::GetCursor());
    version();
    EXPECT_EQ(cross, ::GetCursor());
    EXPECT_EQ(std::vector<HCURSOR>(3, wait), cursors);
}

TEST(ServiceAddress, IsProductionForAnInvalidType) {
    addresses::production = L"p/";
    addresses::test = L"t/";
    const std::pair<int, CString> rows[] = {
        {0, L"p/"}, {1, L"t/"}, {2, L"c/"}, {3, L"p/"}, {-1, L"p/"}};
    for (const auto& [type, address] : rows)
        EXPECT_EQ(address,
                  serviceAddress(static_cast<NyFctWebService::ServerUrlType>(type), L"c/"));
}

}  // namespace
