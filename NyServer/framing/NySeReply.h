// How a reply is taken apart once its bytes are there. Nothing here touches a socket.
#pragma once

#include <algorithm>

#include "NyServer/framing/NySeMemFile.h"

namespace NySe {

// Announced lengths are believed in steps of this many bytes: memory is asked for only as bytes
// arrive.
inline constexpr LONG kReceiveStep = 64 * 1024;

// Fills `into` with `length` bytes from `receive(char* buffer, int length)`, which returns the
// number of bytes that it put there, less than 1 when no more will come. `into` ends at its start,
// with what arrived. Returns the number of bytes that are missing; a length of 0 or less misses
// none.
template <class Receive>
LONG receiveBody(CMemFile& into, LONG length, Receive receive) {
    LONG missing = std::max<LONG>(length, 0);
    while (missing > 0) {
        void* room = nullptr;
        void* end = nullptr;
        into.GetBufferPtr(CFile::bufferWrite, static_cast<UINT>(std::min(missing, kReceiveStep)),
                          &room, &end);
        const LONG fits = static_cast<LONG>(static_cast<char*>(end) - static_cast<char*>(room));
        const int received = receive(static_cast<char*>(room), std::min(missing, fits));
        if (received < 1) break;
        into.GetBufferPtr(CFile::bufferCommit, static_cast<UINT>(received));
        missing -= received;
    }
    into.SeekToBegin();
    return missing;
}

// How long what comes next may take, in seconds.
inline constexpr int kScalarTimeOut = 15;
inline constexpr int kChunkTimeOut = 30;

// Reads a scalar by one `receive(char* buffer, int length, int timeOut)`, which is as the one of
// receiveBody and waits for at most `timeOut` seconds. True when that one read gave all of it;
// `value` may be partly overwritten otherwise.
template <class Scalar, class Receive>
bool receiveScalar(Scalar& value, Receive receive) {
    const int size = sizeof value;
    return receive(reinterpret_cast<char*>(&value), size, kScalarTimeOut) == size;
}

// Fills `value` piece by piece from `receive`, which is as the one of receiveBody. The number of
// bytes that came; when the first receive gave none, its result, with `value` as that receive left
// it.
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

// Reads a length and that many bytes by the same `receive`. True when all came; `into` ends at its
// start, with what came of the bytes.
template <class Receive>
bool receiveMessage(CMemFile& into, Receive receive) {
    LONG length = 0;
    if (!receiveScalar(length, receive)) return false;
    const LONG missing = receiveBody(into, length, [&receive](char* buffer, int count) {
        return receive(buffer, count, kChunkTimeOut);
    });
    return missing == 0;
}

// The one object in `reply`, new and owned by the caller; null when the bytes are no object or one
// of another class than `expected`. expected null: any archivable class, a host's own too, except
// the class library's CObArray itself, whose elements nobody would own.
NYSERVER_API CObject* readReplyObject(CMemFile& reply, const CRuntimeClass* expected);

// The one string in `reply`. When the bytes are no string, `text` stays as it was and false is
// returned.
NYSERVER_API bool readReplyString(NySeMemFile& reply, CString& text);

}  // namespace NySe
