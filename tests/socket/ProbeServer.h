#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/SocketCodes.h"
#include "tests/socket/LocalConnection.h"
#include "tests/socket/Probes.h"
#include "tests/support/Gate.h"
#include "tests/support/WideText.h"

// What happened in a server, in its order. It outlives the server.
class ServerLog {
  public:
    void add(std::string event) {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(std::move(event));
        m_threads.push_back(port::currentThreadId());
    }
    std::vector<std::string> events() const {
        const std::lock_guard lock(m_mutex);
        return m_events;
    }
    std::vector<DWORD> threads() const {
        const std::lock_guard lock(m_mutex);
        return m_threads;
    }
    int count(std::string_view event) const {
        const std::lock_guard lock(m_mutex);
        return static_cast<int>(std::count(m_events.begin(), m_events.end(), event));
    }
    bool await(std::string_view event, int times = 1) const {
        return eventually([&] { return count(event) >= times; });
    }

  private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_events;
    std::vector<DWORD> m_threads;
};

// A worker that runs a test's handler in place of the base's.
class LoggingWorker : public ProbeWorker {
  public:
    using Handler = std::function<void(LoggingWorker&)>;

    LoggingWorker(std::shared_ptr<ServerLog> log, Handler onConnect)
        : m_log(std::move(log)), m_onConnect(std::move(onConnect)) {}
    ~LoggingWorker() override { m_log->add("worker deleted"); }

    void OnConnect() override {
        m_log->add("OnConnect");
        m_onConnect ? m_onConnect(*this) : ProbeWorker::OnConnect();
    }
    void OnMaxConnect() override {
        m_log->add("OnMaxConnect");
        ProbeWorker::OnMaxConnect();
    }

  private:
    std::shared_ptr<ServerLog> m_log;
    Handler m_onConnect;
};

// A function that the test sets while threads of the server call it.
template <class... Arguments>
class Hook {
  public:
    using Function = std::function<void(Arguments...)>;

    Hook& operator=(Function function) {
        auto shared = std::make_shared<Function>(std::move(function));
        const std::lock_guard lock(m_state->mutex);
        m_state->function.swap(shared);
        return *this;
    }
    // The function may destroy the hook.
    void operator()(Arguments... arguments) const {
        const auto state = m_state;
        if (const auto called = state->get()) (*called)(arguments...);
        const std::lock_guard lock(state->mutex);
        ++state->calls;
    }
    // A copy of the function.
    Function function() const {
        const auto shared = m_state->get();
        return shared ? *shared : Function();
    }
    // Waits until so many calls have returned. What they wrote can then be read.
    bool awaitCalls(int count) const {
        return eventually([&] {
            const std::lock_guard lock(m_state->mutex);
            return m_state->calls >= count;
        });
    }

  private:
    struct State {
        std::shared_ptr<Function> get() {
            const std::lock_guard lock(mutex);
            return function;
        }

        std::mutex mutex;
        std::shared_ptr<Function> function;
        int calls = 0;
    };

    std::shared_ptr<State> m_state = std::make_shared<State>();
};

// A server that records its virtual calls and lets a test take part in them.
class ProbeServer : public CUT_WSServer {
  public:
    enum class Ending { WaitsForWorkers, RunsDown, StaysOpen };

    std::shared_ptr<ServerLog> log = std::make_shared<ServerLog>();
    std::vector<int> codes;          // all that OnError was given
    std::vector<WideText> statuses;  // all that OnStatus was given
    Hook<LoggingWorker&> onConnect;
    Hook<> onCreate;
    Hook<CUT_WSThread*> onRelease;
    Hook<> onCanAccept;
    std::atomic<bool> hasWorkers = true;
    std::atomic<long> verdict = 1;
    Ending ending = Ending::WaitsForWorkers;

    ~ProbeServer() override {
        if (ending == Ending::RunsDown) RunDown();
        if (ending == Ending::WaitsForWorkers) {
            SetShutDownFlag(1);
            while (!RunDownIfIdle()) port::sleep(1);
        }
    }

    using CUT_WSServer::RunDown;
    using CUT_WSServer::RunDownIfIdle;
    using CUT_WSServer::ThreadListAdd;
    using CUT_WSServer::ThreadListEntry;
    using CUT_WSServer::ThreadListFirst;
    using CUT_WSServer::ThreadListGetLength;
    using CUT_WSServer::ThreadListKill;
    using CUT_WSServer::ThreadListLock;
    using CUT_WSServer::ThreadListRemove;
    using CUT_WSServer::ThreadListResume;
    using CUT_WSServer::ThreadListSuspend;

    int listenOn(unsigned int port, int queueSize = 5) {
        return ConnectToPort(static_cast<unsigned short>(port), queueSize, AF_INET,
                             htonl(INADDR_LOOPBACK));
    }
    // Listens on a free port of 127.0.0.1. The result of ConnectToPort.
    int listen(int queueSize = 5) {
        int result = UTE_SOCK_BIND_FAILED;
        for (int attempt = 0; result == UTE_SOCK_BIND_FAILED && attempt < 20; ++attempt)
            result = listenOn(peers::freePort(), queueSize);
        codes.clear();
        return result;
    }
    bool start() { return listen() == UTE_SUCCESS && StartAccept() == UTE_SUCCESS; }
    peers::Connection connection() { return peers::connectionTo(GetPort()); }
    bool isReachable() { return peers::isReachable(GetPort()); }

    // What the base worker answers to a line.
    static constexpr const char* kAnswer = "Connect Successful ... Now Disconnecting.";
    // One connection from its beginning to the close: what it was answered.
    std::string converse(std::string_view words = "hi\r\n") {
        peers::Connection peer = connection();
        peer.send(words);
        return peer.receiveAll();
    }

  protected:
    CUT_WSThread* CreateInstance() override {
        log->add("CreateInstance");
        onCreate();
        return hasWorkers ? new LoggingWorker(log, onConnect.function()) : nullptr;
    }
    void ReleaseInstance(CUT_WSThread* worker) override {
        log->add("ReleaseInstance");
        onRelease(worker);
        delete worker;
    }
    long OnCanAccept(const char* address) override {
        log->add(std::string("OnCanAccept ") + address);
        onCanAccept();
        return verdict;
    }
    int OnStatus(const WCHAR* text) override {
        const std::lock_guard lock(m_mutex);
        statuses.push_back(text);
        return 0;
    }
    int OnError(int code) override {
        const std::lock_guard lock(m_mutex);
        codes.push_back(code);
        return code;
    }

  private:
    std::mutex m_mutex;  // the accepting thread fails while another one stops it
};

// A server, and a gate that holds its threads. The server goes before what its hooks refer to.
class ServerTest : public testing::Test {
  protected:
    void TearDown() override {
        m_gate.open();
        destroy();
    }

    void start() { ASSERT_TRUE(m_server.start()); }
    void destroy() { m_owned.reset(); }
    // Threads that come to the hook wait at the gate.
    template <class Member>
    void hold(Member ProbeServer::*hook) {
        m_server.*hook = [this](auto&&...) { m_gate.pass(); };
    }
    // A connection with a thread of the server at the gate.
    peers::Connection connectionAtTheGate() {
        peers::Connection peer = m_server.connection();
        EXPECT_TRUE(m_gate.awaitArrivals());
        return peer;
    }

    peers::WinsockSession m_winsock;
    Gate m_gate;
    std::unique_ptr<ProbeServer> m_owned = std::make_unique<ProbeServer>();
    ProbeServer& m_server = *m_owned;
    std::shared_ptr<ServerLog> m_log = m_server.log;
};
