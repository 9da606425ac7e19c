// Which service is asked for which page, and how.
#include "NyServer/online/ServiceAddress.h"
#include "tests/online/OnlineTest.h"
#include "tests/support/TempFile.h"

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
    expectAsked(NyFctWebService::serverUrlProduction, _T("production"));
    EXPECT_EQ((Paths{kPingPath, "/", kVersionPath}), m_production.paths());
    connectToTestBase(true);
    expectAsked(NyFctWebService::serverUrlTest, _T("test"));
    setCustomServerUrl(m_customAddress);
    expectAsked(NyFctWebService::serverUrlCustom, _T("custom"));
    for (const WebServer* one : {&m_test, &m_custom})
        EXPECT_EQ((Paths{kPingPath, kVersionPath}), one->paths());
    EXPECT_EQ((Paths{kPingPath, "/", kVersionPath, "/", "/"}), m_production.paths());
}

TEST_F(OnlineService, ReturnsToProductionAndClearsTheCustomAddress) {
    setCustomServerUrl(m_customAddress);
    connectToTestBase(false);
    expectAsked(NyFctWebService::serverUrlProduction, _T("production"));
    EXPECT_EQ(Paths{}, m_custom.paths());
}

TEST_F(OnlineService, AppendsPagesDirectlyToTheCallersTextAndProductsInDecimal) {
    CString address = _T("no address");
    setCustomServerUrl(address);
    EXPECT_FALSE(pingWebServer());
    address = m_customAddress + _T("service/x_");
    EXPECT_TRUE(pingWebServer());
    EXPECT_EQ("/service/x__Utilities/Ping.aspx", m_custom.paths().back());
    for (const long product : {42L, 0L, -7L, 2147483647L}) {
        EXPECT_EQ(_T("custom"), NyFctWebService::getOnlineVersionFromSoftwareID(product));
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
    const TempFolder folder;
    NyFctWebService::Util::setStrTempFolderPath(CString(folder.path("").c_str()));
    pingWebServer();
    EXPECT_EQ(_T("production"), version());
    for (const char* name : {"nyWebServerPing.xml", "nyOnlineVersion.xml"}) {
        EXPECT_FALSE(folder.has(name));
        EXPECT_FALSE(std::filesystem::exists(name));
    }
}

TEST(ServiceAddress, IsProductionForAnInvalidType) {
    addresses::production = _T("p/");
    addresses::test = _T("t/");
    const std::pair<int, CString> rows[] = {
        {0, _T("p/")}, {1, _T("t/")}, {2, _T("c/")}, {3, _T("p/")}, {-1, _T("p/")}};
    for (const auto& [type, address] : rows)
        EXPECT_EQ(address,
                  serviceAddress(static_cast<NyFctWebService::ServerUrlType>(type), _T("c/")));
}

}  // namespace
