#pragma once

#include <atomic>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_DataSource.h"

class CUT_WSServer;

// The worker that serves one accepted connection of a CUT_WSServer. A derived worker overrides
// OnConnect; when that returns the connection is over.
//
// Threads: the worker is made, run and disposed of on its connection's own thread, and only that
// thread may use it. ThreadListKill and ThreadListSuspend reach it from other threads: they set the
// abort flag and call OnError(0).
//
// Ownership: the server's CreateInstance makes the worker and its ReleaseInstance takes it back.
// The socket belongs to the server, which closes it once the worker is released; the worker never
// does. The owner pointer is borrowed: see CUT_WSServer for how a server makes sure that it
// outlives the workers that use it.
//
// The order of the virtual functions is part of the binary interface.
class NYSERVER_API CUT_WSThread {
  public:
    CUT_WSThread();
    virtual ~CUT_WSThread();
    CUT_WSThread(const CUT_WSThread&) = delete;
    CUT_WSThread& operator=(const CUT_WSThread&) = delete;

    // One send. A `len` below 0 takes the length of the text; 0 sends nothing. The bytes sent, or
    // -1.
    virtual int Send(const char* data, int len, int flags);

    // Sends the whole source in pieces of 255 bytes and closes it. `bytesSent` holds the bytes of
    // all pieces given to Send. Through OnError: 0 (also when SendFileStatus stopped it), 4 a send
    // failed, 15 no socket, 79 the source refused to open.
    virtual int Send(CUT_DataSource& source, long& bytesSent);

    // Sends the data in pieces of `lineLen` bytes, each followed by "\r\n"; a zero byte ends its
    // piece early. A `len` below 1 takes the length of the text. The bytes sent, line ends
    // included; the result of the Send that gave less than 1, which ends it; 0 when there is
    // nothing to send or `lineLen` is below 1. The data is as before when the call returns.
    virtual int SendAsLine(char* data, int len, int lineLen);

    // Send(CUT_DataSource&, long&) of the file.
    virtual int SendFile(const wchar_t* path, long& bytesSent);

    // One receive; a `timeOut` above 0 waits at most so many seconds for it. The bytes received, 0
    // when the peer has closed or nothing came in time, or -1.
    virtual int Receive(char* buffer, int len, int timeOut);

    // Writes what comes to the target until the peer closes, in pieces of at most 256 bytes, each
    // waited for at most `timeOut` seconds if that is above 0; closes the target. `bytesReceived`
    // holds the bytes written. Through OnError: 0, 15 no socket, 20 time-out, 21 a receive failed,
    // 26 `type` is neither write nor append (the target is not touched), 79 the target refused to
    // open, 81 it wrote too little, 90 ReceiveFileStatus stopped it.
    virtual int Receive(CUT_DataSource& target, long& bytesReceived, OpenMsgType type, int timeOut);

    // Receive(CUT_DataSource&, long&, OpenMsgType, int) into the file.
    virtual int ReceiveToFile(const wchar_t* path, OpenMsgType type, long& bytesReceived,
                              int timeOut);

    // Receives up to and including a carriage return and line feed that come together, at most
    // `maxLen` - 1 bytes, and puts a terminator behind. Waits at most `timeOut` seconds for each
    // part if that is above 0. The bytes stored, also when time, peer or abort flag ended it early;
    // nothing behind the line end is consumed. The two bytes of a line end that arrive in different
    // parts are not recognised; a carriage return at the end of a part is taken by the byte that
    // `buffer` held behind it.
    virtual int ReceiveLine(char* buffer, int maxLen, int timeOut);

    // The connection's handler: serves the peer until it returns. The base reads one line, answers
    // it with a fixed text and returns.
    virtual void OnConnect();

    // The handler of a connection above the server's maximum. The base reads once and sends
    // nothing.
    virtual void OnMaxConnect();

    // Does nothing; keeps its place among the virtual functions.
    virtual void OnReserved();

    // Told the bytes so far during a transfer; 0 stops it. The base returns 1.
    virtual int ReceiveFileStatus(long bytesSoFar);
    virtual int SendFileStatus(long bytesSoFar);

    // Every result code passes through here; the base returns `code`.
    virtual int OnError(int code);

    // 1 while the peer still holds the connection, else 0. The socket is blocking afterwards,
    // except when it is dead.
    int IsConnected();

    // 1 when at least one byte can be read without waiting, else 0.
    int IsDataWaiting();

    // Drops what has come, through Receive in pieces of 256 bytes. Always 0.
    int ClearReceiveBuffer();

    // Through OnError: 0 when the socket is readable within the time, else 1.
    int WaitForReceive(long seconds, long microseconds);

    // 1 is non-blocking, 0 blocking; stored if the socket took it.
    void SetBlockingMode(int mode);

    // Milliseconds; stored if the socket took them.
    void SetReceiveTimeOut(long milliseconds);
    void SetSendTimeOut(long milliseconds);

  protected:
    // Set by CUT_WSServer before the handler runs.
    SOCKET m_socket = 0;
    sockaddr_in m_peerAddress{};
    SOCKET m_listenSocket = 0;
    CUT_WSServer* m_owner = nullptr;

    unsigned char m_blockingMode = 0;
    long m_receiveTimeOut = 0;
    long m_sendTimeOut = 0;
    std::atomic<int> m_abort = 0;  // not 0: the server has killed its workers

  private:
    friend class CUT_WSServer;
    friend class ServerConnection;
};
