#include "NyServer/host/NyFctIpUtil.h"
#include "tests/listener/ListenerTest.h"

namespace {

// Records the requests to listen, and refuses them if a test wants.
class RecordingListener : public ProbeListener {
  public:
    ~RecordingListener() override { endConnections(); }
    int ConnectToPort(unsigned short port, int queueSize, short family,
                      unsigned long address) override {
        asked = {port, queueSize, family, static_cast<long>(address)};
        return isRefusing ? UTE_SOCK_LISTEN_ERROR
                          : ProbeListener::ConnectToPort(port, queueSize, family, address);
    }
    std::vector<long> asked;
    bool isRefusing = false;
};

// Leaves it to the destructor of NyServerApp to end the connections.
class UnendedListener : public NyServerApp {
  public:
    explicit UnendedListener(std::shared_ptr<ProbeListenerWorker::Script> script)
        : m_script(std::move(script)) {}

  private:
    CUT_WSThread* CreateInstance() override { return new ProbeListenerWorker(this, m_script); }

    std::shared_ptr<ProbeListenerWorker::Script> m_script;
};

struct CountingWorker : NyServerThreadApp {
    CountingWorker(NyServerApp* server, int& count) : NyServerThreadApp(server), deleted(count) {}
    ~CountingWorker() override { ++deleted; }
    int& deleted;
};

class ListenerServer : public testing::Test {
  protected:
    bool isServing() {
        auto peer = m_listener.connection();
        peer.send(kProbe);
        return peer.receive() == kAlive;
    }

    peers::WinsockSession m_winsock;
    RecordingListener m_listener;
};

TEST_F(ListenerServer, BeginsEmptyAndKeepsWhatItsHostSets) {
    EXPECT_EQ(m_listener.getAppWnd(), nullptr);
    EXPECT_EQ(m_listener.getPortNumber(), 0);
    EXPECT_EQ(m_listener.getSessionNumber(), 0);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    EXPECT_EQ(m_listener.GetMaxConnections(), 30000) << "the base's";
    m_listener.setPortNumber(65535);
    m_listener.setSessionNumber(-7);
    EXPECT_EQ(m_listener.getPortNumber(), 65535);
    EXPECT_EQ(m_listener.getSessionNumber(), -7);
}

TEST_F(ListenerServer, ListensOnAllInterfacesAtItsPort) {
    m_listener.isRefusing = true;
    m_listener.setPortNumber(4711);
    EXPECT_EQ(m_listener.Start(), UTE_SOCK_LISTEN_ERROR);
    EXPECT_EQ(m_listener.asked, (std::vector<long>{4711, 5, 2, 0}));
    EXPECT_EQ(m_listener.StartAccept(), UTE_SUCCESS) << "it does not accept when it cannot listen";
}

TEST_F(ListenerServer, ASecondStartWhileItAcceptsChangesNothing) {
    ASSERT_TRUE(m_listener.start());
    const unsigned int port = m_listener.GetBoundPort();
    m_listener.setPortNumber(peers::freePort());
    m_listener.asked.clear();
    EXPECT_EQ(m_listener.Start(), UTE_ERROR);
    EXPECT_TRUE(m_listener.asked.empty());
    EXPECT_EQ(m_listener.GetBoundPort(), port);
    EXPECT_EQ(m_listener.GetPort(), port);
    EXPECT_TRUE(isServing());
}

TEST_F(ListenerServer, ServesFromItsStartOnAndMayStartAgainOnceItHasStopped) {
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(m_listener.start());
        EXPECT_TRUE(isServing());
        m_listener.StopAccept();
    }
}

TEST_F(ListenerServer, DeletesItsReleasedWorkers) {
    int deleted = 0;
    m_listener.ReleaseInstance(new CountingWorker(&m_listener, deleted));
    EXPECT_EQ(deleted, 1);
    m_listener.ReleaseInstance(nullptr);
}

