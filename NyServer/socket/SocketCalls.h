// The socket calls that the client, the server and its workers have in common. They work on a plain
// SOCKET that the caller owns; INVALID_SOCKET is allowed everywhere and fails as the stack has it.
// Not exported.
#pragma once

#include <functional>
#include <optional>
#include <type_traits>

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/socket/CUT_DataSource.h"

namespace socketcalls {

// For sending and for receiving, unless the host sets another; in ms.
constexpr long kTimeOut = 30000;

// For files that are sent or received; in bytes.
constexpr int kFileBuffer = 4096;

// WSAStartup for version 2.0; `data` receives what the stack says about itself. Whoever gets true
// owes the stack one WSACleanup.
bool startWinsock(WSADATA& data);

sockaddr_in makeAddress(int family, unsigned int port, unsigned long networkAddress);

// False if the stack refused.
bool bindTo(SOCKET socket, const sockaddr_in& address);

// The address of the socket's own end; all zero if the stack cannot say.
sockaddr_in localAddress(SOCKET socket);

// Its port in host order.
int localPort(SOCKET socket);

// The address in dotted text; "" if the stack cannot say. The text lives until the thread's next
// call.
const char* dottedText(const sockaddr_in& address);

// The first address of a look-up in dotted text, or null if there is none; lives as dottedText.
const char* firstAddress(const hostent& host);

// The text behind the last '@' that is not the first character: a user and host pair stands for
// its host.
const char* hostPart(const char* name);

// Copies at most `size` - 1 characters and a terminator; nothing if `size` is below 1.
void copyText(const char* text, char* target, int size);

// Whether select reports exactly this socket within {seconds, microseconds}.
bool isReadable(SOCKET socket, long seconds, long microseconds);
bool isWritable(SOCKET socket, long seconds, long microseconds);

// Whether at least one byte can be read without waiting.
bool isDataWaiting(SOCKET socket);

// Closes the socket, after SD_BOTH if `shutDown`; both calls are made in any case. False if either
// failed.
bool closeSocket(SOCKET socket, bool shutDown = true);

// Sets SO_RCVTIMEO or SO_SNDTIMEO. The result of setsockopt: 0 or SOCKET_ERROR.
int setTimeOut(SOCKET socket, int option, int milliseconds);

// Mode 1 is non-blocking, 0 blocking. False if the stack refused.
bool setBlockingMode(SOCKET socket, int mode);

// Whether the error number of a failed select says that there is no socket to ask about.
bool isNoSocket(int error);

// What the error number of a failed peek says about the connection.
enum class PeekError {
    dead,        // broken; the mode of the socket is left alone
    reset,       // by the peer
    inProgress,  // another call is under way: taken for connected
    wouldBlock,  // nothing to read
    other,       // nothing about the connection
};
PeekError classifyPeekError(int error);

// Whether the peer still holds the connection, found by peeking one byte in non-blocking mode.
// `setMode` is called with 1 and then 0. The socket ends blocking, except when the error of the
// peek says that the connection is dead: then it stays non-blocking.
bool isConnected(SOCKET socket, const std::function<void(int)>& setMode);

// One recv, after `wait` if there is a time-out (in seconds; 0 or less: no wait). The count, 0 when
// the peer has closed or the wait gave non-zero, -1 on an error.
int receiveWithin(SOCKET socket, char* buffer, int length, int timeOut,
                  const std::function<int()>& wait);

// Adds to a count of bytes so that it wraps around when a transfer is longer than its type can say:
// a count that overflows otherwise has no defined value.
template <class Count>
constexpr void addWrapping(Count& total, int count) {
    using Unsigned = std::make_unsigned_t<Count>;
    total = static_cast<Count>(static_cast<Unsigned>(total) + static_cast<Unsigned>(count));
}

// Takes one piece of a data source. Nothing: go on; otherwise the result that ends the transfer.
using SendPiece = std::function<std::optional<int>(const char* data, int length)>;

// Reads the whole source in pieces of at most 255 bytes and gives each to `sendPiece`. The source
// is closed at the end. UTE_SUCCESS, UTE_DS_OPEN_FAILED, or what `sendPiece` ended with.
int sendFromSource(CUT_DataSource& source, const SendPiece& sendPiece);

// What a receive into a data source asks of its socket object, so that overrides take part.
struct ReceiveSteps {
    std::function<bool()> wait;  // false: nothing came within the time-out
    std::function<int(char* buffer, int length)> receive;
    std::function<bool(long bytesSoFar)> mayGoOn;
};

// Writes what arrives, in pieces of at most 256 bytes, until the peer closes or, with `maxBytes`
// above 0, until that many bytes have come. `total` grows by each piece (addWrapping). The source
// is closed at the end if it was opened. UTE_SUCCESS, UTE_INVALID_OPEN_TYPE (source untouched),
// UTE_DS_OPEN_FAILED, UTE_SOCK_TIMEOUT, UTE_SOCK_RECEIVE_ERROR, UTE_DS_WRITE_FAILED or UTE_ABORTED.
int receiveIntoSource(CUT_DataSource& target, OpenMsgType type, const ReceiveSteps& steps,
                      long maxBytes, long& total);

}  // namespace socketcalls
