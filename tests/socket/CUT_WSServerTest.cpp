#include "NyServer/socket/CUT_WSServer.h"

#include "tests/socket/ProbeServer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(ServerHooks, ReturnFixedValues) {
    struct : CUT_WSServer {
        CUT_WSThread* CreateInstance() override { return nullptr; }
        void ReleaseInstance(CUT_WSThread*) override {}
        std::vector<long> answers() {
            return {Pause(), Resume(), OnCanAccept("127.0.0.1"), OnStatus(_T("text")), OnError(42)};
        }
    } server;
    EXPECT_THAT(server.answers(), ElementsAre(0, 0, 1, 0, 42));
}

class Server : public ServerTest {
  protected:
    peers::RefusingPort m_taken;  // where nobody listens
    char m_loopback[10] = "127.0.0.1";
};

TEST_F(Server, StartsWithItsInitialValuesAndStoresOthers) {
    EXPECT_EQ(m_server.GetMaxConnections(), 30000);
    EXPECT_EQ(m_server.GetNumConnections(), 0);
    EXPECT_EQ(m_server.GetProtocol(), 0);
    EXPECT_EQ(m_server.GetPort(), 0xFFFFFFFFu);
    EXPECT_EQ(m_server.GetShutDownFlag(), 0);
    EXPECT_EQ(m_server.SetPort(12), 0);
    EXPECT_EQ(m_server.GetPort(), 12u);
    EXPECT_EQ(m_server.SetProtocol(6), 6);
    EXPECT_EQ(m_server.GetProtocol(), 6);
    m_server.SetShutDownFlag(1);
    EXPECT_EQ(m_server.GetShutDownFlag(), 1);
    EXPECT_THAT(m_server.codes, ElementsAre(0)) << "of the port";
}

TEST_F(Server, LimitsTheMaximumOfConnections) {
    for (const int refused : {0, -1, 32001}) {
        EXPECT_EQ(m_server.SetMaxConnections(refused), -1);
        EXPECT_EQ(m_server.GetMaxConnections(), 30000);
    }
    for (const int taken : {32000, 1}) {
        EXPECT_EQ(m_server.SetMaxConnections(taken), taken);
        EXPECT_EQ(m_server.GetMaxConnections(), taken);
    }
}

// No Winsock (1) and a failing listen (23) are not tested: the start of Winsock does not fail here,
// and neither does listen on a stream socket that is bound.
TEST_F(Server, ReportsAPortThatIsTakenAndMayTryAnother) {
    EXPECT_EQ(m_server.listenOn(m_taken.port()), UTE_SOCK_BIND_FAILED);
    EXPECT_THAT(m_server.codes, ElementsAre(UTE_SOCK_BIND_FAILED));
    EXPECT_EQ(m_server.GetPort(), 0xFFFFFFFFu);
    const unsigned short port = peers::freePort();
    EXPECT_EQ(m_server.ConnectToPort(port, 5, AF_INET, 0), 0);
    EXPECT_EQ(m_server.GetPort(), port);
    EXPECT_THAT(m_server.codes, ElementsAre(UTE_SOCK_BIND_FAILED, 0));
    EXPECT_TRUE(m_server.isReachable());
}

TEST_F(Server, BindsToTheGivenAddressOnly) {
    const unsigned short port = peers::freePort();
    char other[] = "127.0.0.2";
    ASSERT_EQ(m_server.ConnectToPort(port, 5, AF_INET, ::inet_addr(other)), 0);
    EXPECT_EQ(m_server.TempConnect(port, other), 0);
    EXPECT_EQ(m_server.TempConnect(port, m_loopback), UTE_SOCK_CONNECT_FAILED);
}

TEST_F(Server, ReportsAProtocolThatHasNoStreams) {
    m_server.SetProtocol(IPPROTO_UDP);
    EXPECT_EQ(m_server.listenOn(0), UTE_SOCK_CREATE_FAILED);
    EXPECT_THAT(m_server.codes, ElementsAre(UTE_SOCK_CREATE_FAILED));
}

TEST_F(Server, ClosesItsListeningSocketWhenItListensOnAnotherPortOrCannot) {
    ASSERT_EQ(m_server.listen(), 0);
    const unsigned int first = m_server.GetPort();
    ASSERT_EQ(m_server.listen(), 0);
    const unsigned int second = m_server.GetPort();
    EXPECT_NE(second, first);
    EXPECT_FALSE(peers::isReachable(first));
    EXPECT_TRUE(peers::isReachable(second));
    EXPECT_EQ(m_server.listenOn(m_taken.port()), UTE_SOCK_BIND_FAILED);
    EXPECT_FALSE(peers::isReachable(second));
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
    EXPECT_EQ(m_server.listenOn(0), UTE_ERROR);
    EXPECT_THAT(m_server.codes, ElementsAre(UTE_ERROR));
    EXPECT_EQ(m_server.GetPort(), port);
    EXPECT_EQ(m_server.GetBoundPort(), port);
    EXPECT_EQ(m_server.converse(), ProbeServer::kAnswer);
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_FALSE(peers::isReachable(port));
}