// The rest of a message follows while the listener is being destroyed.
TEST_F(ListenerServer, FinishesAHeaderAndABodyWhenItIsDestroyed) {
    const std::string whole = frame(50, "abcdef");
    for (const size_t sent : {6u, 8u + 3u}) {
        auto listener = std::make_unique<ProbeListener>();
        HostWindow window;
        window.attachTo(*listener);
        ASSERT_TRUE(listener->start());
        auto peer = listener->connection();
        peer.send(whole.substr(0, sent));
        ASSERT_TRUE(listener->awaitWorkers(1));
        port::sleep(50);
        std::thread rest([&] {
            port::sleep(400);
            peer.send(whole.substr(sent));
        });
        listener.reset();
        EXPECT_EQ(window.awaitMessages(1).at(0).payload(), "abcdef");
        rest.join();
        EXPECT_TRUE(peer.awaitClose());
    }
}

// Whether the other end of the connection has closed by now.
bool isClosed(const peers::Connection& peer) {
    port::setBlocking(peer.socket(), false);
    char byte;
    return port::receive(peer.socket(), &byte, 1, 0) == 0;
}

// The worker waits for a body, so it ends neither at once nor by itself.
TEST_F(ListenerServer, EndsItsWorkersWhenItIsDestroyed) {
    const auto script = std::make_shared<ProbeListenerWorker::Script>();
    std::unique_ptr<NyServerApp> listener = std::make_unique<UnendedListener>(script);
    ASSERT_EQ(listener->Start(), UTE_SUCCESS);
    listener->SetPort(listener->GetBoundPort());
    auto peer = peers::connectionTo(listener->GetBoundPort());
    peer.send(frame(50, "a").substr(0, 8));
    ASSERT_TRUE(eventually([&] { return script->all().size() == 3; }));
    std::atomic<bool> isGone = false;
    std::thread end([&] {
        listener.reset();
        EXPECT_TRUE(isClosed(peer));
        isGone = true;
    });
    EXPECT_FALSE(eventually([&] { return isGone.load(); }, std::chrono::seconds(1)));
    peer.send("a");
    EXPECT_TRUE(eventually([&] { return isGone.load(); }, std::chrono::seconds(20)));
    peer.finishSending();  // ends a worker that has not been told
    end.join();
}

TEST_F(ListenerServer, IsDestroyedWhilePeersKeepConnecting) {
    HostWindow window;
    auto listener = std::make_unique<ProbeListener>();
    window.attachTo(*listener);
    ASSERT_TRUE(listener->start());
    std::atomic<bool> isEnding = false;
    std::vector<std::jthread> peers;
    for (int i = 0; i < 10; ++i)
        peers.emplace_back([&, isSilent = i < 8, port = listener->GetBoundPort()] {
            for (; !isEnding; port::sleep(1)) {
                peers::Connection peer(peers::connectTo(port), isEnding);
                isSilent ? static_cast<void>(peer.receive()) : peer.send(frame(50, "and going"));
            }
        });
    EXPECT_GE(window.awaitMessages(5).size(), 5u);
    const auto start = port::milliseconds();
    listener.reset();
    EXPECT_LT(port::milliseconds() - start, 30000u);
    isEnding = true;
}

TEST_F(ListenerServer, ReturnsTheAddressesOfHosts) {
    EXPECT_EQ(NyServerApp::_getIpAdress(), NyFctIpUtil::_getIpAddress());
    EXPECT_EQ(NyServerApp::_getIpAdressByName(_T("localhost")),
              NyFctIpUtil::_getIpAddressFromHostName(_T("localhost")));
    EXPECT_EQ(NyServerApp::_getIpAdressByName(_T("127.0.0.9")), _T("127.0.0.9"));
    const CString tooLong(_T('x'), 64);  // for a part of a host name: nobody needs to be asked
    EXPECT_TRUE(NyServerApp::_getIpAdressByName(tooLong).IsEmpty());
}

}  // namespace
