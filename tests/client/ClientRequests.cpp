#include "tests/client/ClientRequests.h"

#include "NyServer/records/NySeMessage.h"
#include "tests/client/ClientTest.h"

namespace {

std::vector<ScalarAnswer> numbersAsTheyAre() {
    std::vector<ScalarAnswer> answers;
    for (const LONG number : {1L, 0L, -1L, 40125L, LONG_MAX, LONG_MIN}) {
        answers.push_back({wireOf(number), number});
    }
    return answers;
}

// A byte says yes when it is not zero.
std::vector<ScalarAnswer> yesOrNo() {
    return {{wire("01"), true}, {wire("00"), false}, {wire("02"), true}, {wire("FF"), true}};
}

template <class Table, class Record>
TableRequest tableRequest(const char* name, const char* reply,
                          std::function<void(NySeClientApp&, Table&)> call,
                          const std::string& beforeReply = "") {
    return {name,
            reply,
            beforeReply,
            [] { return std::shared_ptr<QoArraySerial2>(new Table); },
            []() -> QoObject2* { return new Record; },
            [call](NySeClientApp& client, QoArraySerial2& table) {
                call(client, static_cast<Table&>(table));
            }};
}

NySeMessage savedMessage() {
    NySeMessage message;
    message.setStrMessage(_T("saved"));
    return message;
}

AnsweredCall answered(const ScalarRequest& request) {
    return {request.name, request.answers.front().reply,
            [&request](NySeClientApp& client) { return request.call(client) == request.failure; }};
}

AnsweredCall answered(const TableRequest& request) {
    return {request.name, request.beforeReply + goldenWire(request.reply),
            [&request](NySeClientApp& client) {
                const auto table = request.makeTable();
                request.call(client, *table);
                return table->GetSize() == 0;
            }};
}

AnsweredCall answered(const TextRequest& request) {
    return {request.name, goldenWire("reply-string"),
            [&request](NySeClientApp& client) { return request.call(client).IsEmpty() != FALSE; }};
}

bool schemaFails(NySeClientApp& client) {
    client.initializeSchema();
    return client.getSchemaType() == NySe::noSchema;
}

bool isLockByFails(NySeClientApp& client) {
    NySeUserPtrArray users;
    return !client.isLockBy(_T("part/42"), users) && users.GetSize() == 0;
}

bool getPortClientFails(NySeClientApp& client) {
    NySeUser user;
    return client.getPortClient(user) == 0 && user.getPort() == -1;
}

std::vector<AnsweredCall> allAnsweredCalls() {
    std::vector<AnsweredCall> calls{
        {"initializeSchema", wireOf<LONG>(2010), schemaFails},
        {"isAlive", wireOf<LONG>(512), [](NySeClientApp& client) { return !client.isAlive(); }},
        {"getVersion", wireOf(7.25),
         [](NySeClientApp& client) { return client.getVersion() == -1.0; }},
        {"isLockBy", wire("01") + goldenWire("reply-users"), isLockByFails},
        {"getPortClient", goldenWire("reply-user"), getPortClientFails},
    };
    for (const ScalarRequest& request : scalarRequests()) calls.push_back(answered(request));
    for (const TableRequest& request : tableRequests()) calls.push_back(answered(request));
    for (const TextRequest& request : textRequests()) calls.push_back(answered(request));
    return calls;
}

}  // namespace

const std::vector<ScalarRequest>& scalarRequests() {
    static const std::vector<ScalarRequest> requests{
        {"lock", false, yesOrNo(),
         [](NySeClientApp& client) { return client.lock(_T("part/42"), 0x18); }},
        {"openConnection", -1, numbersAsTheyAre(),
         [](NySeClientApp& client) { return client.openConnection(_T("Server=a;Db=b")); }},
        {"getAnotherPort", -1, numbersAsTheyAre(),
         [](NySeClientApp& client) { return client.getAnotherPort(); }},
        {"updateUserName", false, yesOrNo(),
         [](NySeClientApp& client) { return client.updateUserName(_T("Anna")); }},
        {"getCurrentTime", 0, numbersAsTheyAre(),
         [](NySeClientApp& client) { return client.getCurrentTime(); }},
    };
    return requests;
}

const std::vector<TableRequest>& tableRequests() {
    static const std::vector<TableRequest> requests{
        tableRequest<NySeLockArray, NySeLock>("getLock", "reply-locks", &NySeClientApp::getLock),
        tableRequest<NySeUserPtrArray, NySeUser>(
            "isLockBy", "reply-users",
            [](NySeClientApp& client, NySeUserPtrArray& users) {
                client.isLockBy(_T("part/42"), users);
            },
            "\x01"),
        tableRequest<NySeConnectionArray, NySeConnection>("getConnection", "reply-connections",
                                                          &NySeClientApp::getConnection),
        tableRequest<NySeUserPtrArray, NySeUser>(
            "isOpenConnectionBy", "reply-users",
            [](NySeClientApp& client, NySeUserPtrArray& users) {
                client.isOpenConnectionBy(3, users);
            }),
        tableRequest<NySeUserPtrArray, NySeUser>("getAllUser", "reply-users",
                                                 &NySeClientApp::getAllUser),
    };
    return requests;
}

const std::vector<TextRequest>& textRequests() {
    static const std::vector<TextRequest> requests{
        {"getMachineIdentifiant", &NySeClientApp::getMachineIdentifiant},
        {"getEventListFromEventViewer",
         [](NySeClientApp& client) { return client.getEventListFromEventViewer(25); }},
    };
    return requests;
}

const std::vector<UnansweredRequest>& unansweredRequests() {
    static const std::vector<UnansweredRequest> requests{
        {"unLock", [](NySeClientApp& client) { client.unLock(_T("part/42")); }},
        {"closeConnection", [](NySeClientApp& client) { client.closeConnection(3); }},
        {"sendConnectionData",
         [](NySeClientApp& client) {
             NySeMessage message = savedMessage();
             client.sendConnectionData(1, 2, message);
         }},
        {"sendUserData",
         [](NySeClientApp& client) {
             NySeUser user = goldenUser();
             NySeMessage message = savedMessage();
             client.sendUserData(user, message);
         }},
        {"sendAllUserData",
         [](NySeClientApp& client) {
             NySeMessage message = savedMessage();
             client.sendAllUserData(message);
         }},
        {"shutDownServer", &NySeClientApp::shutDownServer},
        {"verifyCoherancy", &NySeClientApp::verifyCoherancy},
    };
    return requests;
}

const std::vector<AnsweredCall>& answeredCalls() {
    static const std::vector<AnsweredCall> calls = allAnsweredCalls();
    return calls;
}
