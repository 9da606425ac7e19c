// Whole messages against their golden bytes: what a request writes, what a reader finds.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "NyServer/framing/NySeMemFile.h"
#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Golden.h"
#include "tests/support/Utf8.h"

namespace {

using NySe::ActionType;
using NySe::schema2015;

NySeUser anna() {
    return makeSample<NySeUser>();
}

NySeUser bob() {
    NySeUser user = anna();
    user.setPort(40124);
    user.setStrUserName(_T("bob"));
    user.setSessionNumber(8);
    return user;
}

const CString kConnection = _T("Server=a;Db=b");
const CString kLock = _T("part/42");

NySeMessage saved() {
    return makeSample<NySeMessage>();
}

using Write = std::function<void(NySeMemFile&)>;
struct Request {
    ActionType action;
    Write write;
};

const std::map<std::string, Request>& requests() {
    const auto nothing = [](NySeMemFile&) {};
    static const std::map<std::string, Request> all = {
        {"isAlive", {NySe::actionIsAlive, nothing}},
        {"getConnection", {NySe::actionGetConnection, nothing}},
        {"openConnection",
         {NySe::actionOpenConnection, [](auto& file) { file.writeString(kConnection); }}},
        {"closeConnection",
         {NySe::actionCloseConnection, [](auto& file) { file.writeInteger(3); }}},
        {"isOpenConnectionBy",
         {NySe::actionIsOpenConnectionBy, [](auto& file) { file.writeInteger(3); }}},
        {"getLock", {NySe::actionGetLock, nothing}},
        {"lock",
         {NySe::actionLock,
          [](auto& file) {
              file.writeString(kLock);
              file.writeInteger(0x18);
          }}},
        {"unLock", {NySe::actionUnLock, [](auto& file) { file.writeString(kLock); }}},
        {"isLockBy",
         {NySe::actionIsLockBy,
          [](auto& file) {
              file.writeString(kLock);
              file.writeInteger(0);
          }}},
        {"getAllUser", {NySe::actionGetAllUser, nothing}},
        {"getAnotherPort", {NySe::actionGetAnotherPort, nothing}},
        {"sendConnectionData",
         {NySe::actionSendConnectionData,
          [](auto& file) {
              file.writeInteger(1);
              file.writeInteger(2);
              file.writeObject(saved());
          }}},
        {"sendUserData",
         {NySe::actionSendUserData,
          [](auto& file) {
              file.writeObject(anna());
              file.writeObject(saved());
          }}},
        {"sendAllUserData",
         {NySe::actionSendAllUserData, [](auto& file) { file.writeObject(saved()); }}},
        {"updateUserName",
         {NySe::actionUpdateUserName, [](auto& file) { file.writeString(_T("Anna")); }}},
        {"shutDownServer", {NySe::actionShutDownServer, nothing}},
        {"getCurrentTime", {NySe::actionGetCurrentTime, nothing}},
        {"verifyCoherancy", {NySe::actionVerifyCoherancy, nothing}},
        {"getMachineIdentifiant", {NySe::actionGetMachineIdentifiant, nothing}},
        {"getEventListFromEventViewer",
         {NySe::actionGetEventListFromEventViewer, [](auto& file) { file.writeInteger(25); }}},
        {"getPortClient",
         {NySe::actionGetPortClient, [](auto& file) { file.writeObject(anna()); }}},
        {"initializeSchema",
         {NySe::actionInitializeSchema, [](auto& file) { file.writeInteger(2015); }}},
    };
    return all;
}

// These two travel as their bare code.
const std::map<std::string, ActionType> kBare = {{"getVersion", NySe::actionGetVersion},
                                                 {"disconnect", NySe::actionDisconnect}};

std::string messageBytes(const Request& request) {
    NySeMemFile file;
    file.startWriteAction(request.action, schema2015);
    request.write(file);
    file.stopWriting();
    return toHex(contentsOf(file));
}

TEST(GoldenMessages, RequestsAreWrittenAsTheirBytes) {
    for (const auto& [call, request] : requests()) {
        EXPECT_EQ(toHex(golden("request-" + call).bytes), messageBytes(request)) << call;
    }
}

TEST(GoldenMessages, BareCodesAreTheirActions) {
    for (const auto& [call, action] : kBare) {
        const LONG code = action;
        const auto* bytes = reinterpret_cast<const unsigned char*>(&code);
        EXPECT_EQ(toHex(golden("request-" + call).bytes), toHex(Bytes(bytes, bytes + 4)));
    }
}

TEST(GoldenMessages, NoRequestIsLeftOut) {
    for (const Golden& vector : goldenNamed("request-")) {
        const std::string call = vector.name.substr(8);
        EXPECT_EQ(1u, requests().count(call) + kBare.count(call)) << call;
    }
}

TEST(GoldenMessages, ActionAndLengthFrameTheRest) {
    for (const auto& [call, request] : requests()) {
        Loading header(golden("request-" + call).bytes);
        LONG action = 0;
        LONG length = 0;
        header.ar >> action >> length;
        EXPECT_EQ(request.action, action);
        EXPECT_EQ(static_cast<ULONGLONG>(length), header.ar.BytesLeft());
    }
}

// A message as the receiver has it: its payload in a file at the start.
class Received {
  public:
    Received(const std::string& name, size_t headerBytes) {
        const Bytes& whole = golden(name).bytes;
        m_file.Write(whole.data() + headerBytes, static_cast<UINT>(whole.size() - headerBytes));
        m_file.SeekToBegin();
        m_file.startReading();
    }
    CArchive& archive() { return *m_file.getArchive(); }
    template <class Record>
    std::unique_ptr<Record> readRecord() {
        return std::unique_ptr<Record>(
            static_cast<Record*>(archive().ReadObject(RUNTIME_CLASS(Record))));
    }

