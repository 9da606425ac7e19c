#pragma once

#include <functional>
#include <memory>

#include "NyServer/base/port/Port.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_DataSource.h"
#include "NyServer/socket/SocketCodes.h"

class HostLookUps;  // defined on Windows only

// A stream or datagram socket that connects or receives an accepted connection, and, for hosts that
// listen with a client object, one listening socket.
//
// Threads: one thread at a time may use an object; nothing in it is locked. The hooks of
// asynchronous notification are called on the thread that called InitAsync, by its message loop.
//
// Ownership and lifetime: the object owns both sockets and the notification window, and closes them
// when it is destroyed. It holds one start of Winsock for its lifetime (Reset replaces it). After
// CloseConnection it can connect again. The destructor cancels pending host look-ups. If the system
// does not cancel one, the destructor waits until it is announced, but not longer than 60 s,
// because the system writes the result into the object. REQUIRES: an object whose class overrides
// the hooks is destroyed on the notification window's thread, or while no look-up and no socket
// event is pending; otherwise that thread may still be inside a hook of the derived class.
//
// Results: unless said otherwise, an int result is a code of SocketCodes.h, passed through OnError.
// No function throws. WSAGetLastError, on Linux errno, has the error number of the system directly
// after the failed call, and SocketErrorText reads the pending error of GetSocket(). Time-outs of
// operations are in seconds, those of the socket in milliseconds. Text is in the active ANSI code
// page, addresses are dotted IPv4, ports are in host order. Pointer arguments must not be null
// unless said otherwise.
//
// All calls within the class to virtual functions are virtual, so an override affects the
// operations that are built on it. The order of the virtual functions is part of the binary
// interface: do not change it.
class NYSERVER_API CUT_WSClient {
  public:
    CUT_WSClient();
    virtual ~CUT_WSClient();
    CUT_WSClient(const CUT_WSClient&) = delete;
    CUT_WSClient& operator=(const CUT_WSClient&) = delete;

    // Connects to `port` of `address`, a host name or dotted text. Waits at most `timeOut` seconds;
    // a negative one waits as long as the system does. Returns UTE_SUCCESS, UTE_SOCK_ALREADY_OPEN,
    // UTE_CONNECT_RESOLVE_FAILED, UTE_SOCK_CREATE_FAILED, UTE_SOCK_CONNECT_FAILED or
    // UTE_CONNECT_TIMEOUT; in the last two cases the socket is closed again. If the system connects
    // at once, a socket with a time-out stays non-blocking and both ports keep their values.
    virtual int Connect(unsigned int port, const char* address, long timeOut, int family = AF_INET,
                        int type = SOCK_STREAM);

    // Connects from `localAddress` and `localPort`; both addresses are dotted text. Blocks. Returns
    // UTE_SUCCESS, UTE_SOCK_ALREADY_OPEN, UTE_SOCK_CREATE_FAILED, UTE_SOCK_BIND_FAILED or
    // UTE_SOCK_CONNECT_FAILED; in the last two cases the new socket stays open until
    // CloseConnection.
    virtual int ConnectBound(unsigned int localPort, unsigned int remotePort, char* localAddress,
                             char* remoteAddress, int family, int type);

    // Creates a datagram socket that is bound to `localAddress` (null for all interfaces) and
    // `localPort` (0 for any) and sends to `remoteAddress` and `remotePort`. Returns UTE_SUCCESS,
    // UTE_SOCK_ALREADY_OPEN, UTE_SOCK_CREATE_FAILED or UTE_SOCK_BIND_FAILED (the socket is closed
    // again).
    virtual int CreateUDPSocket(unsigned int localPort, unsigned int remotePort,
                                char* remoteAddress, char* localAddress);

    // Creates a socket and stores it in `s`. Returns UTE_SUCCESS, or UTE_ERROR with INVALID_SOCKET
    // in `s`.
    virtual int CreateSocket(SOCKET& s, int family, int type, int protocol);

    // Closes both sockets (streams after a shutdown of both directions) and clears ports and
    // address. Returns UTE_SUCCESS, or UTE_ERROR if a system call failed; the object is closed in
    // either case.
    virtual int CloseConnection();

