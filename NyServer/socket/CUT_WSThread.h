#pragma once

#include <atomic>

#include "NyServer/base/port/Port.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_DataSource.h"

class CUT_WSServer;

// The worker that serves one accepted connection of a CUT_WSServer. A derived class overrides
// OnConnect; the connection ends when OnConnect returns.
//
// Threads: the worker is created, used and destroyed on its connection's thread, and no other
// thread may use it, except that the server's ThreadListKill and ThreadListSuspend set the abort
// flag and call OnError(0), or suspend the thread.
//
// Ownership: the server's CreateInstance creates the worker and its ReleaseInstance destroys it.
// The socket belongs to the server, which closes it after ReleaseInstance. The owner pointer is not
// owned: CUT_WSServer describes how a server makes sure that it outlives the workers that use it.
//
// The order of the virtual functions is part of the binary interface: do not change it.
//
// Functions that are said to return a result code return one of SocketCodes.h, passed through
// OnError. A `timeOut` is in seconds; 0 or less waits without a limit.
class NYSERVER_API CUT_WSThread {
  public:
    CUT_WSThread();
    virtual ~CUT_WSThread();
    CUT_WSThread(const CUT_WSThread&) = delete;
    CUT_WSThread& operator=(const CUT_WSThread&) = delete;

    // Calls send once. A `len` below 0 means the length of the text; 0 sends nothing. Returns the
    // number of bytes sent, or -1 on failure.
    virtual int Send(const char* data, int len, int flags);

    // Opens `source`, sends all of it in pieces of 255 bytes and closes it. `bytesSent` receives
    // the number of bytes passed to successful sends, also on failure. Returns UTE_SUCCESS (also
    // when SendFileStatus stopped the transfer), UTE_WORKER_SEND_FAILED, UTE_SOCK_NOT_OPEN or
    // UTE_DS_OPEN_FAILED.
    virtual int Send(CUT_DataSource& source, long& bytesSent);

    // Sends the data in pieces of `lineLen` bytes, each followed by "\r\n". A zero byte ends its
    // piece early. A `len` below 1 means the length of the text. Returns the number of bytes sent,
    // with the line ends. A Send that returns less than 1 stops the transfer, and its result is
    // returned. Returns 0 if there is nothing to send, `lineLen` is below 1, or out of memory.
    // `data` is not changed.
    virtual int SendAsLine(char* data, int len, int lineLen);

    // Send(CUT_DataSource&, long&) with the file at `path`.
    virtual int SendFile(const WCHAR* path, long& bytesSent);

    // Waits for data and calls recv once. Returns the number of bytes received; 0 if the peer has
    // closed or nothing arrived in time; -1 on failure.
    virtual int Receive(char* buffer, int len, int timeOut);

    // Opens `target`, writes what arrives to it in pieces of at most 256 bytes until the peer
    // closes, and closes it. `timeOut` applies to each piece. `bytesReceived` receives the number
    // of bytes written, also on failure. Returns UTE_SUCCESS, UTE_SOCK_NOT_OPEN, UTE_SOCK_TIMEOUT,
    // UTE_SOCK_RECEIVE_ERROR, UTE_INVALID_OPEN_TYPE (neither write nor append; the target is not
    // used), UTE_DS_OPEN_FAILED, UTE_DS_WRITE_FAILED or UTE_ABORTED (ReceiveFileStatus returned 0).
    virtual int Receive(CUT_DataSource& target, long& bytesReceived, OpenMsgType type, int timeOut);

    // Receive(CUT_DataSource&, long&, OpenMsgType, int) with the file at `path`.
    virtual int ReceiveToFile(const WCHAR* path, OpenMsgType type, long& bytesReceived,
                              int timeOut);

    // Receives up to and including "\r\n", but at most `maxLen` - 1 bytes, and appends a
    // terminator. `timeOut` applies to each part. Returns the number of bytes stored, which may
    // lack the line end after a time-out, a close by the peer, an error, or when the abort flag is
    // set. Nothing after the line end is consumed. A line end whose two bytes arrive in different
    // parts is not recognised. A carriage return that ends a part is completed by the byte that
    // `buffer` held after it.
    virtual int ReceiveLine(char* buffer, int maxLen, int timeOut);

    // Handles the connection, until it returns. The base reads one line, answers with a fixed text
    // and returns.
    virtual void OnConnect();

    // Handles a connection above the server's maximum. The base reads once and sends nothing.
    virtual void OnMaxConnect();

    // Does nothing. Keeps its slot among the virtual functions.
    virtual void OnReserved();

    // Called after each piece of a transfer. Returning 0 stops the transfer. The base returns 1.
    virtual int ReceiveFileStatus(long bytesSoFar);
    virtual int SendFileStatus(long bytesSoFar);

    // Receives each result code; its own result is what the caller gets. The base returns `code`.
    virtual int OnError(int code);

    // Returns 1 while the peer keeps the connection open, else 0. Leaves the socket blocking,
    // except if the connection is broken.
    int IsConnected();

    // Returns 1 if at least one byte can be read without waiting, else 0.
    int IsDataWaiting();

    // Reads and discards what has arrived, through Receive. Always returns UTE_SUCCESS.
    int ClearReceiveBuffer();

    // Returns UTE_SUCCESS if the socket becomes readable within the time, else UTE_ERROR.
    int WaitForReceive(long seconds, long microseconds);

    // 1 is non-blocking, 0 blocking. The value is stored only if the socket accepted it.
    void SetBlockingMode(int mode);

    // In milliseconds. The value is stored only if the socket accepted it.
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
