// The same requests against the same server give the same results and codes of the transport on
// every system: each row is one connection, and its results are written down once for all systems.
#include <sstream>

#include "NyServer/base/port/Port.h"
#include "tests/client/ClientTest.h"
#include "tests/socket/Probes.h"

namespace {

// Waits for a second, not for as long as the client asks, once all that a silent server sends is
// received. ClientWaitsTest has the time-outs themselves.
class Transport : public ProbeClient {
  public:
    using ProbeClient::Receive;
    int Receive(char* buffer, int length, int timeOut) override {
        const int result = ProbeClient::Receive(buffer, length, m_left > 0 ? timeOut : 1);
        m_left -= std::max(result, 0);
        return result;
    }
    // The server sends so many bytes; its close counts as one.
    void expect(size_t bytes) { m_left = static_cast<int>(bytes); }

  private:
    int m_left = 0;
};

std::string textOf(const CString& text) {
    return port::toUtf8(text, static_cast<size_t>(text.GetLength()));
}

std::string textOf(const NySeUser& user) {
    std::ostringstream text;
    text << '(' << user.getPort() << ' ' << textOf(user.getStrHostName()) << ' '
         << textOf(user.getStrUserName()) << ' ' << textOf(user.getStrComputerName()) << ' '
         << user.getSessionNumber() << ' ' << user.getSchema() << ' ' << user.getSoftType() << ')';
    return text.str();
}

// A request by its name, and its result.
std::string resultOf(const std::string& request, NySeClientApp& client) {
    if (request == "isAlive") return std::to_string(client.isAlive());
    if (request == "lock") return std::to_string(client.lock(_T("part/42"), 0x18));
    if (request == "isConnected") return std::to_string(client.IsConnected());
    EXPECT_EQ(request, "getAllUser");
    NySeUserPtrArray users;
    client.getAllUser(users);
    std::string text = std::to_string(users.GetSize());
    for (INT_PTR i = 0; i < users.GetSize(); ++i)
        text += textOf(static_cast<const NySeUser&>(*users.GetAt(i)));
    return text;
}

struct Exchange {
    std::string request;  // by its name; "isConnected" sends nothing
    std::string reply;    // the bytes, as far as they are sent
    const char* result;   // and the codes that OnError is given
};

enum class End { waits, closes };

struct Row {
    const char* name;
    End end;  // of the server's script, once it has sent its last reply
    std::vector<Exchange> exchanges;
};

const std::string kAlive = wireOf<LONG>(512);
const std::string kUsers = goldenWire("reply-users");

// A table of one user.
std::string wideUser() {
    const std::string empty = goldenWire("users-empty");
    const std::string table = empty.substr(0, empty.size() - 2) + wire("01 00") +
                              goldenWire("user-wide-characters-object");
    return wireOf(static_cast<LONG>(table.size())) + table;
}

const Exchange kIsConnected{"isConnected", "", "1,0,0,0"};
const Exchange kIsClosed{"isConnected", "", "0,0,0"};

const Row kRows[] = {
    {"Alive", End::waits, {{"isAlive", kAlive, "1,0"}, kIsConnected}},
    {"NotAlive", End::waits, {{"isAlive", wireOf<LONG>(511), "0,0"}, {"isAlive", kAlive, "1,0"}}},
    {"AliveCutOff", End::closes, {{"isAlive", kAlive.substr(0, 3), "0,0"}, kIsClosed}},
    {"AliveNeverWhole", End::waits, {{"isAlive", kAlive.substr(0, 3), "0,0"}, kIsConnected}},
    {"AliveWithoutReply", End::waits, {{"isAlive", "", "0,1"}, kIsConnected}},
    {"Locks",
     End::waits,
     {{"lock", wire("01"), "1,0"}, {"lock", wire("00"), "0,0"}, {"lock", wire("FF"), "1,0"}}},
    {"LockCutOff", End::closes, {{"lock", "", "0,0"}, kIsClosed}},
    {"LockWithoutReply", End::waits, {{"lock", "", "0,1"}, kIsConnected}},
    {"Users",
     End::waits,
     {{"getAllUser", kUsers,
       "2(40123 ws-01 Anna WS-01 7 2015 3)(40124 ws-01 bob WS-01 8 2015 3),0,0"},
      {"getAllUser", wideUser(), "1(-1 hôte Ωmega 日本 -1 2014 9),0,0"},
      {"getAllUser", goldenWire("reply-empty"), "0,0"},
      {"isAlive", kAlive, "1,0"}}},
    {"UsersOfAnotherClass",
     End::waits,
     {{"getAllUser", goldenWire("reply-locks"), "0,0,0"}, {"isAlive", kAlive, "1,0"}}},
    {"UsersCutOff",
     End::closes,
     {{"getAllUser", kUsers.substr(0, kUsers.size() / 2), "0,0,0,0"}, kIsClosed}},
    {"UsersCutOffInTheLength",
     End::closes,
     {{"getAllUser", kUsers.substr(0, 2), "0,0"}, kIsClosed}},
    {"UsersNeverWhole",
     End::waits,
     {{"getAllUser", kUsers.substr(0, kUsers.size() - 1), "0,0,0,1"}, kIsConnected}},
    {"UsersNeverWholeInTheLength",
     End::waits,
     {{"getAllUser", kUsers.substr(0, 2), "0,0"}, kIsConnected}},
};

class ClientOnEverySystem : public ClientTest, public testing::WithParamInterface<Row> {
  protected:
    ClientOnEverySystem() { NySeClientAppAccess::setTransport(client, m_transport); }

    // Has the server reply as the row says.
    void serveRow() {
        std::vector<Step> steps;
        for (const auto& [request, reply, result] : GetParam().exchanges)
            if (request != "isConnected")
                steps.push_back({goldenWire("request-" + request), {reply}});
        serve(steps, GetParam().end == End::waits ? Then::wait : Then::close);
    }
    std::string resultAndCodes(const Exchange& exchange) {
        m_transport->expect(exchange.reply.size() + (GetParam().end == End::closes));
        if (GetParam().end == End::closes && exchange.request == "isConnected") awaitClose();
        m_transport->codes.clear();
        std::string text = resultOf(exchange.request, client);
        for (const int code : m_transport->codes) text += ',' + std::to_string(code);
        return text;
    }

    void awaitClose() { EXPECT_TRUE(m_transport->hasArrived()); }

    Transport* const m_transport = new Transport;  // the client's
};

TEST_P(ClientOnEverySystem, GivesTheseResults) {
    serveRow();
    for (const Exchange& exchange : GetParam().exchanges)
        EXPECT_EQ(resultAndCodes(exchange), exchange.result) << exchange.request;
    if (GetParam().end == End::waits) expectRequestsSent();
}

INSTANTIATE_TEST_SUITE_P(Row, ClientOnEverySystem, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
