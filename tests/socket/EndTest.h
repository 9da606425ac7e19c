// A client or a worker at one end of a connection, with one set of verbs; the test is the peer.
#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <string>

#include "tests/socket/LocalConnection.h"
#include "tests/socket/Probes.h"
#include "tests/support/WideText.h"

class ClientEnd : public ProbeClient {
  public:
    static constexpr const char* kName = "Client";
    static constexpr bool kTakesZeroForTheTextsLength = true;  // of bytes to send
    static constexpr int kUnsent = 0;                          // what Send gives for a failure
    static constexpr int kSendFailure = UTE_SOCK_SEND_ERROR;   // of a data source
    static constexpr int kSendStopped = UTE_ABORTED;           // by SendFileStatus
    static constexpr int kLineEndsCounted = 0;                 // by SendAsLine

    int sendBytes(const char* data, int len) { return Send(data, len); }
    int sendSource(CUT_DataSource& source) { return Send(source); }
    int sendFile(const WideText& path) { return SendFile(path.c_str()); }
    int receiveSource(CUT_DataSource& target, OpenMsgType type, int timeOut) {
        return Receive(target, type, timeOut, 0);
    }
    int receiveFile(const WideText& path, OpenMsgType type, int timeOut) {
        return ReceiveToFile(path.c_str(), type, timeOut, 0);
    }
    // The bytes that the last transfer has told of.
    long sent() const { return sentTotals.empty() ? 0 : sentTotals.back(); }
    long received() const { return receivedTotals.empty() ? 0 : receivedTotals.back(); }
    void setAborted(bool isAborted) { abortAfter = isAborted ? 0 : -1; }
};

class WorkerEnd : public ProbeWorker {
  public:
    static constexpr const char* kName = "Worker";
    static constexpr bool kTakesZeroForTheTextsLength = false;
    static constexpr int kUnsent = -1;
    static constexpr int kSendFailure = UTE_WORKER_SEND_FAILED;
    static constexpr int kSendStopped = UTE_SUCCESS;
    static constexpr int kLineEndsCounted = 2;

    int sendBytes(const char* data, int len) { return Send(data, len, 0); }
    int sendSource(CUT_DataSource& source) { return Send(source, m_sent); }
    int sendFile(const WideText& path) { return SendFile(path.c_str(), m_sent); }
    int receiveSource(CUT_DataSource& target, OpenMsgType type, int timeOut) {
        return Receive(target, m_received, type, timeOut);
    }
    int receiveFile(const WideText& path, OpenMsgType type, int timeOut) {
        return ReceiveToFile(path.c_str(), type, m_received, timeOut);
    }
    long sent() const { return m_sent; }
    long received() const { return m_received; }
    void setAborted(bool isAborted) { setAbort(isAborted ? 1 : 0); }

  private:
    long m_sent = 77;
    long m_received = 77;
};

using BothEnds = testing::Types<ClientEnd, WorkerEnd>;

struct EndNames {
    template <class End>
    static std::string GetName(int) {
        return End::kName;
    }
};

template <class End>
class EndTest : public testing::Test {
  protected:
    EndTest() : m_peer(m_pair.takeFarEnd()) { m_end.attach(m_pair.nearEnd()); }
    ~EndTest() override { m_end.attach(INVALID_SOCKET); }  // the pair closes it

    // What the peer receives once this end is closed.
    std::string arrived() {
        m_end.attach(INVALID_SOCKET);
        m_pair.closeNear();
        return m_peer.receiveAll();
    }
    void peerSends(std::string_view data) {
        m_peer.send(data);
        awaitBytes(data.size());
    }
    void peerSendsAndCloses(std::string_view data) {
        peerSends(data);
        m_peer.close();
    }
    // Until so many bytes can be read at once.
    void awaitBytes(size_t count) {
        while (port::waitingBytes(m_pair.nearEnd()) < count) port::sleep(1);
    }
    void awaitPeersEnd() {
        ASSERT_EQ(m_end.WaitForReceive(10, 0), UTE_SUCCESS);
        m_end.codes.clear();
    }
    int optionOf(int option) { return peers::optionOf(m_pair.nearEnd(), option); }
    // Whether a receive of nothing takes its 50 ms, less the coarseness of the clocks.
    bool isBlocking() {
        char byte = 0;
        m_end.SetReceiveTimeOut(50);
        const auto start = std::chrono::steady_clock::now();
        return port::receive(m_pair.nearEnd(), &byte, 1, 0) == SOCKET_ERROR &&
               std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(40);
    }

    peers::SocketPair m_pair;
    peers::Connection m_peer;
    End m_end;
};

using Client = EndTest<ClientEnd>;
using Worker = EndTest<WorkerEnd>;
