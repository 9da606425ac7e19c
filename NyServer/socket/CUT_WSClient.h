#pragma once

#include <memory>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_DataSource.h"
#include "NyServer/socket/SocketCodes.h"

class HostLookUps;

// One stream or datagram socket that connects out or is handed an accepted connection and, for
// those who listen with a client object, one listening socket.
//
// Threads: one thread at a time uses an object; nothing in it is locked. The hooks of asynchronous
// notification run on the thread that called InitAsync, out of its message loop.
//
// Lifetime: the object owns both sockets and the notification window and closes them when it is
// destroyed; it holds one start of Winsock all its life (Reset replaces it). After CloseConnection
// it can connect again. The destructor cancels host look-ups; where the system does not cancel them
// it waits until they have been announced, at most 60 s, because the system writes into the object.
// REQUIRES: an object whose class overrides the hooks is destroyed on the notification window's
// thread, or with no look-up and no socket event pending; otherwise that thread may still be inside
// a hook of the derived part.
//
// Results: unless said otherwise, an int result is one of SocketCodes.h and has passed through
// OnError. Nothing throws. The stack's own error number is not kept: WSAGetLastError right behind
// the failed call still has it, and SocketErrorText reads the pending error of GetSocket().
// Time-outs of operations are in seconds, those of the socket itself in milliseconds. Text is in
// the active ANSI code page, addresses are dotted IPv4, ports are in host order. Pointers must not
// be null except where it is said.
//
// Every call inside the class to a virtual operation goes through its slot, so an override changes
// the operations built on it. The order of the virtual functions is part of the binary interface.
class NYSERVER_API CUT_WSClient {
  public:
    CUT_WSClient();
    virtual ~CUT_WSClient();
    CUT_WSClient(const CUT_WSClient&) = delete;
    CUT_WSClient& operator=(const CUT_WSClient&) = delete;

    // Connects to `port` of `address`, a host name or dotted text. With `timeOut` >= 0 waits at
    // most that long; a negative one blocks for as long as the stack takes. UTE_SUCCESS,
    // UTE_SOCK_ALREADY_OPEN, UTE_CONNECT_RESOLVE_FAILED, UTE_SOCK_CREATE_FAILED,
    // UTE_SOCK_CONNECT_FAILED or UTE_CONNECT_TIMEOUT; in the last two cases the socket is closed
    // again. When the stack connects at once, a socket with a time-out stays non-blocking and both
    // ports keep their values.
    virtual int Connect(unsigned int port, const char* address, long timeOut, int family = AF_INET,
                        int type = SOCK_STREAM);

    // Connects from a chosen address and port, blocking. Both addresses must be dotted text.
    // UTE_SUCCESS, UTE_SOCK_ALREADY_OPEN, UTE_SOCK_CREATE_FAILED, UTE_SOCK_BIND_FAILED or
    // UTE_SOCK_CONNECT_FAILED; in the last two cases the new socket stays open for the caller to
    // CloseConnection.
    virtual int ConnectBound(unsigned int localPort, unsigned int remotePort, char* localAddress,
                             char* remoteAddress, int family, int type);

    // Makes a datagram socket bound to `localAddress` (null: all interfaces) and `localPort` (0:
    // any) that sends to `remoteAddress` and `remotePort`. UTE_SUCCESS, UTE_SOCK_ALREADY_OPEN,
    // UTE_SOCK_CREATE_FAILED or UTE_SOCK_BIND_FAILED (socket closed again).
    virtual int CreateUDPSocket(unsigned int localPort, unsigned int remotePort,
                                char* remoteAddress, char* localAddress);

    // Stores a new socket, or INVALID_SOCKET, in `s`. UTE_SUCCESS or UTE_ERROR.
    virtual int CreateSocket(SOCKET& s, int family, int type, int protocol);

    // Closes both sockets (streams after SD_BOTH) and clears ports and address. UTE_SUCCESS, or
    // UTE_ERROR if a call failed; the object is closed in either case.
    virtual int CloseConnection();

    // Makes the hidden window that asynchronous notification needs, on the calling thread, which
    // must dispatch messages. A window made before is destroyed, after the look-ups under way have
    // ended as in the destructor. UTE_SUCCESS, UTE_ERROR if the window class cannot be registered;
    // a plain 1, without OnError, if the window cannot be made.
    virtual int InitAsync(HINSTANCE instance);

