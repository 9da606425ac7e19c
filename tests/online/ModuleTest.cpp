// The online service client as the library holds it, with the addresses that it was built with.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "NyServer/online/NyFctWebService.h"
#include "NyServer/online/ServiceAddress.h"
#include "tests/online/WebServer.h"
#include "tests/support/CStringPrinter.h"

namespace {

// The bytes of the DLL itself.
std::string moduleBytes() {
    wchar_t path[MAX_PATH] = L"";
    ::GetModuleFileNameW(::GetModuleHandleW(L"NyServerDll.dll"), path, MAX_PATH);
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool holds(const std::string& bytes, const CString& text) {
    const auto* units = reinterpret_cast<const char*>(text.GetString());
    const size_t size = (static_cast<size_t>(text.GetLength()) + 1) * sizeof(WCHAR);
    return bytes.find(std::string(units, size)) != std::string::npos;
}

TEST(OnlineModule, BeginsWithTheProductionService) {
    EXPECT_EQ(NyFctWebService::serverUrlProduction, NyFctWebService::getServerUrlType());
}

TEST(OnlineModule, HasTheAddressesOfItsSettings) {
    EXPECT_EQ(CString(NY_SERVICE_PRODUCTION_URL), productionAddress());
    EXPECT_EQ(CString(NY_SERVICE_TEST_URL), testAddress());
    const std::string bytes = moduleBytes();
    EXPECT_TRUE(holds(bytes, NY_SERVICE_PRODUCTION_URL));
    EXPECT_TRUE(holds(bytes, NY_SERVICE_TEST_URL));
    EXPECT_FALSE(holds(bytes, L"http://of.no.service.invalid/"));
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
