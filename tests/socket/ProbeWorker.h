#pragma once

#include <string>
#include <vector>

#include "NyServer/socket/CUT_WSThread.h"

// A worker that records what passes through its hooks and lets a test decide what they answer.
class ProbeWorker : public CUT_WSThread {
  public:
    // Serves this socket without a server.
    void attach(SOCKET socket) { m_socket = socket; }

    SOCKET socket() const { return m_socket; }
    SOCKET listenSocket() const { return m_listenSocket; }
    const sockaddr_in& peerAddress() const { return m_peerAddress; }
    CUT_WSServer* owner() const { return m_owner; }
    int blockingMode() const { return m_blockingMode; }
    long receiveTimeOut() const { return m_receiveTimeOut; }
    long sendTimeOut() const { return m_sendTimeOut; }
    int abortFlag() const { return m_abort; }
    void abort() { m_abort = 1; }

    std::vector<int> codes;        // all that OnError was given
    std::vector<long> sentTotals;  // all that SendFileStatus was given
    std::vector<long> receivedTotals;
    std::vector<std::string> sends;   // the bytes of all calls of Send(const char*, int, int)
    std::vector<int> sendLengths;     // the lengths asked for by those calls
    std::vector<int> receiveLengths;  // the lengths asked for by Receive(char*, int, int)
    std::vector<int> lineLengths;     // the maxLen asked for by ReceiveLine
    int failingSend = -1;             // the number, from 0, of the Send that gives failingResult
    int failingResult = -1;
    int failingReceive = -1;  // the number, from 0, of the Receive that gives -1
    int sendStatus = 1;       // what SendFileStatus answers
    int receiveStatus = 1;    // what ReceiveFileStatus answers

    using CUT_WSThread::Receive;
    using CUT_WSThread::Send;
    int Send(const char* data, int len, int flags) override {
        sendLengths.push_back(len);
        sends.push_back(len < 0 ? std::string(data) : std::string(data, static_cast<size_t>(len)));
        if (static_cast<int>(sends.size()) - 1 == failingSend) return failingResult;
        return CUT_WSThread::Send(data, len, flags);
    }
    int Receive(char* buffer, int len, int timeOut) override {
        receiveLengths.push_back(len);
        if (static_cast<int>(receiveLengths.size()) - 1 == failingReceive) return -1;
        return CUT_WSThread::Receive(buffer, len, timeOut);
    }
    int ReceiveLine(char* buffer, int maxLen, int timeOut) override {
        lineLengths.push_back(maxLen);
        return CUT_WSThread::ReceiveLine(buffer, maxLen, timeOut);
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
};
