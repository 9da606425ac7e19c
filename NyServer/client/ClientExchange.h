// Sends the requests of NySeClientApp and receives their replies. Internal.
#pragma once

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/detail/ExceptionBoundary.h"
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

// Receives a scalar. Returns true if all of it arrived at once; `value` may be partly overwritten
// otherwise.
template <class Scalar>
bool NySeClientApp::receiveScalarInto(Scalar& value) {
    return NySe::receiveScalar(value, [this](char* buffer, int length, int timeOut) {
        return receiveBinary(buffer, length, timeOut);
    });
}

// Receives a scalar. Returns it, or `failure`.
template <class Scalar>
Scalar NySeClientApp::receiveScalar(Scalar failure) {
    Scalar value;
    return receiveScalarInto(value) ? value : failure;
}

// Receives a message. Returns the record in it; null if none arrives or it is of another class.
template <class Record>
std::shared_ptr<Record> NySeClientApp::receiveRecord() {
    CMemFile reply;
    if (!receiveMemfile(reply)) return nullptr;
    CObject* object = NySe::readReplyObject(reply, RUNTIME_CLASS(Record));
    return std::shared_ptr<Record>(static_cast<Record*>(object));
}

// Receives a table and appends its records to `into`, which is unchanged if none arrives.
template <class Table>
void NySeClientApp::receiveTable(Table& into) {
    NySe::succeeds([&] {
        if (const auto table = receiveRecord<Table>()) transfertObject(*table, into);
    });
}
