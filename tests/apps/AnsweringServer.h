// A central server that answers each request as a test says, on as many connections as come.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "NyServer/framing/NySeActions.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/CUT_WSThread.h"
#include "tests/socket/LocalConnection.h"

// What is sent for a request with this payload; the connection is closed for want of anything.
using Answer = std::function<std::optional<std::string>(const std::string& payload)>;
// By action. The connection is closed at a request that is not among them.
using Answers = std::map<LONG, Answer>;

inline Answer answering(const std::string& bytes) {
    return [bytes](const std::string&) { return bytes; };
}

class AnsweringServer : public CUT_WSServer {
  public:
    // Closes each connection after so many requests.
    explicit AnsweringServer(Answers answers, size_t requests = SIZE_MAX)
        : m_answers(std::move(answers)), m_requests(requests) {
        int result = 1;
        for (int i = 0; result != 0 && i < 20; ++i)
            result = ConnectToPort(peers::freePort(), 5, AF_INET, htonl(INADDR_LOOPBACK));
        EXPECT_EQ(0, result);
        EXPECT_EQ(0, StartAccept());
    }
    ~AnsweringServer() override {
        SetShutDownFlag(1);
        StopAccept();
        while (!RunDownIfIdle()) port::sleep(10);
    }

    std::string address() { return "127.0.0.1:" + std::to_string(GetPort()); }

  protected:
    CUT_WSThread* CreateInstance() override { return new Worker(*this); }
    void ReleaseInstance(CUT_WSThread* worker) override { delete worker; }

  private:
    class Worker : public CUT_WSThread {
      public:
        explicit Worker(AnsweringServer& server) : m_server(server) {}

        void OnConnect() override {
            LONG action = 0;
            for (size_t i = 0; i < m_server.m_requests && take(&action, sizeof action); ++i) {
                LONG length = 0;
                if (action != NySe::actionGetVersion && !take(&length, sizeof length)) return;
                std::string payload(static_cast<size_t>(length), '\0');
                if (!take(payload.data(), payload.size())) return;
                const auto row = m_server.m_answers.find(action);
                if (row == m_server.m_answers.end()) return;
                const std::optional<std::string> answer = row->second(payload);
                if (!answer) return;
                Send(answer->data(), static_cast<int>(answer->size()), 0);
            }
        }

      private:
        // False at the end of the connection, or of the server. A disconnect request has no
        // length; the end follows it.
        bool take(void* bytes, size_t count) {
            size_t taken = 0;
            while (taken < count) {
                if (m_server.GetShutDownFlag() != 0) return false;
                if (WaitForReceive(0, 50'000) != 0) continue;
                const int more =
                    Receive(static_cast<char*>(bytes) + taken, static_cast<int>(count - taken), 0);
                if (more < 1) return false;
                taken += static_cast<size_t>(more);
            }
            return true;
        }

        AnsweringServer& m_server;
    };

    const Answers m_answers;
    const size_t m_requests;
};
