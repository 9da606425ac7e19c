// What the library needs of the platform: time, threads, locks, sockets, files, and the identity of
// the machine. This header declares it, and windows/ and posix/ implement it. The other layers call
// the system only in their folders `windows` and `posix`.
//
// No function throws unless said otherwise.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "NyServer/base/port/Platform.h"

#ifdef _WIN32
namespace port {
using NativeMutex = CRITICAL_SECTION;
using FileHandle = HANDLE;
inline const FileHandle kNoFile = INVALID_HANDLE_VALUE;
}  // namespace port
#else
namespace port {
using NativeMutex = pthread_mutex_t;
using FileHandle = int;
inline constexpr FileHandle kNoFile = -1;
}  // namespace port
#endif

namespace port {

// Returns the milliseconds since an arbitrary point in time, never fewer than before.
ULONGLONG milliseconds();

void sleep(DWORD milliseconds);

// Returns a number that no other living thread of the process has; never 0.
DWORD currentThreadId();

// Sets the priority of the calling thread to normal. Has no effect where threads have no priority
// of their own.
void useNormalPriority();

inline constexpr std::uintptr_t kNoThread = static_cast<std::uintptr_t>(-1);

// Starts a thread that nobody waits for. Returns the system's number of it, or kNoThread if it
// cannot be created.
std::uintptr_t startThread(void (*procedure)(void*), void* argument);

// A thread that can be waited for. Destroying the object does not end the thread.
class Thread {
  public:
    Thread() = default;
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    ~Thread();

    // As startThread; the number is that of the thread for as long as the object exists. REQUIRES:
    // not called before.
    std::uintptr_t start(void (*procedure)(void*), void* argument);

    // Returns whether the thread has ended, with its thread-local objects destroyed, after waiting
    // for that for at most the time; the POSIX port waits for those destructors without a limit.
    // False if it was not started, or if it is the calling thread.
    bool waitForEnd(DWORD milliseconds) const;

    // As waitForEnd, without a limit; returns at once if the thread was not started. REQUIRES: not
    // called by the thread.
    void join() const;

  private:
    void* m_thread = nullptr;
};

// A flag that threads wait for. Any thread may call these functions.
class Event {
  public:
    // If the system cannot create it, every wait takes its whole time and returns false.
    explicit Event(bool isSet);
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event();

    void set();
    void reset();

    // Returns whether the event is set, after waiting for that for at most the time.
    bool wait(DWORD milliseconds) const;

  private:
    void* m_event;
};

// A lock that its owner may take again.
class RecursiveMutex {
  public:
    RecursiveMutex();
    RecursiveMutex(const RecursiveMutex&) = delete;
    RecursiveMutex& operator=(const RecursiveMutex&) = delete;
    ~RecursiveMutex();

    void lock();
    void unlock();

  private:
    NativeMutex m_mutex;
};

// A lock that its owner may take again, and that stays usable when a thread that holds it, or waits
// for it, is ended by force.
class RobustMutex {
  public:
    // Throws std::bad_alloc if the system cannot create it.
    RobustMutex();
    RobustMutex(const RobustMutex&) = delete;
    RobustMutex& operator=(const RobustMutex&) = delete;
    ~RobustMutex();

    void lock() const;
    void unlock() const;

