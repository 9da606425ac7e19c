#include <gtest/gtest.h>

#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

class ClientDatagram : public testing::Test {
  protected:
    // The client's socket, sending to `m_other`.
    void open() {
        ASSERT_EQ(m_client.CreateUDPSocket(0, otherPort(), m_loopback, m_loopback), UTE_SUCCESS);
    }
    unsigned int otherPort() { return static_cast<unsigned int>(peers::portOf(m_other)); }
    void sendFromOther(const std::string& data) {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = ::htons(static_cast<u_short>(m_client.GetLocalPort()));
        to.sin_addr.s_addr = ::inet_addr(m_loopback);
        ASSERT_EQ(::sendto(m_other.get(), data.data(), static_cast<int>(data.size()), 0,
                           reinterpret_cast<sockaddr*>(&to), sizeof to),
                  static_cast<int>(data.size()));
    }
    sockaddr_in ownAddress() {
        sockaddr_in own{};
        int length = sizeof own;
        ::getsockname(m_client.GetSocket(), reinterpret_cast<sockaddr*>(&own), &length);
        return own;
    }

    peers::WinsockSession m_winsock;
    UniqueSocket m_other = peers::bindToLoopback(SOCK_DGRAM);
    char m_loopback[10] = "127.0.0.1";
    ProbeClient m_client;
};

TEST_F(ClientDatagram, SocketIsBoundAndItsPeerStored) {
    open();
    EXPECT_EQ(ownAddress().sin_addr.s_addr, ::inet_addr("127.0.0.1"));
    EXPECT_EQ(m_client.GetLocalPort(), ::ntohs(ownAddress().sin_port));
    EXPECT_NE(m_client.GetLocalPort(), 0);
    EXPECT_EQ(m_client.GetRemotePort(), peers::portOf(m_other));
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
    int type = 0;
    m_client.GetSocketOption(SO_TYPE, &type);
    EXPECT_EQ(type, SOCK_DGRAM);
}

TEST_F(ClientDatagram, SocketGetsBothTimeOuts) {
    m_client.setRecvTimeOut(4000);
    m_client.setSendTimeOut(5000);
    open();
    int value = 0;
    m_client.GetSocketOption(SO_RCVTIMEO, &value);
    EXPECT_EQ(value, 4000);
    m_client.GetSocketOption(SO_SNDTIMEO, &value);
    EXPECT_EQ(value, 5000);
}

TEST_F(ClientDatagram, NullLocalAddressBindsToAllInterfaces) {
    EXPECT_EQ(m_client.CreateUDPSocket(0, otherPort(), m_loopback, nullptr), UTE_SUCCESS);
    EXPECT_EQ(ownAddress().sin_addr.s_addr, static_cast<u_long>(INADDR_ANY));
}

TEST_F(ClientDatagram, LongRemoteAddressIsCut) {
    char remote[] = "127.0.0.1 and more than thirty characters";
    m_client.CreateUDPSocket(0, otherPort(), remote, m_loopback);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1 and more than thirt");
}

TEST_F(ClientDatagram, RefusesAnOpenSocket) {
    open();
    EXPECT_EQ(m_client.CreateUDPSocket(0, otherPort(), m_loopback, m_loopback),
              UTE_SOCK_ALREADY_OPEN);
}

TEST_F(ClientDatagram, ReportsASocketThatCannotBeMade) {
    m_client.createFails = true;
    EXPECT_EQ(m_client.CreateUDPSocket(0, otherPort(), m_loopback, m_loopback),
              UTE_SOCK_CREATE_FAILED);
}

TEST_F(ClientDatagram, ClosesTheSocketWhenThePortIsTaken) {
    EXPECT_EQ(m_client.CreateUDPSocket(otherPort(), otherPort(), m_loopback, m_loopback),
              UTE_SOCK_BIND_FAILED);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.GetLocalPort(), 0);
    open();
}

TEST_F(ClientDatagram, SendsToTheStoredPeer) {
    open();
    int length = 5;
    EXPECT_EQ(m_client.SendTo("hello", length), UTE_SUCCESS);
    EXPECT_EQ(length, 5);
    char buffer[16];
    EXPECT_EQ(::recv(m_other.get(), buffer, sizeof buffer, 0), 5);
    EXPECT_EQ(std::string(buffer, 5), "hello");
}

TEST_F(ClientDatagram, SendReportsAFailure) {
    open();
    const std::string tooLong(70000, 'x');
    int length = static_cast<int>(tooLong.size());
    EXPECT_EQ(m_client.SendTo(tooLong.data(), length), UTE_SOCK_SEND_ERROR);
    EXPECT_EQ(length, -1);
}

TEST_F(ClientDatagram, ReceivesWithTheSendersAddress) {
    open();
    sendFromOther("reply");
    char buffer[16];
    int length = sizeof buffer;
    EXPECT_EQ(m_client.ReceiveFrom(buffer, length, 10), UTE_SUCCESS);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(length)), "reply");
    EXPECT_EQ(::ntohs(m_client.getsockAddr().sin_port), peers::portOf(m_other));
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{10});
}

TEST_F(ClientDatagram, ASenderDoesNotReplaceTheStoredPeer) {
    char elsewhere[] = "127.0.0.9";
    ASSERT_EQ(m_client.CreateUDPSocket(0, 4, elsewhere, m_loopback), UTE_SUCCESS);
    sendFromOther("reply");
    char buffer[16];
    int length = sizeof buffer;
    ASSERT_EQ(m_client.ReceiveFrom(buffer, length, 10), UTE_SUCCESS);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.9");
    EXPECT_EQ(m_client.GetRemotePort(), 4);
}

TEST_F(ClientDatagram, ReceiveWithoutTimeOutReturnsAtOnce) {
    open();
    char buffer[16];
    int length = sizeof buffer;
    EXPECT_EQ(m_client.ReceiveFrom(buffer, length, 0), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(length, static_cast<int>(sizeof buffer));
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{0}) << "waits through the slot even for 0";
}

TEST_F(ClientDatagram, ReceiveReportsAFailure) {
    open();
    sendFromOther("longer than the buffer");
    char buffer[4];
    int length = sizeof buffer;
    EXPECT_EQ(m_client.ReceiveFrom(buffer, length, 10), UTE_SOCK_RECEIVE_ERROR);
    EXPECT_EQ(length, -1);
}

TEST_F(ClientDatagram, NeedsAnOpenSocket) {
    char buffer[4];
    int length = 3;
    EXPECT_EQ(m_client.SendTo("abc", length), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(m_client.ReceiveFrom(buffer, length, 0), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{});
}

}  // namespace
