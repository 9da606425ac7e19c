// With what status nyctl's commands end when the server does not do what it should.
#include "apps/nyctl/CommandTools.h"
#include "tests/apps/AnsweringServer.h"
#include "tests/apps/ListenerPorts.h"
#include "tests/apps/NyctlRun.h"
#include "tests/client/ClientTest.h"

namespace {

class Nyctl : public ::testing::Test {
  protected:
    // A server that agrees on the schema, answers each of these once, and closes.
    void serve(Answers answers) {
        answers.emplace(NySe::actionInitializeSchema, answering(wireOf<LONG>(NySe::schema2015)));
        m_server.reset();
        m_server = std::make_unique<AnsweringServer>(answers, answers.size());
        m_options.server = m_server->address();
    }
    ExitStatus run(const std::string& line) { return m_run(m_options, line); }

    Options m_options{{"", "Anna"}};
    std::unique_ptr<AnsweringServer> m_server;
    NyctlRun m_run;
};

// What nyctl makes of a server that answers these and closes.
struct NyctlCase {
    const char* name;
    const char* line;
    std::map<LONG, std::string> answers;
    ExitStatus status;
    std::string printed;
};

NyctlCase row(const char* name, const char* line, const std::map<LONG, std::string>& answers,
              ExitStatus status, const std::string& printed = "") {
    return {name, line, answers, status, printed};
}

std::vector<NyctlCase> nyctlCases() {
    using namespace NySe;
    using One = std::pair<const LONG, std::string>;
    const One alive(actionIsAlive, wireOf<LONG>(kAliveAnswer));
    const One version(actionGetVersion, wireOf(2.5));
    const One registered(actionGetPortClient, goldenWire("reply-user"));
    const One halfRegistered(actionGetPortClient, registered.second.substr(0, 30));
    const One users(actionGetAllUser, goldenWire("reply-users"));
    const One noUsers(actionGetAllUser, messageOf(NySeUserPtrArray()));
    const One locks(actionGetLock, goldenWire("reply-locks"));
    const std::string lockColumns = "lock     session  user  mode  words\n";
    return {row("PingIsYesForALivingServer", "ping", {alive, version}, exitYes,
                "alive: true\nversion: 2.5\nschema: 2015\n"),
            row("PingIsNoForAServerThatRepliesSomethingElse", "ping",
                {{actionIsAlive, wireOf<LONG>(5)}, version}, exitNo,
                "alive: false\nversion: 2.5\nschema: 2015\n"),
            row("RegisterIsNoWhenALivingServerGivesNoPort", "register",
                {{actionGetPortClient, wireOf<LONG>(0)}, alive}, exitNo),
            row("RegisterIsNoWhenALivingServerRepliesWithAnotherRecord", "register",
                {{actionGetPortClient, users.second}, alive}, exitNo),
            row("RegisterHasNoReplyWhenTheServerStopsHalfWay", "register", {halfRegistered},
                exitNoReply),
            row("UsersMayBeNoneOnALivingServer", "users", {noUsers, alive}, exitYes,
                "user  session  port  host  computer  schema  soft_type\n"),
            row("UsersAreListedOneARow", "users", {users}, exitYes,
                "user  session  port   host   computer  schema  soft_type\n"
                "Anna  7        40123  ws-01  WS-01     2015    3\n"
                "bob   8        40124  ws-01  WS-01     2015    3\n"),
            row("HoldersHasNoReplyWhenTheirTableIsLost", "holders part/42",
                {{actionIsLockBy, "\1"}}, exitNoReply),
            row("HoldersHasNoReplyWhenTheirTableIsAnother", "holders part/42",
                {{actionIsLockBy, "\1" + locks.second}}, exitNoReply),
            row("LocksHasNoReplyWhenTheUsersDoNotArrive", "locks", {locks}, exitNoReply),
            row("LocksMayBeHeldByNobodyOnALivingServer", "locks", {locks, noUsers, alive}, exitYes,
                lockColumns + "part/42  1              0x01  access1\n"
                              "part/42  7              0x18  exclude1+exclude2\n"
                              "Part/43  9              0x10  exclude2\n"),
            row("LocksAreListedWithWhoHoldsThem", "locks", {locks, users}, exitYes,
                lockColumns + "part/42  1              0x01  access1\n"
                              "part/42  7        Anna  0x18  exclude1+exclude2\n"
                              "Part/43  9              0x10  exclude2\n"),
            row("PortIsNoWhenALivingServerHasNone", "port",
                {{actionGetAnotherPort, wireOf<LONG>(-1)}, alive}, exitNo),
            row("RenameIsNoWhenALivingServerRefuses", "rename Anna",
                {registered, {actionUpdateUserName, wire("00")}, alive}, exitNo),
            row("OpenIsNoWhenALivingServerRefuses", "open Server=a;Db=b",
                {registered, {actionOpenConnection, wireOf<LONG>(-1)}, alive}, exitNo)};
}

class NyctlCommand : public Nyctl, public ::testing::WithParamInterface<NyctlCase> {};

INSTANTIATE_TEST_SUITE_P(Nyctl, NyctlCommand, ::testing::ValuesIn(nyctlCases()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(NyctlCommand, EndsAndPrints) {
    Answers answers;
    for (const auto& [action, bytes] : GetParam().answers) answers[action] = answering(bytes);
    serve(answers);
    EXPECT_EQ(GetParam().status, run(GetParam().line)) << m_run.complaint();
    EXPECT_EQ(GetParam().printed, m_run.printed());
}

TEST_F(Nyctl, WatchEndsWithTheServer) {
    const LONG port = static_cast<LONG>(peers::RefusingPort().port());
    serve({{NySe::actionGetPortClient, answering(registrationAnswer(port))}});
    EXPECT_EQ(exitNoReply, run("watch --count 1 --timeout 60"));
    EXPECT_EQ("", m_run.printed());
    EXPECT_EQ("nyctl: listening on port " + std::to_string(port) +
                  "\nnyctl: the connection to the server was lost\nnyctl: no reply from " +
                  m_options.server + "\n",
              m_run.complaint());
}

TEST_F(Nyctl, WatchIsNoWhenALivingServerGivesNoPort) {
    serve({{NySe::actionGetPortClient, answering(wireOf<LONG>(0))},
           {NySe::actionIsAlive, answering(wireOf<LONG>(NySe::kAliveAnswer))}});
    EXPECT_EQ(exitNo, run("watch"));
    EXPECT_EQ("nyctl: the server has no port that is free on this machine\n", m_run.complaint());
}

TEST_F(Nyctl, UsersAreListedOneAnObject) {
    m_options.json = true;
    serve({{NySe::actionGetAllUser, answering(goldenWire("reply-users"))}});
    EXPECT_EQ(exitYes, run("users"));
    EXPECT_EQ(
        "{\"user\":\"Anna\",\"session\":7,\"port\":40123,\"host\":\"ws-01\",\"computer\":\"WS-01\","
        "\"schema\":2015,\"soft_type\":3}\n"
        "{\"user\":\"bob\",\"session\":8,\"port\":40124,\"host\":\"ws-01\",\"computer\":\"WS-01\","
        "\"schema\":2015,\"soft_type\":3}\n",
        m_run.printed());
}

TEST_F(Nyctl, NamesOfOthersDoNotControlTheTerminal) {
    NySeUserPtrArray users;
    users.append(new NySeUser);
    users[0]->setStrUserName(_T("a\x1b[2Jb\nc"));
    serve({{NySe::actionGetAllUser, answering(messageOf(users))}});
    EXPECT_EQ(exitYes, run("users"));
    EXPECT_NE(std::string::npos, m_run.printed().find("a?[2Jb?c")) << m_run.printed();
}

TEST_F(Nyctl, ShareModesArePrintedInWords) {
    for (const auto& [mode, words] : {std::pair{"0x00", "none"},
                                      {"0x01", "access1"},
                                      {"0x02", "access2"},
                                      {"0x08", "exclude1"},
                                      {"0x10", "exclude2"},
                                      {"0x04", "none"},
                                      {"0xE4", "none"},
                                      {"0x05", "access1"},
                                      {"0x1B", "access1+access2+exclude1+exclude2"}}) {
        serve({{NySe::actionGetPortClient, answering(goldenWire("reply-user"))},
               {NySe::actionLock, answering("\1")}});
        EXPECT_EQ(exitYes, run(std::string("lock a --mode ") + mode));
        EXPECT_EQ("lock: a\ngranted: true\nmode: " + std::string(mode) + "\nwords: " + words + '\n',
                  m_run.printed());
    }
}

TEST_F(Nyctl, SendConnectionSendsTheIdTheNumberAndTheText) {
    std::string sent;
    serve({{NySe::actionSendConnectionData,
            [&](const std::string& payload) {
                sent = payload;
                return std::string();
            }},
           {NySe::actionIsAlive, answering(wireOf<LONG>(NySe::kAliveAnswer))}});
    EXPECT_EQ(exitYes, run("send-connection 1 2 saved"));
    EXPECT_EQ(shown(goldenWire("request-sendConnectionData").substr(8)), shown(sent));
}

TEST_F(Nyctl, EveryCommandDistinguishesALostServerFromARefusal) {
    serve({});
    for (const auto* family :
         {&kServerCommands, &kUserCommands, &kLockCommands, &kConnectionCommands}) {
        for (const Command& command : *family) {
            EXPECT_EQ(exitNoReply, run(command.example)) << command.example;
            EXPECT_EQ("", m_run.printed()) << command.example;
            EXPECT_EQ("nyctl: no reply from " + m_options.server + "\n", m_run.complaint())
                << command.example;
        }
    }
    EXPECT_EQ(exitNoReply, run("watch"));
}

TEST_F(Nyctl, TheShellConnectsAgainAfterAMissingReply) {
    std::atomic<int> connections = 0;
    serve({{NySe::actionInitializeSchema, [&](const std::string&) {
                ++connections;
                return wireOf<LONG>(NySe::schema2015);
            }}});
    Session session(m_options);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(exitNoReply, m_run(session, m_options, "time"));
    EXPECT_EQ(2, connections);
}

TEST(NyctlServerAddress, IsHostAndPort) {
    for (const char* good : {"127.0.0.1:1", "host:65535", "a:b:80"})
        EXPECT_TRUE(parseServer(good)) << good;
    for (const char* bad :
         {"", "host", ":80", "host:", "host:0", "host:65536", "host:8x", "host:-1"}) {
        EXPECT_FALSE(parseServer(bad)) << bad;
    }
}

// Waits for the schema's answer as long as the library does.
TEST_F(Nyctl, ASilentServerIsReportedAsNoReply) {
    const peers::Peer silent(peers::silent());
    m_options.server = "127.0.0.1:" + std::to_string(silent.port());
    EXPECT_EQ(exitNoReply, run("ping"));
}

}  // namespace