  private:
    void* m_mutex;
};

// Sockets. The number of an error is one of WSAE... on every platform. A call is never interrupted
// by a signal, and none raises one.

// Must be called before any other socket function, and balanced by one stopSockets. Returns false
// on failure.
bool startSockets(WSADATA& data);
void stopSockets();

// Returns the number of the last error of the calling thread's socket functions.
int lastSocketError();

// Returns INVALID_SOCKET on failure.
SOCKET createSocket(int family, int type, int protocol);

// End both directions of a connection, or the own one. Return false on failure. A listening socket
// cannot be shut down.
bool shutDown(SOCKET socket);
bool finishSending(SOCKET socket);

// Makes an accept that waits for the listening socket fail, and every later one. Returns false
// where only closing the socket does so.
bool stopListening(SOCKET socket);

// Closes the socket. An accept that waits for it fails. Returns false on failure.
bool closeSocket(SOCKET socket);

bool bindSocket(SOCKET socket, const sockaddr_in& address);
bool listenOn(SOCKET socket, int queueSize);

// Returns INVALID_SOCKET on failure; otherwise `peer` receives the address of the other end.
SOCKET acceptFrom(SOCKET listener, sockaddr_in& peer);

// Returns false on failure. For a non-blocking socket whose connect is pending the error is
// WSAEWOULDBLOCK.
bool connectTo(SOCKET socket, const sockaddr_in& peer);

// Return the number of bytes, 0 for a receive after the peer has closed, -1 on failure. `flags` is
// 0 or MSG_PEEK. The error of a lost connection is reported by the first call after it; later
// receives return -1 again on Windows, but 0 elsewhere. So a caller ends at either, and none tells
// the one from the other after an error.
int send(SOCKET socket, const char* data, int length, int flags);
int receive(SOCKET socket, char* buffer, int length, int flags);
int sendTo(SOCKET socket, const char* data, int length, const sockaddr_in& peer);
int receiveFrom(SOCKET socket, char* buffer, int length, sockaddr_in& peer);

// What to wait for: bytes, a connection to accept or a closed peer; or room to send, and the end of
// a pending connect that has succeeded.
enum class Wanted { readable, writable };

// Returns 1 if the socket is ready within the time, 0 if not, -1 on failure.
int waitFor(SOCKET socket, Wanted wanted, long seconds, long microseconds);

enum class Readiness { pending, ready, failed };

// Returns whether a pending connect has ended, after waiting for that for at most the time.
Readiness waitForConnect(SOCKET socket, long microseconds);

// Return the addresses of the socket's own end and of the other one; all zero on failure.
sockaddr_in localAddress(SOCKET socket);
sockaddr_in peerAddress(SOCKET socket);

// Return 0, or -1 on failure. Options of level SOL_SOCKET; time-outs are an int in milliseconds,
// buffer sizes an int in bytes, and the pending error is a WSAE... number.
int getSocketOption(SOCKET socket, int option, void* value, int length);
int setSocketOption(SOCKET socket, int option, const void* value, int length);

// Sends small messages at once. Returns 0, or -1 on failure.
int setNoDelay(SOCKET socket);

bool setBlocking(SOCKET socket, bool isBlocking);

// Returns the number of bytes that can be received without waiting; 0 on failure, too.
unsigned long waitingBytes(SOCKET socket);

// Looks up the first IPv4 address of a host; an empty name is that of this host. For this host,
// that is the address of an adapter, unless none is in use. Returns false if the name has no
// address.
bool lookUpAddress(const char* name, in_addr& address);

// The result of lookUpName. tooLong: `size` bytes are not enough.
enum class LookUp { found, notFound, tooLong };

// Looks up the name of a host. `name` is changed only if it is found.
LookUp lookUpName(in_addr address, char* name, int size);

// Stores this host's name with a terminator. Returns false on failure.
bool localHostName(char* name, int size);

// Files. `path` is in UTF-16. Others may read the file at the same time. Returns kNoFile on
// failure.
FileHandle openFile(const WCHAR* path, DWORD access, DWORD disposition);
void closeFile(FileHandle file);
// Return the number of bytes, or -1 on failure.
int readFile(FileHandle file, void* buffer, DWORD count);
int writeFile(FileHandle file, const void* buffer, DWORD count);
// Return the new position, and the size, in bytes, cut to 32 bits; -1 on failure.
long seekFile(FileHandle file, long offset, DWORD origin);
long sizeOfFile(FileHandle file);

// Text. A code unit that is not part of a character becomes U+FFFD. Throw std::bad_alloc if out of
// memory.
std::string toUtf8(const WCHAR* text, std::size_t length);
std::basic_string<WCHAR> fromUtf8(const char* text, std::size_t length);

// Stores the text with a terminator in the encoding of the system's narrow functions. Returns false
// if `size` bytes are not enough.
bool toSystemText(const WCHAR* text, char* target, int size);

// The identity of the machine. These functions throw std::bad_alloc if out of memory.

// Returns the name of this computer in UTF-16; empty on failure.
std::basic_string<WCHAR> computerName();

// A network adapter.
struct Adapter {
    std::vector<BYTE> hardwareAddress;
    std::vector<std::string> addresses;  // IPv4, dotted text
};

// Returns the adapters in the order of the system; none on failure.
std::vector<Adapter> adapters();

// Returns a number of the installed system that stays the same: on Windows the serial number of its
// volume, elsewhere one that is computed from its machine-id file, or without that the number of
// its file system. 0 on failure.
DWORD systemSerial();

}  // namespace port
