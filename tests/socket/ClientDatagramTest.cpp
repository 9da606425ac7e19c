#include <gmock/gmock.h>

#include <string>

#include "tests/socket/LocalConnection.h"
#include "tests/socket/Probes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClientDatagram : public testing::Test {
  protected:
    // The client's socket, sending to `m_other`.
    int create(unsigned int localPort = 0) {
        return m_client.CreateUDPSocket(localPort, otherPort(), m_loopback, m_loopback);
    }
    void open() { ASSERT_EQ(create(), UTE_SUCCESS); }
    unsigned int otherPort() { return static_cast<unsigned int>(peers::portOf(m_other)); }
    void sendFromOther(const std::string& data) {
        const sockaddr_in to =
            peers::loopbackAddress(static_cast<unsigned int>(m_client.GetLocalPort()));
        ASSERT_EQ(::sendto(m_other.get(), data.data(), static_cast<int>(data.size()), 0,
                           reinterpret_cast<const sockaddr*>(&to), sizeof to),
                  static_cast<int>(data.size()));
    }
    // Receives with room for so many bytes; m_length is what comes back.
    int receive(int room, int timeOut) {
        m_length = room;
        return m_client.ReceiveFrom(m_buffer, m_length, timeOut);
    }
    int send(const std::string& data) {
        m_length = static_cast<int>(data.size());
        return m_client.SendTo(data.data(), m_length);
    }

    peers::WinsockSession m_winsock;
    NySe::UniqueSocket m_other = peers::bindToLoopback(SOCK_DGRAM);
    char m_loopback[10] = "127.0.0.1";
    ProbeClient m_client;
    char m_buffer[16] = "";
    int m_length = 0;
};

TEST_F(ClientDatagram, SocketIsBoundAndItsPeerAndTimeOutsStored) {
    m_client.setRecvTimeOut(4000);
    m_client.setSendTimeOut(5000);
    open();
    const sockaddr_in own = port::localAddress(m_client.GetSocket());
    EXPECT_EQ(own.sin_addr.s_addr, ::inet_addr("127.0.0.1"));
    EXPECT_EQ(m_client.GetLocalPort(), ntohs(own.sin_port));
    EXPECT_NE(m_client.GetLocalPort(), 0);
    EXPECT_EQ(m_client.GetRemotePort(), peers::portOf(m_other));
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
    EXPECT_EQ(m_client.optionOf(SO_TYPE), SOCK_DGRAM);
    EXPECT_EQ(m_client.optionOf(SO_RCVTIMEO), 4000);
    EXPECT_EQ(m_client.optionOf(SO_SNDTIMEO), 5000);
}

TEST_F(ClientDatagram, NullLocalAddressBindsToAllInterfacesAndALongRemoteOneIsCut) {
    char remote[] = "127.0.0.1 and more than thirty characters";
    EXPECT_EQ(m_client.CreateUDPSocket(0, otherPort(), remote, nullptr), UTE_SUCCESS);
    EXPECT_EQ(port::localAddress(m_client.GetSocket()).sin_addr.s_addr,
              static_cast<u_long>(INADDR_ANY));
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1 and more than thirt");
}

TEST_F(ClientDatagram, ReportsASocketThatCannotBeCreatedOrIsOpenAlready) {
    m_client.createFails = true;
    EXPECT_EQ(create(), UTE_SOCK_CREATE_FAILED);
    m_client.createFails = false;
    EXPECT_EQ(create(otherPort()), UTE_SOCK_BIND_FAILED) << "the port is taken";
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.GetLocalPort(), 0);
    open();
    EXPECT_EQ(create(), UTE_SOCK_ALREADY_OPEN);
}

TEST_F(ClientDatagram, SendsToTheStoredPeer) {
    open();
    EXPECT_EQ(send("hello"), UTE_SUCCESS);
    EXPECT_EQ(m_length, 5);
    EXPECT_EQ(port::receive(m_other.get(), m_buffer, sizeof m_buffer, 0), 5);
    EXPECT_STREQ(m_buffer, "hello");
}

TEST_F(ClientDatagram, ReceivesWithTheSendersAddress) {
    open();
    sendFromOther("reply");
    EXPECT_EQ(receive(16, 10), UTE_SUCCESS);
    EXPECT_EQ(m_length, 5);
    EXPECT_STREQ(m_buffer, "reply");
    EXPECT_EQ(ntohs(m_client.getsockAddr().sin_port), peers::portOf(m_other));
    EXPECT_THAT(m_client.receiveWaits, ElementsAre(10));
    sendFromOther("longer than the buffer");
    EXPECT_EQ(receive(4, 10), UTE_SOCK_RECEIVE_ERROR);
    EXPECT_EQ(m_length, -1);
}

TEST_F(ClientDatagram, ASenderDoesNotReplaceTheStoredPeer) {
    char elsewhere[] = "127.0.0.9";
    ASSERT_EQ(m_client.CreateUDPSocket(0, 4, elsewhere, m_loopback), UTE_SUCCESS);
    sendFromOther("reply");
    ASSERT_EQ(receive(16, 10), UTE_SUCCESS);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.9");
    EXPECT_EQ(m_client.GetRemotePort(), 4);
}

TEST_F(ClientDatagram, ReceiveWithoutTimeOutReturnsAtOnce) {
    open();
    EXPECT_EQ(receive(16, 0), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(m_length, 16);
    EXPECT_THAT(m_client.receiveWaits, ElementsAre(0)) << "waits through the slot even for 0";
}

TEST_F(ClientDatagram, NeedsAnOpenSocket) {
    EXPECT_EQ(send("abc"), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(m_length, 3);
    EXPECT_EQ(receive(4, 0), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(m_length, 4);
    EXPECT_THAT(m_client.receiveWaits, IsEmpty());
}

}  // namespace
