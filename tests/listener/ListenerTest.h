// A running listener with its host's window; the test is the central server.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "HostWindow.h"  // the system's
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/socket/SocketCodes.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"

inline const std::string kProbe = frame(1);
inline const std::string kAlive = wireOf(512);

// Lets a test look inside.
class ProbeListener : public NyServerApp {
  public:
    ~ProbeListener() override { endConnections(); }

    using NyServerApp::CreateInstance;
    using NyServerApp::endConnections;
    using NyServerApp::getPostMessageLimit;
    using NyServerApp::ReleaseInstance;
    using NyServerApp::ThreadListLock;

    // On a free port.
    bool start() {
        if (Start() != UTE_SUCCESS) return false;
        SetPort(GetBoundPort());
        return true;
    }
    peers::Connection connection() {
        peers::Connection peer = peers::connectionTo(GetBoundPort());
        EXPECT_NE(peer.socket(), INVALID_SOCKET);
        return peer;
    }

    // Posts a message file with this content. The result is how long the file is afterwards.
    ULONGLONG post(const std::string& content) {
        CMemFile file;
        file.Write(content.data(), static_cast<UINT>(content.size()));
        postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, file);
        return file.GetLength();
    }
    long postMessageLimit() {
        const ThreadListLock lock(*this);
        return getPostMessageLimit();
    }
    // In place of the system's.
    void setPostMessageLimit(long limit);

    // The paused flags of the workers, the newest first.
    std::vector<bool> pauses() {
        std::vector<bool> flags;
        const ThreadListLock lock(*this);
        for (auto* entry = ThreadListFirst(); entry; entry = entry->next)
            flags.push_back(static_cast<NyServerThreadApp*>(entry->worker)->isPaused());
        return flags;
    }
    bool isPaused() {
        const auto flags = pauses();
        return !flags.empty() && flags.front();
    }
    void pause(bool isPaused) {
        const ThreadListLock lock(*this);
        stopThread(isPaused);
    }
    // Whether there are so many workers before long.
    bool awaitWorkers(int count) {
        return eventually([&] { return GetNumConnections() == count; }, kGenerously);
    }
    // Whether every message has been consumed before long.
    bool awaitNoMessages() {
        return eventually([&] { return getPostMsgCount() == 0; }, kGenerously);
    }
};

// What a worker asked its socket for.
struct Asked {
    int length;
    int timeOut;
    int action;  // the current one
};

// A worker whose receives a test records and can take over.
class ProbeListenerWorker : public NyServerThreadApp {
  public:
    // Answers in place of the socket unless it gives nothing.
    using Receiver = std::function<int(char* buffer, int length, int timeOut)>;
    struct Script {
        std::mutex mutex;
        std::vector<Asked> asked;
        Receiver receiver;
        // The waits for the socket, by their result.
        std::atomic<int> readyWaits = 0;
        std::atomic<int> vainWaits = 0;
        void receiveBy(Receiver receive) {
            const std::lock_guard lock(mutex);
            receiver = std::move(receive);
        }
        std::vector<Asked> all() {
            const std::lock_guard lock(mutex);
            return asked;
        }
        // The times that it asked for a whole action.
        int rounds() {
            int count = 0;
            for (const Asked& one : all()) count += one.timeOut == 0 && one.length == 4;
            return count;
        }
    };
    static constexpr int kFromSocket = -1000;

    ProbeListenerWorker(NyServerApp* server, std::shared_ptr<Script> script)
        : NyServerThreadApp(server), m_script(std::move(script)) {}

    using NyServerThreadApp::Receive;
    int Receive(char* buffer, int length, int timeOut) override {
        Receiver receive;
        {
            const std::lock_guard lock(m_script->mutex);
            m_script->asked.push_back({length, timeOut, getCurrentAction()});
            receive = m_script->receiver;
        }
        const int result = receive ? receive(buffer, length, timeOut) : kFromSocket;
        return result == kFromSocket ? NyServerThreadApp::Receive(buffer, length, timeOut) : result;
    }
    int OnError(int code) override {
        ++(code == UTE_SUCCESS ? m_script->readyWaits : m_script->vainWaits);
        return code;
    }

  private:
    std::shared_ptr<Script> m_script;
};

// Makes such workers.
class ScriptedListener : public ProbeListener {
  public:
    ~ScriptedListener() override { endConnections(); }
    std::shared_ptr<ProbeListenerWorker::Script> script =
        std::make_shared<ProbeListenerWorker::Script>();

  protected:
    CUT_WSThread* CreateInstance() override { return new ProbeListenerWorker(this, script); }
};

template <class Listener>
class ListenerFixture : public testing::Test {
  protected:
    void SetUp() override {
        m_window.attachTo(m_listener);
        ASSERT_TRUE(m_listener.start());
    }
    // The window goes first.
    void TearDown() override { m_window.detachFrom(m_listener); }

    peers::Connection connect() {
        const int before = m_listener.GetNumConnections();
        peers::Connection peer = m_listener.connection();
        EXPECT_TRUE(m_listener.awaitWorkers(before + 1));
        return peer;
    }
    // Whether the connection is served; waits up to kGenerously.
    static bool isAlive(peers::Connection& peer) {
        peer.send(kProbe);
        std::string answer;
        for (auto wait = kGenerously; answer.empty() && wait.count() > 0; wait -= peers::kTimeOut)
            answer = peer.receive();
        return answer == kAlive;
    }
    // What was posted, once everything sent over the connection has been handled.
    auto postedFor(peers::Connection& peer) {
        EXPECT_TRUE(isAlive(peer));
        m_window.settle();
        return m_window.messages();
    }

    peers::WinsockSession m_winsock;
    Listener m_listener;
    HostWindow m_window{&m_listener};
};

using ListenerTest = ListenerFixture<ProbeListener>;
using ScriptedListenerTest = ListenerFixture<ScriptedListener>;
