#pragma once

#include <vector>

#include "NyServer/socket/CUT_WSClient.h"

// A client that records what passes through its hooks and lets a test decide what they answer.
class ProbeClient : public CUT_WSClient {
  public:
    std::vector<int> codes;        // all that OnError was given
    std::vector<long> sentTotals;  // all that SendFileStatus was given
    std::vector<long> receivedTotals;
    std::vector<long> receiveWaits;  // seconds that WaitForReceive was asked for
    int sends = 0;                   // calls of Send(const char*, int)
    int receives = 0;                // calls of Receive(char*, int, int)
    int abortChecks = 0;

    int abortAfter = -1;       // IsAborted answers 1 once it has been asked this often; -1: never
    int sendStatus = 1;        // what SendFileStatus answers
    int receiveStatus = 1;     // what ReceiveFileStatus answers
    bool isDeaf = false;       // WaitForReceive answers that nothing came
    bool isMute = false;       // WaitForSend answers that nothing can be sent
    int failingSend = -1;      // the number, from 0, of the Send that answers 0
    bool createFails = false;  // CreateSocket answers 1

    int CreateSocket(SOCKET& s, int family, int type, int protocol) override {
        return createFails ? OnError(UTE_ERROR)
                           : CUT_WSClient::CreateSocket(s, family, type, protocol);
    }
    using CUT_WSClient::Send;
    int Send(const char* data, int len) override {
        return sends++ == failingSend ? 0 : CUT_WSClient::Send(data, len);
    }
    using CUT_WSClient::Receive;
    int Receive(char* buffer, int len, int timeOut) override {
        ++receives;
        return CUT_WSClient::Receive(buffer, len, timeOut);
    }
    int WaitForSend(long seconds, long microseconds) override {
        return isMute ? OnError(UTE_ERROR) : CUT_WSClient::WaitForSend(seconds, microseconds);
    }
    int WaitForReceive(long seconds, long microseconds) override {
        receiveWaits.push_back(seconds);
        return isDeaf ? OnError(UTE_ERROR) : CUT_WSClient::WaitForReceive(seconds, microseconds);
    }

    // Connects to a peer on this host, with a time-out so long that only a hang reaches it.
    int connectTo(unsigned int port) { return Connect(port, "127.0.0.1", 10); }

    // True once the socket is readable: data or the peer's close has arrived.
    bool hasArrived() { return CUT_WSClient::WaitForReceive(10, 0) == UTE_SUCCESS; }

  protected:
    int OnError(int code) override {
        codes.push_back(code);
        return code;
    }
    int IsAborted() override { return abortAfter >= 0 && abortChecks++ >= abortAfter ? 1 : 0; }
    int SendFileStatus(long bytesSoFar) override {
        sentTotals.push_back(bytesSoFar);
        return sendStatus;
    }
    int ReceiveFileStatus(long bytesSoFar) override {
        receivedTotals.push_back(bytesSoFar);
        return receiveStatus;
    }
};
