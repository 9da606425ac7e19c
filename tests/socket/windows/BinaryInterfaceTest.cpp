// The binary interface: what hosts, and their derived classes, were compiled against.
#include <cstring>

#include "NyServer/socket/CUT_File.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCodes.h"
#include "tests/socket/ProbeServer.h"
#include "tests/support/SlotOrder.h"

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

// The functions follow each other from slot 2 on, after the destructors.
template <class... Functions>
void expectOrder(Functions... functions) {
    size_t next = 2;
    for (const size_t slot : {slotOf(functions)...}) EXPECT_EQ(slot, next++);
    EXPECT_EQ(next, 2 + sizeof...(functions));
}

TEST(SlotOrder, OfAFile) {
    using F = CUT_File;
    expectOrder(&F::Open, &F::Close, &F::Read, &F::Write, &F::Seek, &F::GetSize);
}

TEST(SlotOrder, OfADataSource) {
    using D = CUT_DataSource;
    expectOrder(&D::Clone, &D::Open, &D::Close, &D::ReadLine, &D::WriteLine, &D::Read, &D::Write,
                &D::Seek, &D::Find);
}

TEST(SlotOrder, OfAClient) {
    struct C : CUT_WSClient {
        static void check() {
            const auto sendSource = static_cast<int (C::*)(CUT_DataSource&)>(&C::Send);
            const auto sendBytes = static_cast<int (C::*)(const char*, int)>(&C::Send);
            const auto receiveSource =
                static_cast<int (C::*)(CUT_DataSource&, OpenMsgType, int, long)>(&C::Receive);
            const auto receiveBytes = static_cast<int (C::*)(char*, int, int)>(&C::Receive);
            expectOrder(&C::Connect, &C::ConnectBound, &C::CreateUDPSocket, &C::CreateSocket,
                        &C::CloseConnection, &C::InitAsync, &C::WaitForConnect, &C::WaitForAccept,
                        &C::AcceptConnection, sendSource, sendBytes, &C::SendAsLine, &C::SendFile,
                        &C::SendTo, &C::WaitForSend, receiveSource, receiveBytes, &C::ReceiveToFile,
                        &C::ReceiveLine, &C::ClearReceiveBuffer, &C::ReceiveFrom,
                        &C::WaitForReceive, &C::OnError, &C::ReceiveFileStatus, &C::SendFileStatus,
                        &C::IsAborted, &C::OnAsyncNotify, &C::OnAsyncGetNameNotify,
                        &C::OnAsyncGetAddressNotify);
        }
    };
    C::check();
}

TEST(SlotOrder, OfAWorker) {
    using W = CUT_WSThread;
    const auto sendBytes = static_cast<int (W::*)(const char*, int, int)>(&W::Send);
    const auto sendSource = static_cast<int (W::*)(CUT_DataSource&, long&)>(&W::Send);
    const auto receiveBytes = static_cast<int (W::*)(char*, int, int)>(&W::Receive);
    const auto receiveSource =
        static_cast<int (W::*)(CUT_DataSource&, long&, OpenMsgType, int)>(&W::Receive);
    expectOrder(sendBytes, sendSource, &W::SendAsLine, &W::SendFile, receiveBytes, receiveSource,
                &W::ReceiveToFile, &W::ReceiveLine, &W::OnConnect, &W::OnMaxConnect, &W::OnReserved,
                &W::ReceiveFileStatus, &W::SendFileStatus, &W::OnError);
}

TEST(SlotOrder, OfAServer) {
    struct S : CUT_WSServer {
        static void check() {
            expectOrder(&S::ConnectToPort, &S::Pause, &S::Resume, &S::CreateInstance,
                        &S::ReleaseInstance, &S::OnCanAccept, &S::OnStatus, &S::OnError);
        }
    };
    S::check();
}

// By name from the module, as a caller without a header does.
int exportedInt(const char* name) {
    const HMODULE module = ::GetModuleHandleW(L"NyServerDll.dll");
    const auto address = reinterpret_cast<const void*>(::GetProcAddress(module, name));
    return address ? *static_cast<const int*>(address) : -1;
}

TEST(ExportedCodes, AreExportedAndImportedAsData) {
    EXPECT_EQ(exportedInt("NY_UTE_SUCCESS"), 0);
    EXPECT_EQ(exportedInt("NY_UTE_ERROR"), 1);
    EXPECT_EQ(exportedInt("NY_UTE_SOCK_BIND_FAILED"), 18);
    EXPECT_EQ(NY_UTE_SUCCESS, UTE_SUCCESS);
    EXPECT_EQ(NY_UTE_ERROR, UTE_ERROR);
    EXPECT_EQ(NY_UTE_SOCK_BIND_FAILED, UTE_SOCK_BIND_FAILED);
}

TEST(ExportedCodes, AreReadOnly) {
    MEMORY_BASIC_INFORMATION page{};
    ASSERT_NE(::VirtualQuery(&NY_UTE_SOCK_BIND_FAILED, &page, sizeof page), 0u);
    EXPECT_EQ(page.Protect, static_cast<DWORD>(PAGE_READONLY));
}

}  // namespace
