#include <gtest/gtest.h>

#include "NyServer/socket/SocketCodes.h"
#include "NyServer/socket/SocketErrorTable.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"
#include "tests/support/WideText.h"

namespace {

using peers::WinsockSession;

// The FNV-1a hash of the codes that have a text of their own, and of these texts.
unsigned long long hashOfTexts(const WCHAR* (*textOf)(int), const WideText& ofOthers) {
    unsigned long long hash = 14695981039346656037u;
    const auto add = [&](unsigned int unit) { hash = (hash ^ unit) * 1099511628211u; };
    for (int code = 0; code < 12000; ++code) {
        const WideText text = textOf(code);
        if (text == ofOthers) continue;
        add(static_cast<unsigned int>(code));
        for (const WCHAR unit : text) add(unit);
    }
    return hash;
}

// Hosts show these texts, and may compare them.
TEST(SocketErrorTexts, NeverChange) {
    EXPECT_EQ(WideText(pendingErrorText(WSAECONNREFUSED)), _T("Connection refused."));
    EXPECT_EQ(hashOfTexts(pendingErrorText, _T("Unknown socket error.")), 0x57d7ce47db2224c0u);
    EXPECT_EQ(WideText(queryErrorText(WSAENOTSOCK)), _T("GetSockOpt error: WSAENOTSOCK"));
    EXPECT_EQ(hashOfTexts(queryErrorText, _T("GetSockOpt error.")), 0x523114f553fec4b1u);
    EXPECT_EQ(WideText(pendingErrorText(-1)), _T("Unknown socket error."));
    EXPECT_EQ(WideText(queryErrorText(-1)), _T("GetSockOpt error."));
}

class SocketErrorTextOf : public testing::Test {
  protected:
    // A socket whose connect has been refused, without a thread having waited for it.
    static NySe::UniqueSocket refused() {
        NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
        port::setBlocking(socket.get(), false);
        const peers::RefusingPort nobody;
        port::connectTo(socket.get(), peers::loopbackAddress(nobody.port()));
        EXPECT_TRUE(eventually(
            [&] { return port::waitForConnect(socket.get(), 10000) == port::Readiness::failed; }));
        return socket;
    }
    static NySe::UniqueSocket healthy() {
        return NySe::UniqueSocket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    }

    // The text is the same whether or not the code is asked for.
    static void expectText(NySe::UniqueSocket (*make)(), int code, const WCHAR* text) {
        const NySe::UniqueSocket sockets[] = {make(), make()};
        const SOCKET plain[] = {sockets[0].get(), sockets[1].get()};
        int found = -1;
        port::closeSocket(INVALID_SOCKET);  // the thread's own error is of no concern
        EXPECT_EQ(WideText(SocketErrorText(&plain[0], &found)), text);
        EXPECT_EQ(found, code);
        EXPECT_EQ(WideText(SocketErrorText(&plain[1], nullptr)), text);
    }

    WinsockSession m_winsock;
};

TEST_F(SocketErrorTextOf, AHealthySocketIsNotAvailable) {
    expectText(healthy, 0, _T("Last error not available"));
}

TEST_F(SocketErrorTextOf, ARefusedConnectIsNamed) {
    expectText(refused, 10061, _T("Connection refused."));
}

TEST_F(SocketErrorTextOf, AnInvalidSocketIsThatOfTheFailedQuery) {
    expectText([] { return NySe::UniqueSocket(); }, 10038, _T("GetSockOpt error: WSAENOTSOCK"));
}

}  // namespace