    // Creates the hidden window for asynchronous notification on the calling thread, which must
    // dispatch messages. Destroys an earlier window, after pending look-ups have ended as in the
    // destructor. Returns UTE_SUCCESS; UTE_ERROR if the window class cannot be registered or out of
    // memory, and on Linux always; 1, not passed through OnError, if the window cannot be created.
    virtual int InitAsync(HINSTANCE instance);

    // Listens on `port` (0 for any; see GetAcceptPort) of `address`, in network order. Returns
    // UTE_SUCCESS, UTE_SOCK_ALREADY_OPEN, UTE_SOCK_CREATE_FAILED, UTE_SOCK_BIND_FAILED or
    // UTE_SOCK_LISTEN_ERROR; in the last two cases the listening socket stays open until
    // CloseConnection.
    virtual int WaitForConnect(unsigned short port, int queueSize, short family,
                               unsigned long address);

    // Waits for a peer to accept. Returns UTE_SUCCESS, or UTE_ERROR if none arrived in time.
    virtual int WaitForAccept(long seconds);

    // Closes the present connection and accepts one peer. Blocks. Returns UTE_SUCCESS, or UTE_ERROR
    // if the close failed (then nothing is accepted) or accept failed. The listening socket stays
    // open.
    virtual int AcceptConnection();

    // Opens `source`, sends all of it in pieces of at most 255 bytes and closes it. Returns
    // UTE_SUCCESS, UTE_SOCK_NOT_OPEN, UTE_DS_OPEN_FAILED, UTE_SOCK_SEND_ERROR or UTE_ABORTED.
    virtual int Send(CUT_DataSource& source);

    // Calls send once. A `len` below 1 means strlen(data). Returns the number of bytes sent, which
    // may be less than `len`; 0 on failure.
    virtual int Send(const char* data, int len);

    // Sends the data in pieces of `lineLen` bytes, each followed by "\r\n". A `len` below 0 means
    // strlen(data). Returns the number of bytes of data sent, without line ends; it is less than
    // `len` after a failure or an abort. Returns 0 and sends nothing if `lineLen` is below 1.
    virtual int SendAsLine(const char* data, int len, int lineLen);

    // Send(CUT_DataSource&) with the file at `path`.
    virtual int SendFile(const WCHAR* path);

    // Sends one datagram of `len` bytes to the remote address and port. `len` receives the number
    // of bytes sent, -1 on failure. Returns UTE_SUCCESS, UTE_SOCK_NOT_OPEN (`len` is not changed)
    // or UTE_SOCK_SEND_ERROR.
    virtual int SendTo(const char* data, int& len);

    // Returns UTE_SUCCESS if the socket becomes writable within the time, else UTE_ERROR.
    virtual int WaitForSend(long seconds, long microseconds);

    // Opens `target` with OM_WRITE or OM_APPEND, writes what arrives to it in pieces of at most 256
    // bytes, and closes it. Ends when the peer closes or, with `maxBytes` above 0, after that many
    // bytes. A `timeOut` above 0 limits the wait before each piece, and one more wait after the
    // last. Returns UTE_SUCCESS, UTE_SOCK_NOT_OPEN, UTE_INVALID_OPEN_TYPE (the target is not used),
    // UTE_DS_OPEN_FAILED, UTE_SOCK_TIMEOUT, UTE_SOCK_RECEIVE_ERROR, UTE_DS_WRITE_FAILED or
    // UTE_ABORTED. After a failure `target` has what arrived before.
    virtual int Receive(CUT_DataSource& target, OpenMsgType type, int timeOut, long maxBytes);

    // Calls recv once, after a wait of at most `timeOut` seconds if that is above 0. Returns the
    // number of bytes received; 0 if the peer has closed or nothing arrived in time; -1 on failure.
    virtual int Receive(char* buffer, int len, int timeOut);

    // Receive(CUT_DataSource&, ...) with the file at `path`.
    virtual int ReceiveToFile(const WCHAR* path, OpenMsgType type, int timeOut, long maxBytes);

