#include "NyServer/socket/CUT_WSServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NyServer/base/UniqueHandle.h"
#include "tests/socket/ProbeServer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// The server's hooks as the base has them.
class PlainServer : public CUT_WSServer {
  public:
    using CUT_WSServer::OnCanAccept;
    using CUT_WSServer::OnError;
    using CUT_WSServer::OnStatus;
    using CUT_WSServer::Pause;
    using CUT_WSServer::Resume;

  protected:
    CUT_WSThread* CreateInstance() override { return nullptr; }
    void ReleaseInstance(CUT_WSThread*) override {}
};

TEST(ServerHooks, AnswerFixedValues) {
    PlainServer server;
    EXPECT_EQ(server.Pause(), 0);
    EXPECT_EQ(server.Resume(), 0);
    EXPECT_EQ(server.OnCanAccept("127.0.0.1"), 1);
    EXPECT_EQ(server.OnStatus(L"text"), 0);
    EXPECT_EQ(server.OnError(42), 42);
}

class Server : public testing::Test {
  protected:
    bool isReachable(unsigned int port) { return static_cast<bool>(peers::connectTo(port)); }

    peers::WinsockSession m_winsock;
    ProbeServer m_server;
    char m_loopback[10] = "127.0.0.1";
};

TEST_F(Server, StartsWithItsInitialValues) {
    EXPECT_EQ(m_server.GetMaxConnections(), 30000);
    EXPECT_EQ(m_server.GetNumConnections(), 0);
    EXPECT_EQ(m_server.GetProtocol(), 0);
    EXPECT_EQ(m_server.GetPort(), 0xFFFFFFFFu);
    EXPECT_EQ(m_server.GetShutDownFlag(), 0);
}

TEST_F(Server, LimitsTheMaximumOfConnections) {
    EXPECT_EQ(m_server.SetMaxConnections(0), -1);
    EXPECT_EQ(m_server.SetMaxConnections(-1), -1);
    EXPECT_EQ(m_server.SetMaxConnections(32001), -1);
    EXPECT_EQ(m_server.GetMaxConnections(), 30000);
    EXPECT_EQ(m_server.SetMaxConnections(32000), 32000);
    EXPECT_EQ(m_server.GetMaxConnections(), 32000);
    EXPECT_EQ(m_server.SetMaxConnections(1), 1);
    EXPECT_EQ(m_server.GetMaxConnections(), 1);
}

TEST_F(Server, StoresItsSettings) {
    EXPECT_EQ(m_server.SetPort(12), 0);
    EXPECT_EQ(m_server.GetPort(), 12u);
    EXPECT_THAT(m_server.codes, ElementsAre(0));
    EXPECT_EQ(m_server.SetProtocol(6), 6);
    EXPECT_EQ(m_server.GetProtocol(), 6);
    m_server.SetShutDownFlag(1);
    EXPECT_EQ(m_server.GetShutDownFlag(), 1);
    EXPECT_THAT(m_server.codes, ElementsAre(0));
}

TEST_F(Server, ListensOnItsPort) {
    const unsigned short port = peers::freePort();
    EXPECT_EQ(m_server.ConnectToPort(port, 5, AF_INET, 0), 0);
    EXPECT_EQ(m_server.GetPort(), port);
    EXPECT_THAT(m_server.codes, ElementsAre(0));
    EXPECT_TRUE(isReachable(port));
}

