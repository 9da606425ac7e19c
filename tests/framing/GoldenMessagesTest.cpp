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
    Write write = [](NySeMemFile&) {};
};

Write integer(LONG value) {
    return [=](NySeMemFile& file) { file.writeInteger(value); };
}
Write string(const CString& text) {
    return [=](NySeMemFile& file) { file.writeString(text); };
}
template <class Record>
Write object(const Record& record) {
    return [=](NySeMemFile& file) { file.writeObject(record); };
}
template <class... More>
Write inTurn(const Write& first, const More&... more) {
    return [=](NySeMemFile& file) { first(file), (more(file), ...); };
}

// One of each kind of arguments.
const std::map<std::string, Request>& requests() {
    static const std::map<std::string, Request> all = {
        {"isAlive", {NySe::actionIsAlive}},
        {"openConnection", {NySe::actionOpenConnection, string(kConnection)}},
        {"closeConnection", {NySe::actionCloseConnection, integer(3)}},
        {"lock", {NySe::actionLock, inTurn(string(kLock), integer(0x18))}},
        {"sendConnectionData",
         {NySe::actionSendConnectionData, inTurn(integer(1), integer(2), object(saved()))}},
        {"sendUserData", {NySe::actionSendUserData, inTurn(object(anna()), object(saved()))}},
        {"sendAllUserData", {NySe::actionSendAllUserData, object(saved())}},
        {"getPortClient", {NySe::actionGetPortClient, object(anna())}},
    };
    return all;
}

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

// Expects that a reply is written as the golden bytes of that name.
void expectReply(const std::string& name, const Write& write) {
    NySeMemFile file;
    file.startWrite(schema2015);
    write(file);
    file.stopWriting();
    EXPECT_EQ(toHex(golden(name).bytes), toHex(contentsOf(file)));
}

// The same of a reply with a record, which is then read from them.
template <class Record>
std::unique_ptr<Record> readBack(const std::string& name, const Record& record) {
    expectReply(name, [&](auto& file) { file.writeObject(record); });
    return Received(name, NySe::kLengthBytes).readRecord<Record>();
}

TEST(GoldenMessages, UsersReply) {
    NySeUserPtrArray users;
    users.add(bob().clone());
    users.add(anna().clone());
    const auto read = readBack("reply-users", users);
    ASSERT_EQ(2, read->GetSize());
    EXPECT_EQ(CString("bob"), read->GetAt(1)->getStrUserName());
}

TEST(GoldenMessages, UserReply) {
    EXPECT_EQ(40123, readBack("reply-user", anna())->getPort());
}

TEST(GoldenMessages, LocksReply) {
    NySeLockArray locks;
    locks.addLock(kLock, anna(), 24);
    locks.GetAt(0)->getHolders().add(makeSessionLock(1, 1).clone());
    locks.addLock(_T("Part/43"), makeUser(CString(), 9), 16);
    const auto read = readBack("reply-locks", locks);
    ASSERT_EQ(2, read->GetSize());
    EXPECT_EQ(7, read->GetAt(0)->getHolders().GetAt(1)->getSessionNumber());
}

TEST(GoldenMessages, ConnectionsReply) {
    NySeConnectionArray table;
    for (const WCHAR name : {'A', 'B', 'C', 'D', 'E', 'A', 'C'})
        table.openConnection(CString(name));
    for (const LONG id : {4, 3, 1}) table.closeConnection(id);
    EXPECT_EQ(1, readBack("reply-connections", table)->openConnection(_T("x")));
}

TEST(GoldenMessages, StringReplyAndTheEmptyOne) {
    const CString text = _T("00-1a-2b-3c-4d-5e");
    expectReply("reply-string", [&](auto& file) { file.writeString(text); });
    CString read;
    Received("reply-string", NySe::kLengthBytes).archive() >> read;
    EXPECT_EQ(text, read);
    expectReply("reply-empty", [](auto&) {});
}

TEST(GoldenMessages, NotificationWithMessage) {
    const std::string name = "notification-50-with-message";
    const auto write = [](auto& file) { file.writeObject(saved()); };
    EXPECT_EQ(toHex(golden(name).bytes), messageBytes({NySe::actionFirstNotification, write}));
    const auto read = Received(name, NySe::kActionHeaderBytes).readRecord<NySeMessage>();
    EXPECT_EQ(CString("saved"), read->getStrMessage());
}

TEST(GoldenMessages, NoReplyOrNotificationIsLeftOut) {
    EXPECT_EQ(6u, goldenNamed("reply-").size());
    EXPECT_EQ(1u, goldenNamed("notification-").size());
}

}  // namespace
