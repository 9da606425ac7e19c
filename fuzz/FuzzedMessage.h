// A message that is decoded and encoded again.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "fuzz/Require.h"
#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUser.h"
#include "tests/support/ArchiveBytes.h"

inline void copyArgument(char kind, CArchive& from, NySeMemFile& to) {
    if (kind == 'i') {
        LONG number;
        from >> number;
        to.writeInteger(number);
    } else if (kind == 's') {
        CString text;
        from >> text;
        to.writeString(text);
    } else {
        const CRuntimeClass* const wanted =
            kind == 'u' ? RUNTIME_CLASS(NySeUser) : RUNTIME_CLASS(NySeMessage);
        const std::unique_ptr<CObject> object(from.ReadObject(wanted));
        if (object == nullptr) AfxThrowArchiveException(CArchiveException::badClass);
        to.writeObject(*object);
    }
}

// Ends the program unless the object, written as a reply and read again, writes the same bytes.
inline void requireReads(const CObject& object, const CRuntimeClass* expected) {
    NySeMemFile reply;
    reply.startWrite(NySe::schema2015);
    reply.writeObject(object);
    reply.stopWriting();
    reply.Seek(NySe::kLengthBytes, CFile::begin);
    const std::unique_ptr<CObject> same(NySe::readReplyObject(reply, expected));
    require(same != nullptr, "what was written is read");
    NySeMemFile again;
    again.startWrite(NySe::schema2015);
    again.writeObject(*same);
    again.stopWriting();
    require(contentsOf(again) == contentsOf(reply), "and it is what was written");
}

// Reads the arguments after the header of `message`: i an integer, s a string, u a user, m a
// message record. Returns a message with these arguments; empty if they are missing.
inline Bytes copyMessage(const Bytes& message, std::string_view arguments) {
    NySeMemFile from;
    from.Write(message.data(), static_cast<UINT>(message.size()));
    from.Seek(NySe::kActionHeaderBytes, CFile::begin);
    from.startReading();
    NySeMemFile to;
    to.startWriteAction(NySe::actionLock, NySe::schema2015);
    const bool read = NySe::succeeds([&] {
        for (const char kind : arguments) copyArgument(kind, *from.getArchive(), to);
    });
    to.stopWriting();
    return read ? contentsOf(to) : Bytes();
}
