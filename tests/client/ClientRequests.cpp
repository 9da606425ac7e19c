#include "tests/client/ClientRequests.h"

#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeMessage.h"
#include "tests/client/ClientTest.h"

namespace {

using ::testing::PrintToString;
using Requests = std::vector<ClientRequest>;

template <class Value>
using Values = std::vector<std::pair<std::string, Value>>;

std::string goldenRequest(const std::string& name) {
    return goldenWire("request-" + name);
}

// A scalar answers, which has to come at once.
template <class Value, class Call>
ClientRequest scalarRequest(const char* name, Call call, Value failure,
                            const Values<Value>& values) {
    ClientRequest row{
        name,
        goldenRequest(name),
        [call](NySeClientApp& client) { return PrintToString(static_cast<Value>(call(client))); },
        PrintToString(failure),
        {}};
    for (const auto& [bytes, value] : values)
        row.answers.push_back({{bytes}, PrintToString(value)});
    const std::string good = values.front().first;
    for (size_t cut = 0; cut < good.size(); ++cut) {
        row.broken.push_back({{good.substr(0, cut)}, row.failure});
        if (cut > 0) row.pieces.push_back({{good.substr(0, cut), good.substr(cut)}, row.failure});
    }
    return row;
}

Values<LONG> numbersAsTheyAre() {
    Values<LONG> values;
    for (const LONG number : {1, 0, -1, 40125, INT32_MAX, INT32_MIN})
        values.push_back({wireOf(number), number});
    return values;
}

// A byte says yes when it is not zero.
Values<bool> yesOrNo() {
    return {{wire("01"), true}, {wire("00"), false}, {wire("02"), true}, {wire("FF"), true}};
}

// The scalars that need more than the answer's value.
Requests sessionRequests() {
    const auto schema = [](NySeClientApp& client) {
        client.initializeSchema();
        return client.getSchemaType();
    };
    const std::string shortSchema = wireOf<LONG>(0x01020304).substr(0, 3);
    return {{"initializeSchema",
             goldenRequest("initializeSchema"),
             [schema](NySeClientApp& client) { return PrintToString(LONG(schema(client))); },
             "0",
             {{{wireOf<LONG>(2010)}, "2010"}},
             {{{""}, "0"}, {{shortSchema}, PrintToString(0x020304)}}},
            scalarRequest<bool>("isAlive", std::mem_fn(&NySeClientApp::isAlive), false,
                                {{wireOf<LONG>(512), true},
                                 {wireOf<LONG>(511), false},
                                 {wireOf<LONG>(0), false},
                                 {wireOf<LONG>(-512), false},
                                 {wireOf<LONG>(0x01000200), false}}),
            scalarRequest<double>("getVersion", std::mem_fn(&NySeClientApp::getVersion), -1.0,
                                  {{wireOf(7.25), 7.25}})};
}

Requests scalarRequests() {
    return {scalarRequest(
                "lock", [](NySeClientApp& client) { return client.lock(_T("part/42"), 0x18); },
                false, yesOrNo()),
            scalarRequest(
                "updateUserName",
                [](NySeClientApp& client) { return client.updateUserName(_T("Anna")); }, false,
                yesOrNo()),
            scalarRequest(
                "openConnection",
                [](NySeClientApp& client) { return client.openConnection(_T("Server=a;Db=b")); },
                LONG{-1}, numbersAsTheyAre()),
            scalarRequest("getAnotherPort", std::mem_fn(&NySeClientApp::getAnotherPort), LONG{-1},
                          numbersAsTheyAre()),
            scalarRequest("getCurrentTime", std::mem_fn(&NySeClientApp::getCurrentTime), LONG{0},
                          numbersAsTheyAre())};
}

// The start of the object in a message, with its class.
std::string kindOf(const std::string& message) {
    return message.substr(sizeof(LONG), 12);
}

// Every way to answer without the message `good`: nothing, too little, no object, another class.
std::vector<std::string> messagesOtherThan(const std::string& good) {
    std::vector<std::string> messages{"",
                                      wire("0A 00"),
                                      wireOf<LONG>(0),
                                      wireOf<LONG>(-1),
                                      wireOf<LONG>(100),
                                      wireOf<LONG>(2) + wire("00 00"),
                                      good.substr(0, good.size() / 2),
                                      good.substr(0, good.size() - 1)};
    for (const char* reply :
         {"reply-users", "reply-locks", "reply-connections", "reply-user", "reply-string"}) {
        const std::string other = goldenWire(reply);
        if (kindOf(other) != kindOf(good)) messages.push_back(other);
    }
    return messages;
}

// The message `good` answers, whose length has to come at once; `before` comes ahead of it.
ClientRequest messageRequest(const std::string& name, const std::string& request,
                             std::function<std::string(NySeClientApp&)> call,
                             const std::string& failure, const std::string& good,
                             const std::string& result, const std::string& before = "") {
    ClientRequest row{
        name, goldenRequest(request), std::move(call), failure, {{{before + good}, result}}};
    for (const std::string& other : messagesOtherThan(good))
        row.broken.push_back({{before + other}, failure});
    row.pieces = {{{before + good.substr(0, 2), good.substr(2)}, failure},
                  {inSingleBytes(good.substr(sizeof(LONG))), result}};
    auto& single = row.pieces.back().pieces;
    single.insert(single.begin(), before + good.substr(0, sizeof(LONG)));
    return row;
}

template <class Record>
std::unique_ptr<Record> recordIn(std::string message) {
    CMemFile body(reinterpret_cast<BYTE*>(message.data()) + sizeof(LONG),
                  static_cast<UINT>(message.size() - sizeof(LONG)));
    return std::unique_ptr<Record>(
        static_cast<Record*>(NySe::readReplyObject(body, RUNTIME_CLASS(Record))));
}

// A table answers. It is asked for into one that holds the same records already, and owns them or
// leaves them to the caller.
template <class Table>
Requests tableRequests(const std::string& request, const std::string& reply,
                       std::function<void(NySeClientApp&, Table&)> ask,
                       const std::string& before = "") {
    const std::string good = goldenWire(reply);
    const auto asked = [good, ask](NySeClientApp& client, bool owns) {
        const auto table = recordIn<Table>(good);
        table->setDeleteObject(owns);
        const QoObject2* const held = table->GetAt(0);
        ask(client, *table);
        EXPECT_EQ(held, table->GetAt(0));
        EXPECT_EQ(owns, table->getDeleteObject());
        const std::string content = shown(messageOf(*table));
        for (INT_PTR i = 0; !owns && i < table->GetSize(); ++i) delete table->GetAt(i);
        return content;
    };
    const auto twice = recordIn<Table>(good);
    const auto more = recordIn<Table>(good);
    more->setDeleteObject(false);
    for (INT_PTR i = 0; i < more->GetSize(); ++i) twice->append(more->GetAt(i));
    const std::string result = shown(messageOf(*twice));
    Requests rows;
    for (const bool owns : {true, false})
        rows.push_back(messageRequest(
            request + (owns ? "IntoAnOwner" : "IntoATableThatDoesNotOwn"), request,
            [asked, owns](NySeClientApp& client) { return asked(client, owns); }, shown(good), good,
            result, before));
    return rows;
}

// The users follow status 1 only; without them the answer is the status.
ClientRequest isLockByRequest() {
    const auto call = [](NySeClientApp& client) {
        NySeUserPtrArray users;
        const bool isLocked = client.isLockBy(_T("part/42"), users);
        return PrintToString(isLocked) + ' ' + PrintToString(users.GetSize());
    };
    ClientRequest row = messageRequest("isLockBy", "isLockBy", call, "true 0",
                                       goldenWire("reply-users"), "true 2", wire("01"));
    row.failure = "false 0";
    row.broken.push_back({{""}, row.failure});
    row.answers.push_back({{wire("00")}, "false 0"});
    for (const char* status : {"02", "7F", "80", "81", "FF"})
        row.answers.push_back({{wire(status)}, "true 0"});
    return row;
}

// Every field is the answer's, or else as it was.
ClientRequest getPortClientRequest() {
    NySeUser completed;
    completed.setPort(50001);
    completed.setStrHostName(_T("other-host"));
    completed.setStrUserName(_T("Anna Ω"));
    completed.setStrComputerName(_T("OTHER"));
    completed.setSessionNumber(99);
    completed.setSchema(2016);
    completed.setSoftType(8);
    const auto call = [](NySeClientApp& client) {
        NySeUser user = goldenUser();
        const int port = client.getPortClient(user);
        return PrintToString(port) + ' ' + shown(messageOf(user));
    };
    return messageRequest("getPortClient", "getPortClient", call,
                          "0 " + shown(messageOf(goldenUser())), messageOf(completed),
                          "50001 " + shown(messageOf(completed)));
}

template <class Call>
ClientRequest textRequest(const char* name, Call call) {
    ClientRequest row = messageRequest(
        name, name, [call](NySeClientApp& client) { return PrintToString(call(client)); },
        PrintToString(CString()), goldenWire("reply-string"),
        PrintToString(CString("00-1a-2b-3c-4d-5e")));
    const std::string text = wire("FF FE FF 04 0D 00 0A 00 00 00 A9 03");
    row.answers.push_back({{wireOf(static_cast<LONG>(text.size())) + text},
                           PrintToString(CString(_T("\r\n\0\u03A9"), 4))});
    return row;
}

ClientRequest unansweredRequest(const char* name, std::function<void(NySeClientApp&)> call) {
    return {name,
            goldenRequest(name),
            [call](NySeClientApp& client) {
                call(client);
                return "";
            },
            "",
            {{{""}, ""}}};
}

Requests unansweredRequests() {
    static NySeMessage message;
    message.setStrMessage(_T("saved"));
    return {
        {"unLock",
         goldenRequest("unLock"),
         [](NySeClientApp& client) { return PrintToString(client.unLock(_T("part/42"))); },
         "false",
         {{{""}, "true"}}},
        unansweredRequest("closeConnection",
                          [](NySeClientApp& client) { client.closeConnection(3); }),
        unansweredRequest("sendConnectionData",
                          [](NySeClientApp& client) { client.sendConnectionData(1, 2, message); }),
        unansweredRequest("sendUserData",
                          [](NySeClientApp& client) {
                              NySeUser user = goldenUser();
                              client.sendUserData(user, message);
                          }),
        unansweredRequest("sendAllUserData",
                          [](NySeClientApp& client) { client.sendAllUserData(message); }),
        unansweredRequest("shutDownServer", &NySeClientApp::shutDownServer),
        unansweredRequest("verifyCoherancy", &NySeClientApp::verifyCoherancy)};
}

}  // namespace