TEST_F(Server, TempConnectsToAListenerAndReportsFailures) {
    ASSERT_EQ(m_server.listen(), 0);
    EXPECT_EQ(m_server.TempConnect(m_server.GetPort(), m_loopback), 0);
    EXPECT_THAT(m_server.statuses, IsEmpty());
    EXPECT_EQ(m_server.TempConnect(m_taken.port(), m_loopback), UTE_SOCK_CONNECT_FAILED);
    EXPECT_THAT(m_server.codes, ElementsAre(0, UTE_SOCK_CONNECT_FAILED));
    // The connect, and the shutdown of what is not connected.
    ASSERT_THAT(m_server.statuses, SizeIs(2));
    EXPECT_EQ(m_server.statuses[0], _T("Connection refused."));
}

TEST_F(Server, StopsWithoutHavingBeenStarted) {
    EXPECT_EQ(m_server.StopAccept(), 0);
    ASSERT_EQ(m_server.listen(), 0);
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_TRUE(m_server.isReachable());
    EXPECT_THAT(m_server.codes, IsEmpty());
}

// How many peers a listening socket holds ready before they are accepted. The stack may add a few
// to the size that it is given.
TEST_F(Server, AndAClientListenWithAQueueOfTheRequestedLength) {
    constexpr size_t kLong = 20;
    const auto answered = [](unsigned int port) {
        const size_t count = peers::connectWhileAnswered(port, kLong).size();
        EXPECT_TRUE(count < 5 || count == kLong) << count;
        return count;
    };
    for (const size_t size : {size_t{1}, kLong}) {
        ASSERT_EQ(m_server.listen(static_cast<int>(size)), UTE_SUCCESS);
        ProbeClient client;
        ASSERT_EQ(
            client.WaitForConnect(0, static_cast<int>(size), AF_INET, ::inet_addr(m_loopback)),
            UTE_SUCCESS);
        for (const unsigned int port :
             {m_server.GetPort(), static_cast<unsigned int>(client.GetAcceptPort())})
            EXPECT_EQ(answered(port) < 5, size == 1) << port;
    }
}

class ServerList : public Server {
  protected:
    static constexpr DWORD kNoHandle =
        0x7FFFFF00;  // identifiers that are no handles of this process

    ServerList() { m_server.ending = ProbeServer::Ending::RunsDown; }
    std::vector<CUT_WSThread*> listed() {
        const ProbeServer::ThreadListLock lock(m_server);
        std::vector<CUT_WSThread*> workers;
        for (const auto* entry = m_server.ThreadListFirst(); entry; entry = entry->next)
            workers.push_back(entry->worker);
        EXPECT_EQ(m_server.GetNumConnections(), static_cast<int>(workers.size()));
        EXPECT_EQ(m_server.ThreadListGetLength(), static_cast<int>(workers.size()));
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
    const ProbeServer::ThreadListLock lock(m_server);
    const auto* first = m_server.ThreadListFirst();
    EXPECT_EQ(first->threadId, kNoHandle + 2);
    EXPECT_EQ(first->socket, 102u);
    EXPECT_EQ(first->previous, nullptr);
    EXPECT_EQ(first->next->previous, first);
}

TEST_F(ServerList, TakesEntriesOutWhereverTheyStand) {
    addAll();
    EXPECT_EQ(m_server.ThreadListRemove(7), 1) << "an unknown thread";
    EXPECT_THAT(listed(), SizeIs(3));
    EXPECT_EQ(m_server.ThreadListRemove(kNoHandle + 1), 1);
    EXPECT_THAT(listed(), ElementsAre(&m_workers[2], &m_workers[0]));
    {
        const ProbeServer::ThreadListLock lock(m_server);
        EXPECT_EQ(m_server.ThreadListFirst()->next->previous, m_server.ThreadListFirst());
    }
    m_server.ThreadListRemove(kNoHandle + 2);
    EXPECT_THAT(listed(), ElementsAre(&m_workers[0]));
    m_server.ThreadListRemove(kNoHandle);
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(ServerList, TakesOnlyTheNewestOfTwoEntriesOfAThread) {
    m_server.ThreadListAdd(&m_workers[0], kNoHandle, 1);
    m_server.ThreadListAdd(&m_workers[1], kNoHandle, 2);
    m_server.ThreadListRemove(kNoHandle);
    EXPECT_THAT(listed(), ElementsAre(&m_workers[0]));
}

TEST_F(ServerList, KillsWorkersByTheirAbortFlag) {
    addAll();
    EXPECT_EQ(m_server.ThreadListKill(), 3);
    for (ProbeWorker& worker : m_workers) {
        EXPECT_EQ(worker.abortFlag(), 1);
        EXPECT_THAT(worker.codes, ElementsAre(0));
    }
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(m_server.ThreadListKill(), 0);
}

TEST_F(ServerList, CountsWhatItSuspendsAndResumes) {
    for (const int count : {0, 3}) {
        EXPECT_EQ(m_server.ThreadListSuspend(), count);
        EXPECT_EQ(m_server.ThreadListResume(), count);
        if (count == 0) addAll();
    }
}

}  // namespace
