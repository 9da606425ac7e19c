// A service that accepts the connection, and then sends nothing, or no end of its headers.
#include "NyServer/base/port/Port.h"
#include "NyServer/online/posix/PageTimes.h"
#include "tests/online/OnlineTest.h"

namespace {

class SilentService : public OnlineTest {
  protected:
    ~SilentService() override { pageTimes = PageTimes(); }

    static bool isReachable(const peers::Script& answer) {
        const WebServer custom(answer);
        CString address = custom.address();
        NyFctWebService::setCustomServerUrl(address);
        const bool found = NyFctWebService::pingWebServer();
        NyFctWebService::connectToTestBase(false);
        return found;
    }

    const ULONGLONG m_begin = port::milliseconds();
};

TEST_F(SilentService, IsGivenUp) {
    pageTimes.silence = 1;
    EXPECT_FALSE(isReachable(peers::silent()));
    EXPECT_EQ(CString(), versionBy(peers::silent()));
    EXPECT_LT(port::milliseconds() - m_begin, 20'000U);
}

TEST_F(SilentService, IsGivenUpInTheMiddleOfItsHeaders) {
    pageTimes.total = 1;
    std::vector<std::string> pieces{"HTTP/1.1 200 OK\r\n"};
    for (int i = 0; i < 60; ++i) pieces.push_back("X: y\r\n");
    EXPECT_FALSE(isReachable(peers::sendingPieces(pieces, 50)));
    EXPECT_LT(port::milliseconds() - m_begin, 20'000U);
}

}  // namespace
