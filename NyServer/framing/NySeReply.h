// Reads replies. Nothing here uses a socket: the bytes come from a `receive` function.
#pragma once

#include <algorithm>

#include "NyServer/framing/NySeMemFile.h"

namespace NySe {

// Memory for an announced length is allocated in steps of this many bytes, as the bytes arrive.
inline constexpr LONG kReceiveStep = 64 * 1024;

// Fills `into` with `length` bytes from `receive(char* buffer, int length)`, which returns the
// number of bytes stored, or less than 1 at the end of the data. Afterwards `into` holds what
// arrived and its position is 0. Returns the number of missing bytes; 0 for a length of 0 or less.
template <class Receive>
LONG receiveBody(CMemFile& into, LONG length, Receive receive) {
    LONG missing = std::max<LONG>(length, 0);
    while (missing > 0) {
        void* space = nullptr;
        void* end = nullptr;
        into.GetBufferPtr(CFile::bufferWrite, static_cast<UINT>(std::min(missing, kReceiveStep)),
                          &space, &end);
        const LONG fits = static_cast<LONG>(static_cast<char*>(end) - static_cast<char*>(space));
        const int received = receive(static_cast<char*>(space), std::min(missing, fits));
        if (received < 1) break;
        into.GetBufferPtr(CFile::bufferCommit, static_cast<UINT>(received));
        missing -= received;
    }
    into.SeekToBegin();
    return missing;
}

// Time-outs in seconds: for a scalar, and for each piece of a message.
inline constexpr int kScalarTimeOut = 15;
inline constexpr int kChunkTimeOut = 30;

// Reads a scalar by one call of `receive(char* buffer, int length, int timeOut)`, which is like
// that of receiveBody and waits for at most `timeOut` seconds. Returns true if that call returned
// all of it; `value` may be partly overwritten otherwise.
template <class Scalar, class Receive>
bool receiveScalar(Scalar& value, Receive receive) {
    const int size = sizeof value;
    return receive(reinterpret_cast<char*>(&value), size, kScalarTimeOut) == size;
}

// Fills `value` in pieces from `receive`, which is like that of receiveBody. Returns the number of
// bytes received; if the first call received none, its result, with `value` as that call left it.
template <class Value, class Receive>
int collect(Value& value, Receive receive) {
    constexpr int size = sizeof value;
    char* const bytes = reinterpret_cast<char*>(&value);
    int received = receive(bytes, size);
    while (received > 0 && received < size) {
        const int more = receive(bytes + received, size - received);
        if (more < 1) break;
        received += more;
    }
    return received;
}

// Reads a length and that many bytes from a `receive` like that of receiveScalar. Returns true if
// all arrived. Afterwards `into` holds the bytes that arrived and its position is 0.
template <class Receive>
bool receiveMessage(CMemFile& into, Receive receive) {
    LONG length = 0;
    if (!receiveScalar(length, receive)) return false;
    const LONG missing = receiveBody(into, length, [&receive](char* buffer, int count) {
        return receive(buffer, count, kChunkTimeOut);
    });
    return missing == 0;
}

// Returns the object in `reply`, owned by the caller; null if the bytes are not an object of class
// `expected`. If `expected` is null, every archivable class is accepted, including a host's own,
// except the class library's CObArray, whose elements nobody would own.
NYSERVER_API CObject* readReplyObject(CMemFile& reply, const CRuntimeClass* expected);

// Reads the string in `reply` into `text`. If the bytes are not a string, returns false and leaves
// `text` unchanged.
NYSERVER_API bool readReplyString(NySeMemFile& reply, CString& text);

}  // namespace NySe