// No Winsock (1) and a failing listen (23) are not tested: the start of Winsock does not fail here,
// and neither does listen on a stream socket that is bound.
TEST_F(Server, ReportsAPortThatIsTaken) {
    const peers::RefusingPort taken;
    const auto port = static_cast<unsigned short>(taken.port());
    EXPECT_EQ(m_server.ConnectToPort(port, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 18);
    EXPECT_THAT(m_server.codes, ElementsAre(18));
    EXPECT_EQ(m_server.GetPort(), 0xFFFFFFFFu);
}

TEST_F(Server, BindsToAnAddressOfTheGivenFamily) {
    EXPECT_EQ(m_server.ConnectToPort(peers::freePort(), 5, 99, 0), 18);
}

TEST_F(Server, BindsToTheGivenAddressOnly) {
    const unsigned short port = peers::freePort();
    ASSERT_EQ(m_server.ConnectToPort(port, 5, AF_INET, ::inet_addr("127.0.0.2")), 0);
    char other[] = "127.0.0.2";
    EXPECT_EQ(m_server.TempConnect(port, other), 0);
    EXPECT_EQ(m_server.TempConnect(port, m_loopback), 19);
}

TEST_F(Server, ReportsAProtocolThatHasNoStreams) {
    m_server.SetProtocol(IPPROTO_UDP);
    EXPECT_EQ(m_server.ConnectToPort(peers::freePort(), 5, AF_INET, 0), 17);
    EXPECT_THAT(m_server.codes, ElementsAre(17));
}

TEST_F(Server, MayTryAnotherPortAfterAFailure) {
    const peers::RefusingPort taken;
    const auto port = static_cast<unsigned short>(taken.port());
    ASSERT_EQ(m_server.ConnectToPort(port, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 18);
    EXPECT_TRUE(m_server.start());
    EXPECT_TRUE(isReachable(m_server.GetPort()));
}

TEST_F(Server, ClosesItsListeningSocketWhenItListensOnAnotherPort) {
    ASSERT_EQ(m_server.listen(), 0);
    const unsigned int first = m_server.GetPort();
    ASSERT_EQ(m_server.listen(), 0);
    EXPECT_NE(m_server.GetPort(), first);
    EXPECT_FALSE(isReachable(first));
    EXPECT_TRUE(isReachable(m_server.GetPort()));
}

TEST_F(Server, ClosesItsListeningSocketWhenItCannotListenAgain) {
    const peers::RefusingPort taken;
    ASSERT_EQ(m_server.listen(), 0);
    const unsigned int first = m_server.GetPort();
    const auto port = static_cast<unsigned short>(taken.port());
    EXPECT_EQ(m_server.ConnectToPort(port, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 18);
    EXPECT_FALSE(isReachable(first));
}

TEST_F(Server, RefusesToStartTwice) {
    ASSERT_EQ(m_server.listen(), 0);
    EXPECT_EQ(m_server.StartAccept(), 0);
    EXPECT_EQ(m_server.StartAccept(), 1);
    EXPECT_THAT(m_server.codes, ElementsAre(0, 1));
}

TEST_F(Server, KeepsItsPortWhenItIsGivenAnotherWhileItAccepts) {
    ASSERT_TRUE(m_server.start());
    m_server.codes.clear();
    const unsigned int port = m_server.GetPort();
    EXPECT_EQ(m_server.ConnectToPort(0, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 1);
    EXPECT_THAT(m_server.codes, ElementsAre(1));
    EXPECT_EQ(m_server.GetPort(), port);
    EXPECT_EQ(m_server.GetBoundPort(), port);
    peers::Connection peer = m_server.connection();
    peer.send("hi\r\n");
    EXPECT_EQ(peer.receiveAll(), "Connect Successful ... Now Disconnecting.");
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_FALSE(isReachable(port));
}

TEST_F(Server, TempConnectsToAListener) {
    ASSERT_EQ(m_server.listen(), 0);
    EXPECT_EQ(m_server.TempConnect(m_server.GetPort(), m_loopback), 0);
    EXPECT_THAT(m_server.statuses, IsEmpty());
    EXPECT_THAT(m_server.codes, ElementsAre(0));
}

TEST_F(Server, TellsWhatFailsInTempConnect) {
    const peers::RefusingPort nobody;
    EXPECT_EQ(m_server.TempConnect(nobody.port(), m_loopback), 19);
    EXPECT_THAT(m_server.codes, ElementsAre(19));
    // The connect, and the shutdown of what is not connected.
    ASSERT_THAT(m_server.statuses, SizeIs(2));
    EXPECT_EQ(m_server.statuses[0], L"Connection refused.");
}

TEST_F(Server, StopsWithoutHavingBeenStarted) {
    EXPECT_EQ(m_server.StopAccept(), 0);
    ASSERT_EQ(m_server.listen(), 0);
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_TRUE(isReachable(m_server.GetPort()));
    EXPECT_THAT(m_server.codes, IsEmpty());
}

// How often Winsock has been started in this process and not yet cleaned up.
int countWinsockStarts() {
    int count = 0;
    while (::WSACleanup() == 0) ++count;
    WSADATA data;
    for (int i = 0; i < count; ++i) ::WSAStartup(MAKEWORD(2, 2), &data);
    return count;
}

TEST(ServerAndWinsock, StartsOnceForItselfAndOnceForEachListening) {
    const int before = countWinsockStarts();
    {
        ProbeServer server;
        EXPECT_EQ(countWinsockStarts(), before + 1);
        ASSERT_EQ(server.ConnectToPort(0, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 0);
        EXPECT_EQ(countWinsockStarts(), before + 2);
        server.StopAccept();
        EXPECT_EQ(countWinsockStarts(), before + 1);
        server.StopAccept();
        EXPECT_EQ(countWinsockStarts(), before + 1);
    }
    EXPECT_EQ(countWinsockStarts(), before);
}

TEST(ServerAndWinsock, IsNotStartedForAPortThatIsRefused) {
    const int before = countWinsockStarts();
    ProbeServer server;
    ASSERT_EQ(server.ConnectToPort(0, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 0);
    server.SetPort(server.GetBoundPort());
    ASSERT_EQ(server.StartAccept(), 0);
    EXPECT_EQ(server.ConnectToPort(0, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 1);
    server.StopAccept();
    EXPECT_EQ(countWinsockStarts(), before + 1);
}

TEST(ServerAndWinsock, IsBalancedByTheDestructor) {
    const int before = countWinsockStarts();
    {
        ProbeServer server;
        ASSERT_EQ(server.ConnectToPort(0, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 0);
    }
    EXPECT_EQ(countWinsockStarts(), before);
}

TEST(ServerAndWinsock, BalancesOneListeningWithEachStop) {
    const int before = countWinsockStarts();
    {
        ProbeServer server;
        for (int i = 0; i < 3; ++i) server.ConnectToPort(0, 5, 99, ::htonl(INADDR_LOOPBACK));
        server.StopAccept();
        EXPECT_EQ(countWinsockStarts(), before + 3);
        server.StopAccept();
    }
    EXPECT_EQ(countWinsockStarts(), before);
}

class ServerList : public Server {
  protected:
    static constexpr DWORD kNoHandle =
        0x7FFFFF00;  // identifiers that are no handles of this process

    ServerList() { m_server.ending = ProbeServer::Ending::ClosesTheDoor; }
    std::vector<CUT_WSThread*> listed() {
        const ProbeServer::ThreadListLock lock(m_server);
        std::vector<CUT_WSThread*> workers;
        for (const auto* entry = m_server.ThreadListFirst(); entry; entry = entry->next)
            workers.push_back(entry->worker);
        return workers;
    }
    void addAll() {
        for (DWORD i = 0; i < 3; ++i)
            EXPECT_EQ(m_server.ThreadListAdd(&m_workers[i], kNoHandle + i, 100 + i), 1);
    }

    ProbeWorker m_workers[3];
};

TEST_F(ServerList, PutsTheNewestFirst) {
    addAll();
    EXPECT_THAT(listed(), ElementsAre(&m_workers[2], &m_workers[1], &m_workers[0]));
    EXPECT_EQ(m_server.GetNumConnections(), 3);
    EXPECT_EQ(m_server.ThreadListGetLength(), 3);
    const auto* first = m_server.ThreadListFirst();
    EXPECT_EQ(first->threadId, kNoHandle + 2);
    EXPECT_EQ(first->socket, 102u);
    EXPECT_EQ(first->previous, nullptr);
    EXPECT_EQ(first->next->previous, first);
}

TEST_F(ServerList, TakesAnEntryOutOfTheMiddle) {
    addAll();
    EXPECT_EQ(m_server.ThreadListRemove(kNoHandle + 1), 1);
    EXPECT_THAT(listed(), ElementsAre(&m_workers[2], &m_workers[0]));
    EXPECT_EQ(m_server.ThreadListFirst()->next->previous, m_server.ThreadListFirst());
    EXPECT_EQ(m_server.GetNumConnections(), 2);
}

TEST_F(ServerList, TakesAllEntriesOut) {
    addAll();
    for (DWORD i : {2, 0, 1}) m_server.ThreadListRemove(kNoHandle + i);
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(ServerList, LeavesItselfAloneForAnUnknownThread) {
    addAll();
    EXPECT_EQ(m_server.ThreadListRemove(7), 1);
    EXPECT_EQ(m_server.GetNumConnections(), 3);
    EXPECT_EQ(m_server.ThreadListGetLength(), 3);
}

TEST_F(ServerList, TakesOnlyTheNewestOfTwoEntriesOfAThread) {
    m_server.ThreadListAdd(&m_workers[0], kNoHandle, 1);
    m_server.ThreadListAdd(&m_workers[1], kNoHandle, 2);
    m_server.ThreadListRemove(kNoHandle);
    EXPECT_THAT(listed(), ElementsAre(&m_workers[0]));
}

TEST_F(ServerList, KillsWorkersByTellingThem) {
    addAll();
    EXPECT_EQ(m_server.ThreadListKill(), 3);
    for (ProbeWorker& worker : m_workers) {
        EXPECT_EQ(worker.abortFlag(), 1);
        EXPECT_THAT(worker.codes, ElementsAre(0));
    }
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(m_server.GetNumConnections(), 0);
    EXPECT_EQ(m_server.ThreadListKill(), 0);
}

TEST_F(ServerList, CountsWhatItSuspendsAndResumes) {
    EXPECT_EQ(m_server.ThreadListSuspend(), 0);
    EXPECT_EQ(m_server.ThreadListResume(), 0);
    addAll();
    EXPECT_EQ(m_server.ThreadListSuspend(), 3);
    EXPECT_EQ(m_server.ThreadListResume(), 3);
}

// A handle can stand where an identifier does: then, and only then, a thread really stops.
TEST_F(ServerList, TakesIdentifiersForHandles) {
    const UniqueKernelHandle thread(::CreateThread(
        nullptr, 0, [](void*) -> DWORD { return 0; }, nullptr, CREATE_SUSPENDED, nullptr));
    m_server.ThreadListAdd(&m_workers[0], HandleToUlong(thread.get()), 1);
    m_server.ThreadListSuspend();
    EXPECT_EQ(::ResumeThread(thread.get()), 2u);
    m_server.ThreadListResume();
    EXPECT_EQ(::WaitForSingleObject(thread.get(), 10000), WAIT_OBJECT_0);
}

}  // namespace
