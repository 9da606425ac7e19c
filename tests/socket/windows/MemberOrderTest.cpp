// Where the data members stand: derived classes of hosts were compiled against this order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCodes.h"
#include "tests/socket/ProbeServer.h"

namespace {

using Addresses = std::vector<const void*>;

void expectAscending(const Addresses& addresses) {
    EXPECT_TRUE(std::is_sorted(addresses.begin(), addresses.end(), std::less<const void*>()));
}

class ClientMembers : public CUT_WSClient {
  public:
    static_assert(sizeof(m_address) == 30 && sizeof(m_hostBuffer) == 1024);

    Addresses inOrder() const {
        return {&m_remotePort,     &m_localPort,      &m_acceptPort,         m_address,
                &m_protocol,       &m_family,         &m_socketType,         &m_winsockData,
                &m_socket,         &m_remoteAddress,  &m_listenSocket,       &m_listenAddress,
                &m_blockingMode,   &m_winsockStarted, &m_notificationWindow, &m_sendTimeOut,
                &m_receiveTimeOut, m_hostBuffer};
    }
    WSADATA& winsockData() { return m_winsockData; }
    int isWinsockStarted() const { return m_winsockStarted; }
};

class WorkerMembers : public CUT_WSThread {
  public:
    Addresses inOrder() const {
        return {&m_socket,       &m_peerAddress,    &m_listenSocket, &m_owner,
                &m_blockingMode, &m_receiveTimeOut, &m_sendTimeOut,  &m_abort};
    }
};

TEST(MemberOrder, OfAClient) {
    const ClientMembers client;
    expectAscending(client.inOrder());
}

TEST(MemberOrder, OfAWorker) {
    const WorkerMembers worker;
    expectAscending(worker.inOrder());
}

// A server's members are its own; they are recognised by values given from outside.
class ServerMembers : public ServerTest {
  protected:
    template <class Value>
    Value at(size_t offset) const {
        Value value;
        std::memcpy(&value, bytes() + offset, sizeof value);
        return value;
    }
    // The offset of the first of these ints that follow one another; -1 when nowhere.
    std::ptrdiff_t find(const std::vector<int>& ints) const {
        const auto* begin = reinterpret_cast<const int*>(bytes());
        const auto* end = begin + sizeof(CUT_WSServer) / sizeof(int);
        const auto* found = std::search(begin, end, ints.begin(), ints.end());
        return found == end ? -1 : (found - begin) * std::ptrdiff_t{sizeof(int)};
    }
    char* bytes() { return reinterpret_cast<char*>(static_cast<CUT_WSServer*>(&m_server)); }
    const char* bytes() const { return const_cast<ServerMembers*>(this)->bytes(); }

    static constexpr size_t kWinsockData = sizeof(void*);  // after the table of virtual functions
    static constexpr size_t kAddress = kWinsockData + sizeof(WSADATA);
    static constexpr size_t kListenSocket = kAddress + sizeof(sockaddr_in);
    static constexpr size_t kThreadList = kListenSocket + sizeof(SOCKET);
    static constexpr size_t kAcceptThread = kThreadList + sizeof(void*);
    static constexpr size_t kAccepting = kAcceptThread + sizeof(uintptr_t);
};

TEST_F(ServerMembers, AreInTheirOrder) {
    m_server.ending = ProbeServer::Ending::RunsDown;
    ASSERT_EQ(m_server.ConnectToPort(0, 5, AF_INET, htonl(INADDR_LOOPBACK)), UTE_SUCCESS);
    m_server.SetPort(4242);
    m_server.SetMaxConnections(31234);
    m_server.SetProtocol(4711);
    m_server.SetShutDownFlag(815);
    ProbeWorker workers[3];
    for (ProbeWorker& worker : workers) m_server.ThreadListAdd(&worker, 1, 2);

    EXPECT_EQ(at<sockaddr_in>(kAddress).sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    EXPECT_NE(m_server.GetBoundPort(), 0u);
    EXPECT_EQ(static_cast<unsigned>(socketcalls::localPort(at<SOCKET>(kListenSocket))),
              m_server.GetBoundPort());
    EXPECT_EQ(at<const void*>(kThreadList), m_server.ThreadListFirst());
    EXPECT_EQ(at<uintptr_t>(kAcceptThread), static_cast<uintptr_t>(-1));
    // Accepting, stop requested, max connections, connection count, protocol, port, shut-down flag,
    // start-up count.
    EXPECT_EQ(find({0, 0, 31234, 3, 4711, 4242, 815, 1}), std::ptrdiff_t{kAccepting});
}

// The stack notes in its data which version it was asked for.
constexpr WORD kAskedVersion = 2;

TEST(WinsockVersion, IsThatOfAClient) {
    ClientMembers client;
    EXPECT_EQ(client.isWinsockStarted(), 1);
    EXPECT_EQ(client.winsockData().wVersion, kAskedVersion);
    client.winsockData() = {};
    EXPECT_EQ(client.Reset(), UTE_SUCCESS);
    EXPECT_EQ(client.winsockData().wVersion, kAskedVersion);
}

TEST_F(ServerMembers, ReportTheRequestedVersionOfWinsock) {
    EXPECT_EQ(at<WORD>(kWinsockData), kAskedVersion);
    std::memset(bytes() + kWinsockData, 0, sizeof(WSADATA));
    ASSERT_EQ(m_server.listen(), UTE_SUCCESS);
    EXPECT_EQ(at<WORD>(kWinsockData), kAskedVersion);
}

}  // namespace
