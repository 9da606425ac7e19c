// What every request of NySeClientApp is made of. Internal.
#pragma once

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/ExceptionBoundary.h"
#include "NyServer/framing/NySeReply.h"

namespace clientexchange {

inline void writeArgument(NySeMemFile& message, LONG value) {
    message.writeInteger(value);
}
inline void writeArgument(NySeMemFile& message, const CString& text) {
    message.writeString(text);
}
inline void writeArgument(NySeMemFile& message, const NySeUser& user) {
    message.writeObject(user);
}
inline void writeArgument(NySeMemFile& message, const CObject& object) {
    message.writeObject(object);
}

}  // namespace clientexchange

template <class... Arguments>
bool NySeClientApp::requestUnder(NySe::SchemaType schema, NySe::ActionType action,
                                 const Arguments&... arguments) {
    bool sent = false;
    NySe::succeeds([&] {
        NySeMemFile message;
        message.startWriteAction(action, schema);
        (clientexchange::writeArgument(message, arguments), ...);
        message.stopWriting();
        sent = sendMemFile(message);
    });
    return sent;
}

template <class... Arguments>
bool NySeClientApp::request(NySe::ActionType action, const Arguments&... arguments) {
    return requestUnder(m_schema, action, arguments...);
}

// True when all of the scalar that comes next arrived at once; `value` may be partly overwritten
// otherwise.
template <class Scalar>
bool NySeClientApp::receiveScalarInto(Scalar& value) {
    return NySe::receiveScalar(value, [this](char* buffer, int length, int timeOut) {
        return receiveBinary(buffer, length, timeOut);
    });
}

// The scalar that comes next, or `failure`.
template <class Scalar>
Scalar NySeClientApp::receiveScalar(Scalar failure) {
    Scalar value;
    return receiveScalarInto(value) ? value : failure;
}

// The record in the message that comes next; null when none comes or it is of another class.
template <class Record>
std::shared_ptr<Record> NySeClientApp::receiveRecord() {
    CMemFile reply;
    if (!receiveMemfile(reply)) return nullptr;
    CObject* object = NySe::readReplyObject(reply, RUNTIME_CLASS(Record));
    return std::shared_ptr<Record>(static_cast<Record*>(object));
}

// Appends the records of the table that comes next; `into` stays as it was when none comes.
template <class Table>
void NySeClientApp::receiveTable(Table& into) {
    NySe::succeeds([&] {
        if (const auto table = receiveRecord<Table>()) transfertObject(*table, into);
    });
}
