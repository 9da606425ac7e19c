#include <gtest/gtest.h>

#include "NyServer/socket/SocketCodes.h"
#include "NyServer/socket/SocketErrorTable.h"
#include "tests/socket/LocalConnection.h"

namespace {

using peers::WinsockSession;

// The FNV-1a hash of the codes that have a text of their own, and of these texts.
unsigned long long hashOfTexts(const wchar_t* (*textOf)(int), const std::wstring& ofOthers) {
    unsigned long long hash = 14695981039346656037u;
    const auto add = [&](unsigned int unit) { hash = (hash ^ unit) * 1099511628211u; };
    for (int code = 0; code < 12000; ++code) {
        const std::wstring text = textOf(code);
        if (text == ofOthers) continue;
        add(static_cast<unsigned int>(code));
        for (const wchar_t unit : text) add(unit);
    }
    return hash;
}

// Hosts show these texts, and may compare them.
TEST(SocketErrorTexts, NeverChange) {
    EXPECT_STREQ(pendingErrorText(WSAECONNREFUSED), L"Connection refused.");
    EXPECT_EQ(hashOfTexts(pendingErrorText, L"Unknown socket error."), 0x57d7ce47db2224c0u);
    EXPECT_STREQ(queryErrorText(WSAENOTSOCK), L"GetSockOpt error: WSAENOTSOCK");
    EXPECT_EQ(hashOfTexts(queryErrorText, L"GetSockOpt error."), 0x523114f553fec4b1u);
    EXPECT_STREQ(pendingErrorText(-1), L"Unknown socket error.");
    EXPECT_STREQ(queryErrorText(-1), L"GetSockOpt error.");
}

class SocketErrorTextOf : public testing::Test {
  protected:
    // A socket whose connect has been refused, without a thread having waited for it.
    static NySe::UniqueSocket refused() {
        NySe::UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
        u_long nonBlocking = 1;
        ::ioctlsocket(socket.get(), static_cast<long>(FIONBIO), &nonBlocking);
        const peers::RefusingPort nobody;
        const sockaddr_in address = peers::loopbackAddress(nobody.port());
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        fd_set failed{1, {socket.get()}};
        timeval timeOut{10, 0};
        EXPECT_EQ(::select(0, nullptr, nullptr, &failed, &timeOut), 1);
        return socket;
    }
    static NySe::UniqueSocket healthy() {
        return NySe::UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0));
    }

    // The text is the same whether or not the code is asked for.
    static void expectText(NySe::UniqueSocket (*make)(), int code, const wchar_t* text) {
        const NySe::UniqueSocket sockets[] = {make(), make()};
        const SOCKET plain[] = {sockets[0].get(), sockets[1].get()};
        int found = -1;
        ::WSASetLastError(WSAECONNRESET);  // the thread's own error is of no concern
        EXPECT_STREQ(SocketErrorText(&plain[0], &found), text);
        EXPECT_EQ(found, code);
        EXPECT_STREQ(SocketErrorText(&plain[1], nullptr), text);
    }

    WinsockSession m_winsock;
};

TEST_F(SocketErrorTextOf, AHealthySocketIsNotAvailable) {
    expectText(healthy, 0, L"Last error not available");
}

TEST_F(SocketErrorTextOf, ARefusedConnectIsNamed) {
    expectText(refused, 10061, L"Connection refused.");
}

TEST_F(SocketErrorTextOf, AnInvalidSocketIsThatOfTheFailedQuery) {
    expectText([] { return NySe::UniqueSocket(); }, 10038, L"GetSockOpt error: WSAENOTSOCK");
}

}  // namespace