    // Listens on `port` (0: any; see GetAcceptPort) of `address`, a 32-bit value in network order.
    // UTE_SUCCESS, UTE_SOCK_ALREADY_OPEN, UTE_SOCK_CREATE_FAILED, UTE_SOCK_BIND_FAILED or
    // UTE_SOCK_LISTEN_ERROR; in the last two cases the listening socket stays for the caller to
    // CloseConnection.
    virtual int WaitForConnect(unsigned short port, int queueSize, short family,
                               unsigned long address);

    // UTE_SUCCESS when a peer waits to be accepted, UTE_ERROR when none came in time.
    virtual int WaitForAccept(long seconds);

    // Accepts one peer, blocking, in place of the present connection, which is closed first.
    // UTE_SUCCESS; UTE_ERROR if that close failed (nothing is accepted) or accept failed. The
    // listening socket stays open.
    virtual int AcceptConnection();

    // Sends all that `source` holds, in pieces of at most 255 bytes. UTE_SUCCESS,
    // UTE_SOCK_NOT_OPEN, UTE_DS_OPEN_FAILED, UTE_SOCK_SEND_ERROR or UTE_ABORTED. The source is
    // closed at the end if it was opened.
    virtual int Send(CUT_DataSource& source);

    // One send of `len` bytes; a `len` below 1 stands for strlen(data). The bytes sent, which may
    // be fewer; 0 on an error.
    virtual int Send(const char* data, int len);

    // Sends pieces of `lineLen` bytes, each followed by CR LF; a `len` below 0 stands for
    // strlen(data). The bytes of data sent, line ends not counted; fewer than `len` after an error
    // or an abort. Nothing is sent if `lineLen` is below 1.
    virtual int SendAsLine(const char* data, int len, int lineLen);

    // Send(CUT_DataSource&) of the file's contents.
    virtual int SendFile(const wchar_t* path);

    // One datagram of `len` bytes to the remote address and port. `len` becomes the bytes sent, -1
    // on an error. UTE_SUCCESS, UTE_SOCK_NOT_OPEN (`len` kept) or UTE_SOCK_SEND_ERROR.
    virtual int SendTo(const char* data, int& len);

    // UTE_SUCCESS when the socket can be written to, UTE_ERROR when not within the time.
    virtual int WaitForSend(long seconds, long microseconds);

    // Writes what arrives into `target`, opened with OM_WRITE or OM_APPEND, in pieces of at most
    // 256 bytes, until the peer closes or, with `maxBytes` above 0, until that many bytes have
    // come. `timeOut` above 0 bounds the wait before each piece, and the one behind the last as
    // well. UTE_SUCCESS, UTE_SOCK_NOT_OPEN, UTE_INVALID_OPEN_TYPE, UTE_DS_OPEN_FAILED,
    // UTE_SOCK_TIMEOUT, UTE_SOCK_RECEIVE_ERROR, UTE_DS_WRITE_FAILED or UTE_ABORTED. The target is
    // closed at the end if it was opened and holds what came before a failure.
    virtual int Receive(CUT_DataSource& target, OpenMsgType type, int timeOut, long maxBytes);

    // One recv, after a wait if `timeOut` is above 0. The bytes received; 0 when the peer has
    // closed and when nothing came in time; -1 on an error.
    virtual int Receive(char* buffer, int len, int timeOut);

    // Receive(CUT_DataSource&, ...) into a file.
    virtual int ReceiveToFile(const wchar_t* path, OpenMsgType type, int timeOut, long maxBytes);

    // Reads up to and with a line feed, at most `maxLen` - 1 bytes, and consumes nothing behind it.
    // The bytes stored, a terminator behind them; without a line feed at the end when the buffer is
    // full or on a time-out (for each wait), an abort, a close or an error. `buffer` is untouched
    // when the result is 0.
    virtual int ReceiveLine(char* buffer, int maxLen, int timeOut);

    // Reads and drops what has arrived. Always UTE_SUCCESS.
    virtual int ClearReceiveBuffer();

    // One datagram. Waits `timeOut` seconds, 0 not at all. `len` is the room in `buffer` and
    // becomes the bytes received, -1 on an error. The sender is in getsockAddr; the address text
    // and the remote port keep their values. UTE_SUCCESS, UTE_SOCK_NOT_OPEN, UTE_SOCK_TIMEOUT (both
    // with `len` kept) or UTE_SOCK_RECEIVE_ERROR.
    virtual int ReceiveFrom(char* buffer, int& len, unsigned long timeOut);

    // UTE_SUCCESS when the socket can be read from, UTE_ERROR when not within the time.
    virtual int WaitForReceive(long seconds, long microseconds);

  protected:
    // The funnel of result codes: what it returns is what the caller gets. Base: `code`.
    virtual int OnError(int code);

