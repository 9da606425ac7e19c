// Where a service may send its clients.
#include "tests/online/OnlineTest.h"
#include "tests/support/TempFile.h"

namespace {

peers::Script redirectTo(const std::string& address) {
    return peers::sendingAndClosing("HTTP/1.1 302 Found\r\nConnection: close\r\nLocation: " +
                                    address + "\r\nContent-Length: 0\r\n\r\n");
}

class OnlineRedirect : public OnlineTest {};

TEST_F(OnlineRedirect, IsFollowed) {
    const WebServer other(page("<VERSION>other</VERSION>"));
    EXPECT_EQ(_T("other"),
              versionBy(redirectTo("http://127.0.0.1:" + std::to_string(other.port()) + "/there")));
    EXPECT_EQ(Paths{"/there"}, other.paths());
}

TEST_F(OnlineRedirect, IsNotFollowedToAnotherScheme) {
    const WebServer other(page("<VERSION>other</VERSION>"));
    const std::string place = "127.0.0.1:" + std::to_string(other.port()) + "/";
    for (const std::string& scheme : {"ftp://" + place, "gopher://" + place, "dict://" + place})
        EXPECT_EQ(CString(), versionBy(redirectTo(scheme))) << scheme;
    EXPECT_EQ(0, other.connections());
    EXPECT_EQ(CString(), versionBy(redirectTo("file:///etc/passwd")));
}

TEST_F(OnlineRedirect, EndsInALoop) {
    const WebServer loop(redirectTo("/again"));
    EXPECT_EQ(CString(), versionAt(loop.address()));
    EXPECT_EQ(11u, loop.requests().size());
}

}  // namespace