    // Receives up to and including a line feed, but at most `maxLen` - 1 bytes, and appends a
    // terminator. Nothing after the line feed is consumed. Returns the number of bytes stored. They
    // end without a line feed if the buffer is full, and after a time-out (of each wait), an abort,
    // a close by the peer or an error. Returns 0 with `buffer` not changed if nothing was received.
    virtual int ReceiveLine(char* buffer, int maxLen, int timeOut);

    // Reads and discards what has arrived. Always returns UTE_SUCCESS.
    virtual int ClearReceiveBuffer();

    // Waits `timeOut` seconds (0: does not wait) and receives one datagram. `len` is the size of
    // `buffer` and receives the number of bytes received, -1 on failure. getsockAddr has the
    // sender; the address text and the remote port are not changed. Returns UTE_SUCCESS,
    // UTE_SOCK_NOT_OPEN or UTE_SOCK_TIMEOUT (both leave `len` as it is), or UTE_SOCK_RECEIVE_ERROR.
    virtual int ReceiveFrom(char* buffer, int& len, unsigned long timeOut);

    // Returns UTE_SUCCESS if the socket becomes readable within the time, else UTE_ERROR.
    virtual int WaitForReceive(long seconds, long microseconds);

  protected:
    // Receives each result code; its own result is what the caller gets. The base returns `code`.
    virtual int OnError(int code);

    // Called after each piece of a transfer. Returning 0 stops it with UTE_ABORTED. The base
    // returns 1 while IsAborted() returns 0.
    virtual int ReceiveFileStatus(long bytesSoFar);
    virtual int SendFileStatus(long bytesSoFar);

    // Returning non-zero stops all loops that send or receive. The base returns 0.
    virtual int IsAborted();

    // Called for the events of SetAsyncNotify and the results of AsyncGetNameFromAddress and
    // AsyncGetAddressFromName. `event` is one of the FD_ values; `error` is 0 or the system's error
    // number. The base does nothing.
    virtual void OnAsyncNotify(int event, int error);
    virtual void OnAsyncGetNameNotify(int error);
    virtual void OnAsyncGetAddressNotify(int error);

  public:
    NYSERVER_INLINE int GetRemotePort() const { return m_remotePort; }
    NYSERVER_INLINE int GetLocalPort() const { return m_localPort; }
    NYSERVER_INLINE int GetAcceptPort() const { return m_acceptPort; }
    NYSERVER_INLINE SOCKET GetSocket() const { return m_socket; }
    NYSERVER_INLINE int GetBlockingMode() const { return m_blockingMode; }
    NYSERVER_INLINE const char* getszAddress() const { return m_address; }
    NYSERVER_INLINE sockaddr_in& getsockAddr() { return m_remoteAddress; }

    // The socket's time-outs in milliseconds. setRecvTimeOut and setSendTimeOut only store the
    // value; it is applied at the next connect, accept or creation of a socket.
    NYSERVER_INLINE long GetReceiveTimeOut() const { return m_receiveTimeOut; }
    NYSERVER_INLINE long GetSendTimeOut() const { return m_sendTimeOut; }
    NYSERVER_INLINE void setRecvTimeOut(long ms) { m_receiveTimeOut = ms; }
    NYSERVER_INLINE void setSendTimeOut(long ms) { m_sendTimeOut = ms; }

    // Set the time-out of the socket in milliseconds and, on success, store it. Return 0 or
    // SOCKET_ERROR, passed through OnError.
    int SetReceiveTimeOut(int ms);
    int SetSendTimeOut(int ms);

    // The system's buffers of the socket, in bytes. The setters return 0 or SOCKET_ERROR, the
    // getters -1 on failure; not passed through OnError.
    int SetMaxReceive(int bytes);
    int SetMaxSend(int bytes);
    int GetMaxReceive();
    int GetMaxSend();

    // Get or set an option of level SOL_SOCKET. Return 0 or SOCKET_ERROR, not passed through
    // OnError. REQUIRES: `value` points to 4 bytes for the getter, 8 bytes for the setter.
    int GetSocketOption(int option, void* value);
    int SetSocketOption(int option, void* value);

