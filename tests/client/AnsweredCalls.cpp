#include "tests/client/AnsweredCalls.h"

#include "tests/client/ClientTest.h"

namespace {

AnsweredCall textCall(const char* name, std::function<CString(NySeClientApp&)> call) {
    return {name, goldenWire("reply-string"),
            [call](NySeClientApp& client) { return call(client).IsEmpty() != FALSE; }};
}

template <class Table>
AnsweredCall tableCall(const char* name, const char* reply,
                       std::function<void(NySeClientApp&, Table&)> call) {
    return {name, goldenWire(reply), [call](NySeClientApp& client) {
                Table table;
                call(client, table);
                return table.GetSize() == 0;
            }};
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

}  // namespace

const std::vector<AnsweredCall>& answeredCalls() {
    static const std::vector<AnsweredCall> calls{
        {"initializeSchema", wireOf<LONG>(2010), schemaFails},
        {"isAlive", wireOf<LONG>(512), [](NySeClientApp& client) { return !client.isAlive(); }},
        {"getVersion", wireOf(7.25),
         [](NySeClientApp& client) { return client.getVersion() == -1.0; }},
        {"lock", wire("01"),
         [](NySeClientApp& client) { return !client.lock(_T("part/42"), 0x18); }},
        {"isLockBy", wire("01") + goldenWire("reply-users"), isLockByFails},
        tableCall<NySeLockArray>("getLock", "reply-locks", &NySeClientApp::getLock),
        {"openConnection", wireOf<LONG>(3),
         [](NySeClientApp& client) { return client.openConnection(_T("Server=a;Db=b")) == -1; }},
        tableCall<NySeConnectionArray>("getConnection", "reply-connections",
                                       &NySeClientApp::getConnection),
        tableCall<NySeUserPtrArray>("isOpenConnectionBy", "reply-users",
                                    [](NySeClientApp& client, NySeUserPtrArray& users) {
                                        client.isOpenConnectionBy(7, users);
                                    }),
        tableCall<NySeUserPtrArray>("getAllUser", "reply-users", &NySeClientApp::getAllUser),
        {"getPortClient", goldenWire("reply-user"), getPortClientFails},
        {"getAnotherPort", wireOf<LONG>(40125),
         [](NySeClientApp& client) { return client.getAnotherPort() == -1; }},
        {"updateUserName", wire("01"),
         [](NySeClientApp& client) { return !client.updateUserName(_T("Anna")); }},
        {"getCurrentTime", wireOf<LONG>(1'700'000'000),
         [](NySeClientApp& client) { return client.getCurrentTime() == 0; }},
        textCall("getMachineIdentifiant", &NySeClientApp::getMachineIdentifiant),
        textCall("getEventListFromEventViewer",
                 [](NySeClientApp& client) { return client.getEventListFromEventViewer(25); }),
    };
    return calls;
}
