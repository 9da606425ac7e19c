#include <gtest/gtest.h>

#include "NyServer/socket/SocketCodes.h"
#include "NyServer/socket/SocketErrorTable.h"
#include "tests/socket/LocalConnection.h"

namespace {

using peers::WinsockSession;

constexpr SocketErrorRow kPending[] = {
    {6, L"Specified event object handle is invalid."},
    {8, L"Insufficient memory available."},
    {87, L"One or more parameters are invalid."},
    {995, L"Overlapped operation aborted."},
    {996, L"Overlapped I/O event object not in signaled state."},
    {997, L"Overlapped operations will complete later."},
    {10004, L"Interrupted function call."},
    {10013, L"Permission denied"},
    {10014, L"Invalid pointer or buffer too small"},
    {10022, L"Invalid argument"},
    {10024, L"Too many open files."},
    {10035, L"Resource temporarily unavailable."},
    {10036, L"Operation now in progress."},
    {10037, L"Operation already in progress."},
    {10038, L"Socket operation on non-socket."},
    {10039, L"Destination address required."},
    {10040, L"Message too long."},
    {10041, L"Protocol wrong type for socket."},
    {10042, L"Bad protocol option."},
    {10043, L"Protocol not supported."},
    {10044, L"Socket type not supported."},
    {10045, L"Operation not supported."},
    {10046, L"Protocol family not supported."},
    {10047, L"Address family not supported by protocol family."},
    {10048, L"Address already in use."},
    {10049, L"Cannot assign requested address."},
    {10050, L"Network is down."},
    {10051, L"Network is unreachable."},
    {10052, L"Network dropped connection on reset."},
    {10053, L"Software caused connection abort."},
    {10054, L"Connection reset by peer."},
    {10055, L"No buffer space available."},
    {10056, L"Socket is already connected."},
    {10057, L"Socket is not connected."},
    {10058, L"Cannot send after socket shutdown."},
    {10060, L"Connection timed out."},
    {10061, L"Connection refused."},
    {10064, L"Host is down."},
    {10065, L"No route to host."},
    {10067, L"Too many processes."},
    {10091, L"Network subsystem is unavailable."},
    {10093, L"Successful WSAStartup not yet performed."},
    {10101, L"Graceful shutdown in progress."},
    {10107, L"System call failure."},
    {10109, L"Class type not found."},
    {11001, L"Host not found."},
    {11002, L"Non-authoritative host not found"},
    {11003, L"Non-recoverable error."},
    {11004, L"Valid name, no data record of requested type."},
    {0, L"Last error not available"},
};

constexpr SocketErrorRow kQuery[] = {
    {10022, L"GetSockOpt error: WSAEINVAL"},   {10036, L"GetSockOpt error: WSAEINPROGRESS"},
    {10038, L"GetSockOpt error: WSAENOTSOCK"}, {10042, L"GetSockOpt error: WSAENOPROTOOPT"},
    {10050, L"GetSockOpt error: WSAENETDOWN"}, {10093, L"GetSockOpt error: WSANOTINITIALISED"},
};

TEST(SocketErrorTexts, HasATextForEachPendingError) {
    EXPECT_EQ(std::size(kPending), std::size(kPendingErrorTexts));
    for (const SocketErrorRow& row : kPending)
        EXPECT_STREQ(pendingErrorText(row.code), row.text) << row.code;
}

TEST(SocketErrorTexts, HasATextForEachFailedQuery) {
    EXPECT_EQ(std::size(kQuery), std::size(kQueryErrorTexts));
    for (const SocketErrorRow& row : kQuery)
        EXPECT_STREQ(queryErrorText(row.code), row.text) << row.code;
}

TEST(SocketErrorTexts, HasOneTextForAllOtherCodes) {
    for (int code : {1, 7, 10059, 10062, 10066, 10092, 11005, -1}) {
        EXPECT_STREQ(pendingErrorText(code), L"Unknown socket error.");
        EXPECT_STREQ(queryErrorText(code), L"GetSockOpt error.");
    }
}

class SocketErrorTextOf : public testing::Test {
  protected:
    // A socket whose connect has been refused, without a thread having waited for it.
    static UniqueSocket refused() {
        UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
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
    static UniqueSocket healthy() { return UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0)); }

    // The text is the same whether or not the code is asked for.
    static void expectText(UniqueSocket (*make)(), int code, const wchar_t* text) {
        const UniqueSocket sockets[] = {make(), make()};
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

TEST_F(SocketErrorTextOf, NoSocketTellsThatItCouldNotBeAsked) {
    expectText([] { return UniqueSocket(); }, 10038, L"GetSockOpt error: WSAENOTSOCK");
}

}  // namespace