    // Called behind each piece of a transfer; 0 stops it with UTE_ABORTED. Base: 1 while
    // IsAborted() is 0.
    virtual int ReceiveFileStatus(long bytesSoFar);
    virtual int SendFileStatus(long bytesSoFar);

    // Non-zero stops every loop that sends or receives. Base: 0.
    virtual int IsAborted();

    // What SetAsyncNotify, AsyncGetNameFromAddress and AsyncGetAddressFromName announce: `event` is
    // one of the FD_ values, `error` 0 or the stack's error number. Base: nothing.
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

    // The socket's time-outs in milliseconds. The lower-case setters only store the value; it
    // reaches the socket at the next connect, accept or socket creation.
    NYSERVER_INLINE long GetReceiveTimeOut() const { return m_receiveTimeOut; }
    NYSERVER_INLINE long GetSendTimeOut() const { return m_sendTimeOut; }
    NYSERVER_INLINE void setRecvTimeOut(long ms) { m_receiveTimeOut = ms; }
    NYSERVER_INLINE void setSendTimeOut(long ms) { m_sendTimeOut = ms; }

    // Set the time-out on the socket and, if that succeeded, store it. 0 or SOCKET_ERROR.
    int SetReceiveTimeOut(int ms);
    int SetSendTimeOut(int ms);

    // The stack's buffers in bytes. The setters return 0 or SOCKET_ERROR, not through OnError; the
    // getters -1 on failure.
    int SetMaxReceive(int bytes);
    int SetMaxSend(int bytes);
    int GetMaxReceive();
    int GetMaxSend();

    // An option of SOL_SOCKET. 0 or SOCKET_ERROR, not through OnError. Reads 4 bytes; takes 8, so
    // that `value` of the setter must point to an 8-byte value.
    int GetSocketOption(int option, void* value);
    int SetSocketOption(int option, void* value);

    // Mode 1 is non-blocking, 0 blocking. UTE_SUCCESS, or UTE_ERROR with the mode unchanged.
    int SetBlockingMode(int mode);

    // 1 when the connection is alive, 0 when the peer closed it, it broke or was never opened; not
    // through OnError. The socket ends blocking, except when it is found broken.
    int IsConnected();

    // Starts Winsock again and forgets ports, address and both sockets WITHOUT closing them.
    // UTE_SUCCESS, or UTE_ERROR if Winsock does not start.
    int Reset();

    // Whether at least one byte can be received without waiting.
    bool IsDataWaiting();

    // 1 when `text` is an address, else 0. 255.255.255.255 is not taken for one.
    int IsIPAddress(const char* text);

    // Looks up the text behind the last '@' that is not the first character. `address` has room for
    // `maxLen` bytes and is untouched unless UTE_SUCCESS; UTE_NAME_LOOKUP_FAILED,
    // UTE_BUFFER_TOO_SHORT.
    int GetAddressFromName(const char* name, char* address, int maxLen);

    // The official host name of `address`; results as GetAddressFromName.
    int GetNameFromAddress(const char* address, char* name, int maxLen);

    // The address of this host by its name; if that fails or `useSocket` is not 0, the address of
    // the socket's own end, cut to `maxLen` - 1 characters. UTE_SUCCESS, or UTE_ERROR if the socket
    // is not open.
    int GetHostAddress(char* address, int maxLen, int useSocket);

    // Announces `events` (FD_ values) of the socket through OnAsyncNotify from now on and makes the
    // socket non-blocking. UTE_SUCCESS or UTE_ERROR. REQUIRES: InitAsync has succeeded.
    int SetAsyncNotify(long events);

    // Start a look-up whose end OnAsyncGetAddressNotify or OnAsyncGetNameNotify announces. The
    // system writes the HOSTENT into the object's host buffer before that; a second look-up that is
    // started meanwhile writes there too, so start one at a time. UTE_SUCCESS when the system
    // accepted the request, else UTE_ERROR. The last two arguments are not used. REQUIRES:
    // InitAsync has succeeded.
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
    bool provideLookUps();
    template <class Request>
    int startLookUp(const Request& request);
    void endLookUps();
    bool dropAnnouncement();
    void dropNotificationWindow();
    void forgetConnection();
    void fillPorts(unsigned int remotePort);
    void applyTimeOuts();
    void setAddressText(const char* text);
    int copyLookedUp(const char* text, char* target, int maxLen);
    bool mayGoOn(int status);
    bool notify(UINT message, WPARAM wParam, LPARAM lParam);

    std::unique_ptr<HostLookUps> m_lookUps;  // null before InitAsync
};
