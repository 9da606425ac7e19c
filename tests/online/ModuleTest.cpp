// The online service client as the library holds it, with the addresses that it was built with.
#include "NyServer/online/NyFctWebService.h"
#include "NyServer/online/ServiceAddress.h"
#include "tests/online/WebServer.h"
#include "tests/support/CStringPrinter.h"

namespace {

TEST(OnlineModule, BeginsWithTheProductionService) {
    EXPECT_EQ(NyFctWebService::serverUrlProduction, NyFctWebService::getServerUrlType());
}

TEST(OnlineModule, HasTheAddressesOfItsSettings) {
    EXPECT_EQ(CString(NY_SERVICE_PRODUCTION_URL), productionAddress());
    EXPECT_EQ(CString(NY_SERVICE_TEST_URL), testAddress());
}

TEST(OnlineModule, ReachesOnlyTheCustomServiceUnlessBuiltForOthers) {
    if (productionAddress() != CString(L"http://service.nyserver.invalid/")) {
        GTEST_SKIP() << "built for a service that may exist";
    }
    EXPECT_FALSE(NyFctWebService::pingWebServer());
    const WebServer server(page("<VERSION>2.1</VERSION>"));
    const CString custom = server.address();
    NyFctWebService::setCustomServerUrl(custom);
    EXPECT_TRUE(NyFctWebService::pingWebServer());
    EXPECT_EQ(L"", NyFctWebService::getOnlineVersionFromSoftwareID(42));
    EXPECT_EQ(1, server.connections());
    NyFctWebService::connectToTestBase(false);
}

}  // namespace
