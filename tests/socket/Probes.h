// A client and a worker that record what passes through their hooks and let a test decide what they
// answer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/CUT_WSThread.h"
#include "NyServer/socket/SocketCodes.h"

template <class Base>
class Probe : public Base {
  public:
    std::vector<int> codes;        // all that OnError was given
    std::vector<long> sentTotals;  // all that SendFileStatus was given
    std::vector<long> receivedTotals;
    std::vector<std::string> sends;   // the bytes of all calls of Send with bytes
    std::vector<int> sendLengths;     // the lengths asked for by those calls
    std::vector<int> receiveLengths;  // the lengths asked for by Receive(char*, int, int)
    int failingSend = -1;             // the number, from 0, of the Send that gives failingResult
    int failingResult = 0;
    int failingReceive = -1;  // the number, from 0, of the Receive that gives -1
    int sendStatus = 1;       // what SendFileStatus answers
    int receiveStatus = 1;    // what ReceiveFileStatus answers

    // Uses this socket, which belongs to the caller.
    void attach(SOCKET socket) { this->m_socket = socket; }
    SOCKET socket() const { return this->m_socket; }
    int blockingMode() const { return this->m_blockingMode; }
    long receiveTimeOut() const { return this->m_receiveTimeOut; }
    long sendTimeOut() const { return this->m_sendTimeOut; }

    using Base::Receive;
    int Receive(char* buffer, int len, int timeOut) override {
        receiveLengths.push_back(len);
        if (static_cast<int>(receiveLengths.size()) - 1 == failingReceive) return -1;
        return Base::Receive(buffer, len, timeOut);
    }
    int ReceiveFileStatus(long bytesSoFar) override {
        receivedTotals.push_back(bytesSoFar);
        return receiveStatus;
    }
    int SendFileStatus(long bytesSoFar) override {
        sentTotals.push_back(bytesSoFar);
        return sendStatus;
    }
    int OnError(int code) override {
        codes.push_back(code);
        return code;
    }

  protected:
    // Records a Send. Whether it is the one that fails.
    bool recordSend(const char* data, int len) {
        sendLengths.push_back(len);
        sends.push_back(len < 0 ? std::string(data) : std::string(data, static_cast<size_t>(len)));
        return static_cast<int>(sends.size()) - 1 == failingSend;
    }
};

class ProbeClient : public Probe<CUT_WSClient> {
  public:
    std::vector<long> receiveWaits;  // seconds that WaitForReceive was asked for
    std::function<void()> beforeWait = [] {};
    int abortChecks = 0;
    int abortAfter = -1;       // IsAborted answers 1 once it has been asked this often; -1: never
    bool isDeaf = false;       // WaitForReceive answers that nothing came
    bool isMute = false;       // WaitForSend answers that nothing can be sent
    bool createFails = false;  // CreateSocket answers 1

    int CreateSocket(SOCKET& s, int family, int type, int protocol) override {
        return createFails ? OnError(UTE_ERROR)
                           : CUT_WSClient::CreateSocket(s, family, type, protocol);
    }
    using CUT_WSClient::Send;
    int Send(const char* data, int len) override {
        return recordSend(data, len) ? failingResult : CUT_WSClient::Send(data, len);
    }
    int WaitForSend(long seconds, long microseconds) override {
        return isMute ? OnError(UTE_ERROR) : CUT_WSClient::WaitForSend(seconds, microseconds);
    }
    int WaitForReceive(long seconds, long microseconds) override {
        receiveWaits.push_back(seconds);
        beforeWait();
        return isDeaf ? OnError(UTE_ERROR) : CUT_WSClient::WaitForReceive(seconds, microseconds);
    }

    // Connects to a peer on this host, with a time-out so long that only a hang reaches it.
    int connectTo(unsigned int port) { return Connect(port, "127.0.0.1", 10); }

    // True once the socket is readable: data or the peer's close has arrived.
    bool hasArrived() { return CUT_WSClient::WaitForReceive(10, 0) == UTE_SUCCESS; }

    int optionOf(int option) {
        int value = -1;
        return GetSocketOption(option, &value) == 0 ? value : -1;
    }

  protected:
    int IsAborted() override { return abortAfter >= 0 && abortChecks++ >= abortAfter ? 1 : 0; }
};

class ProbeWorker : public Probe<CUT_WSThread> {
  public:
    ProbeWorker() { failingResult = -1; }

    SOCKET listenSocket() const { return m_listenSocket; }
    const sockaddr_in& peerAddress() const { return m_peerAddress; }
    CUT_WSServer* owner() const { return m_owner; }
    int abortFlag() const { return m_abort; }

    std::vector<int> lineLengths;  // the maxLen asked for by ReceiveLine

    using CUT_WSThread::Send;
    int Send(const char* data, int len, int flags) override {
        return recordSend(data, len) ? failingResult : CUT_WSThread::Send(data, len, flags);
    }
    int ReceiveLine(char* buffer, int maxLen, int timeOut) override {
        lineLengths.push_back(maxLen);
        return CUT_WSThread::ReceiveLine(buffer, maxLen, timeOut);
    }

  protected:
    void setAbort(int flag) { m_abort = flag; }
};
