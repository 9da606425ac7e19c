// Whole messages against their golden bytes, made from the records that they hold.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

#include "NyServer/framing/NySeMemFile.h"
#include "NyServer/records/NySeUser.h"
#include "tests/records/GoldenRecords.h"
#include "tests/support/ArchiveBytes.h"

namespace {

using Write = std::function<void(NySeMemFile&)>;

Write integer(LONG value) {
    return [=](NySeMemFile& file) { file.writeInteger(value); };
}
Write string(const CString& text) {
    return [=](NySeMemFile& file) { file.writeString(text); };
}
// The record of the golden bytes of that name; a user as one with a schema of its own.
Write object(const std::string& name) {
    return [name](NySeMemFile& file) {
        const std::unique_ptr<CObject> record = makeGolden(golden(name));
        const auto* const user = DYNAMIC_DOWNCAST(NySeUser, record.get());
        return user != nullptr ? file.writeObject(*user) : file.writeObject(*record);
    };
}
template <class... More>
Write inTurn(const Write& first, const More&... more) {
    return [=](NySeMemFile& file) { first(file), (more(file), ...); };
}

struct Message {
    NySe::ActionType action;  // noAction: a reply
    Write write;
};

// Requests with each kind of arguments, and every reply and notification.
const std::map<std::string, Message>& messages() {
    const Write nothing = [](NySeMemFile&) {};
    const Write name = string(_T("part/42"));
    const Write user = object("user-plain-object");
    const Write saved = object("message-plain");
    static const std::map<std::string, Message> all = {
        {"request-isAlive", {NySe::actionIsAlive, nothing}},
        {"request-openConnection", {NySe::actionOpenConnection, string(_T("Server=a;Db=b"))}},
        {"request-closeConnection", {NySe::actionCloseConnection, integer(3)}},
        {"request-lock", {NySe::actionLock, inTurn(name, integer(0x18))}},
        {"request-sendConnectionData",
         {NySe::actionSendConnectionData, inTurn(integer(1), integer(2), saved)}},
        {"request-sendUserData", {NySe::actionSendUserData, inTurn(user, saved)}},
        {"request-sendAllUserData", {NySe::actionSendAllUserData, saved}},
        {"request-getPortClient", {NySe::actionGetPortClient, user}},
        {"reply-users", {NySe::noAction, object("users-two")}},
        {"reply-user", {NySe::noAction, user}},
        {"reply-locks", {NySe::noAction, object("locks-two")}},
        {"reply-connections", {NySe::noAction, object("connections-two-open-three-free")}},
        {"reply-string", {NySe::noAction, string(_T("00-1a-2b-3c-4d-5e"))}},
        {"reply-empty", {NySe::noAction, nothing}},
        {"notification-50-with-message", {NySe::actionFirstNotification, saved}},
    };
    return all;
}

TEST(GoldenMessages, AreWrittenAsTheirBytes) {
    for (const auto& [name, message] : messages()) {
        NySeMemFile file;
        if (message.action == NySe::noAction) {
            file.startWrite(NySe::schema2015);
        } else {
            file.startWriteAction(message.action, NySe::schema2015);
        }
        message.write(file);
        file.stopWriting();
        EXPECT_EQ(toHex(golden(name).bytes), toHex(contentsOf(file))) << name;
    }
}

TEST(GoldenMessages, IncludeEveryReplyAndNotification) {
    for (const char* kind : {"reply-", "notification-"}) {
        for (const Golden& one : goldenNamed(kind)) EXPECT_TRUE(messages().contains(one.name));
    }
}

// The payload of a received message is in a file at the start.
TEST(GoldenMessages, ObjectsOfRepliesAreReadBack) {
    for (const char* name : {"reply-users", "reply-user", "reply-locks", "reply-connections"}) {
        const Bytes& whole = golden(name).bytes;
        const Bytes payload(whole.begin() + NySe::kLengthBytes, whole.end());
        NySeMemFile file;
        file.Write(payload.data(), static_cast<UINT>(payload.size()));
        file.SeekToBegin();
        file.startReading();
        const std::unique_ptr<CObject> read(file.getArchive()->ReadObject(nullptr));
        EXPECT_EQ(0u, file.getArchive()->BytesLeft()) << name;
        EXPECT_EQ(toHex(payload), toHex(stored([&](CArchive& ar) { ar << read.get(); }))) << name;
    }
}

}  // namespace
