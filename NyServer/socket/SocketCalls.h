// Socket calls shared by the client, the server and its workers. The caller owns the SOCKET.
// INVALID_SOCKET is allowed and fails as the system has it. Not exported.
#pragma once

#include <functional>
#include <optional>
#include <type_traits>

#include "NyServer/base/port/Port.h"
#include "NyServer/detail/UniqueHandle.h"
#include "NyServer/socket/CUT_DataSource.h"

namespace NySe {
using UniqueSocket = UniqueHandle<SOCKET, port::closeSocket, INVALID_SOCKET>;
}

namespace socketcalls {

// The time-out of sending and of receiving unless the host sets another, in ms.
constexpr long kTimeOut = 30000;

// The buffer size for files that are sent or received, in bytes.
constexpr int kFileBuffer = 4096;

sockaddr_in makeAddress(int family, unsigned int port, unsigned long networkAddress);

// Returns the port of the socket's own end in host order; 0 on failure.
int localPort(SOCKET socket);

// Returns the address as dotted text; "" on failure. Valid until the thread's next call.
const char* dottedText(const sockaddr_in& address);

// Returns what follows the last '@' of "user@host", or all of `name`. An '@' that is the first
// character does not count.
const char* hostPart(const char* name);

// Copies at most `size` - 1 characters and a terminator; nothing if `size` is below 1.
void copyText(const char* text, char* target, int size);

// Return whether the socket is ready within the time.
bool isReadable(SOCKET socket, long seconds, long microseconds);
bool isWritable(SOCKET socket, long seconds, long microseconds);

// Closes the socket, after a shutdown of both directions if `shutDown`. The socket is closed even
// if the shutdown fails. Returns false if either call failed.
bool closeSocket(SOCKET socket, bool shutDown = true);

// Sets SO_RCVTIMEO or SO_SNDTIMEO. Returns 0 or SOCKET_ERROR.
int setTimeOut(SOCKET socket, int option, int milliseconds);

// Mode 1 is non-blocking, 0 blocking. Returns false on failure.
bool setBlockingMode(SOCKET socket, int mode);

// Returns whether the error number of a failed select means that the handle is no socket.
bool isNoSocket(int error);

// What the error number of a failed peek says about the connection.
enum class PeekError {
    dead,        // broken; the mode of the socket is not changed
    reset,       // by the peer
    inProgress,  // another call is in progress: counts as connected
    wouldBlock,  // nothing to read
    other,       // unrelated to the connection
};
PeekError classifyPeekError(int error);

// Returns whether the peer keeps the connection open, found by peeking at one byte in non-blocking
// mode. Calls `setMode` with 1 and then 0. The socket is blocking afterwards, except if the error
// of the peek means that the connection is broken: then it stays non-blocking.
bool isConnected(SOCKET socket, const std::function<void(int)>& setMode);

// Calls recv once, after `wait` if `timeOut` (in seconds) is above 0. Returns the number of bytes
// received; 0 if the peer has closed or `wait` returned non-zero; -1 on failure.
int receiveWithin(SOCKET socket, char* buffer, int length, int timeOut,
                  const std::function<int()>& wait);

// Adds to a count of bytes, with wrap-around: a signed overflow would be undefined.
template <class Count>
constexpr void addWrapping(Count& total, int count) {
    using Unsigned = std::make_unsigned_t<Count>;
    total = static_cast<Count>(static_cast<Unsigned>(total) + static_cast<Unsigned>(count));
}

// Sends one piece of a data source. Returns the result of the transfer to end it, else nothing.
using SendPiece = std::function<std::optional<int>(const char* data, int length)>;

// Opens the source, reads all of it in pieces of at most 255 bytes, passes each to `sendPiece`, and
// closes it. Returns UTE_SUCCESS, UTE_DS_OPEN_FAILED, or what `sendPiece` returned.
int sendFromSource(CUT_DataSource& source, const SendPiece& sendPiece);

// The operations of a receive into a data source. The socket object supplies them, so that
// overrides of its virtual functions take effect.
struct ReceiveSteps {
    std::function<bool()> wait;  // false: timed out
    std::function<int(char* buffer, int length)> receive;
    std::function<bool(long bytesSoFar)> mayGoOn;
};

// Opens `target`, writes what arrives in pieces of at most 256 bytes, and closes it. Ends when the
// peer closes or, with `maxBytes` above 0, after that many bytes. Adds each piece to `total`
// (addWrapping). Returns UTE_SUCCESS, UTE_INVALID_OPEN_TYPE (target not used), UTE_DS_OPEN_FAILED,
// UTE_SOCK_TIMEOUT, UTE_SOCK_RECEIVE_ERROR, UTE_DS_WRITE_FAILED or UTE_ABORTED.
int receiveIntoSource(CUT_DataSource& target, OpenMsgType type, const ReceiveSteps& steps,
                      long maxBytes, long& total);

}  // namespace socketcalls