const std::vector<ClientRequest>& clientRequests() {
    static const Requests all = [] {
        Requests rows{isLockByRequest(), getPortClientRequest(),
                      textRequest("getMachineIdentifiant",
                                  std::mem_fn(&NySeClientApp::getMachineIdentifiant)),
                      textRequest("getEventListFromEventViewer", [](NySeClientApp& client) {
                          return client.getEventListFromEventViewer(25);
                      })};
        for (const Requests& more :
             {sessionRequests(), scalarRequests(), unansweredRequests(),
              tableRequests<NySeLockArray>("getLock", "reply-locks", &NySeClientApp::getLock),
              tableRequests<NySeConnectionArray>("getConnection", "reply-connections",
                                                 &NySeClientApp::getConnection),
              tableRequests<NySeUserPtrArray>("getAllUser", "reply-users",
                                              &NySeClientApp::getAllUser),
              tableRequests<NySeUserPtrArray>("isOpenConnectionBy", "reply-users",
                                              [](NySeClientApp&client, NySeUserPtrArray&users) {
                                                  client.isOpenConnectionBy(3, users);
                                              }),
              tableRequests<NySeUserPtrArray>(
                  "isLockBy", "reply-users",
                  [](NySeClientApp&client, NySeUserPtrArray&users) {
                      client.isLockBy(_T("part/42"), users);
                  },
                  wire("01"))})
            rows.insert(rows.end(), more.begin(), more.end());
        return rows;
    }();
    return all;
}