    // Mode 1 is non-blocking, 0 blocking. Returns UTE_SUCCESS, or UTE_ERROR with the mode not
    // changed.
    int SetBlockingMode(int mode);

    // Returns 1 if the connection is alive; 0 if the peer closed it, it is broken, or it was never
    // opened. Not passed through OnError. Leaves the socket blocking, except if the connection is
    // broken.
    int IsConnected();

    // Starts Winsock again and clears ports, address and both sockets WITHOUT closing the sockets.
    // Returns UTE_SUCCESS, or UTE_ERROR if Winsock does not start.
    int Reset();

    // Returns whether at least one byte can be received without waiting.
    bool IsDataWaiting();

    // Returns 1 if `text` is an address, else 0. Returns 0 for 255.255.255.255 too.
    int IsIPAddress(const char* text);

    // Looks up the address of a host. If `name` contains an '@' that is not its first character,
    // the host is what follows the last one. `maxLen` is the size of `address`. Returns
    // UTE_SUCCESS; otherwise UTE_NAME_LOOKUP_FAILED or UTE_BUFFER_TOO_SHORT, with `address` not
    // changed.
    int GetAddressFromName(const char* name, char* address, int maxLen);

    // Looks up the host name of `address`. Results as GetAddressFromName.
    int GetNameFromAddress(const char* address, char* name, int maxLen);

    // Stores the address that this host's name resolves to. If that fails or `useSocket` is not 0,
    // stores the address of the socket's own end, cut to `maxLen` - 1 characters. Returns
    // UTE_SUCCESS, or UTE_ERROR if the socket is not open.
    int GetHostAddress(char* address, int maxLen, int useSocket);

    // Makes the socket non-blocking and has OnAsyncNotify called for `events` (FD_ values) of it.
    // Returns UTE_SUCCESS or UTE_ERROR, on Linux always the latter. REQUIRES: InitAsync has
    // succeeded.
    int SetAsyncNotify(long events);

    // Start a look-up whose end is announced to OnAsyncGetAddressNotify or OnAsyncGetNameNotify.
    // Before that the system writes the HOSTENT into the object's host buffer, which all look-ups
    // share: start one at a time. The last two arguments are not used. Return UTE_SUCCESS if the
    // system accepted the request, else UTE_ERROR, on Linux always. REQUIRES: InitAsync has
    // succeeded.
    int AsyncGetAddressFromName(const char* name, char* address, int maxLen);
    int AsyncGetNameFromAddress(const char* address, char* name, int maxLen);

    // The window procedure of the notification window.
    static LRESULT CALLBACK WndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  protected:
    int m_remotePort = 0;
    int m_localPort = 0;
    int m_acceptPort = 0;
    char m_address[30] = "";
    int m_protocol = 0;
    int m_family = AF_INET;
    int m_socketType = SOCK_STREAM;
    WSADATA m_winsockData{};
    SOCKET m_socket = INVALID_SOCKET;
    sockaddr_in m_remoteAddress{};
    SOCKET m_listenSocket = INVALID_SOCKET;
    sockaddr_in m_listenAddress{};
    int m_blockingMode = 0;
    int m_winsockStarted = 1;
    HWND m_notificationWindow = nullptr;
    long m_sendTimeOut = 30000;
    long m_receiveTimeOut = 30000;
    char m_hostBuffer[1024]{};

  private:
    int startConnect(long timeOut);
    int finishConnect(long timeOut);
    void dropSocket();
    int startLookUp(const std::function<void*()>& request);
    void endLookUps();
    bool dropAnnouncement();
    void dropNotificationWindow();
    void forgetConnection();
    void fillPorts(unsigned int remotePort);
    void applyTimeOuts();
    void setAddressText(const char* text);
    bool mayGoOn(int status);
    bool notify(UINT message, WPARAM wParam, LPARAM lParam);

    struct LookUpsDeleter {
        void operator()(HostLookUps* lookUps) const;
    };
    std::unique_ptr<HostLookUps, LookUpsDeleter> m_lookUps;  // null before InitAsync
};