  private:
    NySeMemFile m_file;
};

TEST(GoldenMessages, ArgumentsOfARequestAreReadBack) {
    Received message("request-lock", NySe::kActionHeaderBytes);
    CString name;
    DWORD mode = 0;
    message.archive() >> name >> mode;
    EXPECT_EQ(kLock, name);
    EXPECT_EQ(0x18u, mode);
    EXPECT_EQ(0u, message.archive().BytesLeft());
}

TEST(GoldenMessages, UserOfARequestIsReadBack) {
    Received message("request-getPortClient", NySe::kActionHeaderBytes);
    const auto user = message.readRecord<NySeUser>();
    EXPECT_EQ(CString("Anna"), user->getStrUserName());
    EXPECT_EQ(3, user->getSoftType());
}

std::string replyBytes(const Write& write) {
    NySeMemFile file;
    file.startWrite(schema2015);
    write(file);
    file.stopWriting();
    return toHex(contentsOf(file));
}

TEST(GoldenMessages, UsersReply) {
    NySeUserPtrArray users;
    users.add(bob().clone());
    users.add(anna().clone());
    EXPECT_EQ(toHex(golden("reply-users").bytes),
              replyBytes([&](auto& file) { file.writeObject(users); }));
    const auto read = Received("reply-users", NySe::kLengthBytes).readRecord<NySeUserPtrArray>();
    ASSERT_EQ(2, read->GetSize());
    EXPECT_EQ(CString("bob"), read->GetAt(1)->getStrUserName());
}

TEST(GoldenMessages, UserReply) {
    EXPECT_EQ(toHex(golden("reply-user").bytes),
              replyBytes([](auto& file) { file.writeObject(anna()); }));
    const auto read = Received("reply-user", NySe::kLengthBytes).readRecord<NySeUser>();
    EXPECT_EQ(40123, read->getPort());
}

TEST(GoldenMessages, LocksReply) {
    NySeLockArray locks;
    NySeUser nine;
    nine.setSessionNumber(9);
    locks.addLock(_T("part/42"), anna(), 24);
    auto* holder = new NySeSessionLock;
    holder->setSessionNumber(1);
    holder->setLockState(1);
    locks.GetAt(0)->getHolders().add(holder);
    locks.addLock(_T("Part/43"), nine, 16);
    EXPECT_EQ(toHex(golden("reply-locks").bytes),
              replyBytes([&](auto& file) { file.writeObject(locks); }));
    const auto read = Received("reply-locks", NySe::kLengthBytes).readRecord<NySeLockArray>();
    ASSERT_EQ(2, read->GetSize());
    EXPECT_EQ(7, read->GetAt(0)->getHolders().GetAt(1)->getSessionNumber());
}

TEST(GoldenMessages, ConnectionsReply) {
    NySeConnectionArray table;
    for (const WCHAR name : {'A', 'B', 'C', 'D', 'E', 'A', 'C'})
        table.openConnection(CString(name));
    for (const LONG id : {4, 3, 1}) table.closeConnection(id);
    EXPECT_EQ(toHex(golden("reply-connections").bytes),
              replyBytes([&](auto& file) { file.writeObject(table); }));
    const auto read =
        Received("reply-connections", NySe::kLengthBytes).readRecord<NySeConnectionArray>();
    EXPECT_EQ(1, read->openConnection(_T("x")));
}

TEST(GoldenMessages, NotificationWithMessage) {
    NySeMemFile file;
    file.startWriteAction(NySe::actionFirstNotification, schema2015);
    file.writeObject(saved());
    file.stopWriting();
    EXPECT_EQ(toHex(golden("notification-50-with-message").bytes), toHex(contentsOf(file)));
    const auto read = Received("notification-50-with-message", NySe::kActionHeaderBytes)
                          .readRecord<NySeMessage>();
    EXPECT_EQ(CString("saved"), read->getStrMessage());
}

TEST(GoldenMessages, NoReplyOrNotificationIsLeftOut) {
    EXPECT_EQ(6u, goldenNamed("reply-").size());
    EXPECT_EQ(1u, goldenNamed("notification-").size());
}

TEST(GoldenMessages, StringReply) {
    const CString text = _T("00-1a-2b-3c-4d-5e");
    EXPECT_EQ(toHex(golden("reply-string").bytes),
              replyBytes([&](auto& file) { file.writeString(text); }));
    CString read;
    Received("reply-string", NySe::kLengthBytes).archive() >> read;
    EXPECT_EQ(text, read);
}

TEST(GoldenMessages, EmptyReply) {
    EXPECT_EQ(toHex(golden("reply-empty").bytes), replyBytes([](auto&) {}));
}

}  // namespace
