// With what status nyctl's commands end when the server does not do what it should.
#include "apps/nyctl/CommandTools.h"
#include "tests/apps/ListenerPorts.h"
#include "tests/apps/NyctlRun.h"
#include "tests/client/ClientTest.h"

namespace {

// A server that follows a script, one step a request.
class Nyctl : public ::testing::Test {
  protected:
    // Every server here agrees on the schema first; it closes behind the last step.
    void serve(std::vector<std::pair<std::string, std::string>> steps) {
        steps.insert(steps.begin(),
                     {goldenWire("request-initializeSchema"), wireOf<LONG>(NySe::schema2015)});
        m_peer.reset();
        m_received.clear();
        m_peer = std::make_unique<peers::Peer>([this, steps](peers::Connection& connection) {
            for (const auto& [request, answer] : steps) {
                std::string received;
                char byte;
                while (received.size() < request.size() &&
                       ::recv(connection.socket(), &byte, 1, 0) == 1) {
                    received += byte;
                }
                m_received.push_back(received);
                connection.send(answer);
            }
        });
        m_options.server = "127.0.0.1:" + std::to_string(m_peer->port());
    }

    ExitStatus run(const std::string& line) { return m_run(m_options, line); }

    // The user that nyctl registers has names of this machine: only the length of the request is
    // known.
    std::string registerRequest() const {
        NySeUser user;
        const CString host = NySeClientApp().getHostName();
        user.setStrUserName(m_options.user.c_str());
        user.setStrHostName(host);
        user.setStrComputerName(host);
        user.setSchema(NySe::schema2015);
        NySeMemFile message;
        message.startWriteAction(NySe::actionGetPortClient, NySe::schema2015);
        message.writeObject(user);
        message.stopWriting();
        return std::string(message.getLength(), 'x');
    }

    static std::string noUsers() {
        const std::string body = goldenWire("users-empty");
        return wireOf(static_cast<LONG>(body.size())) + body;
    }

    const std::string isAlive = goldenWire("request-isAlive");
    const std::string getVersion = goldenWire("request-getVersion");
    const std::string getLock = goldenWire("request-getLock");
    // Of a lock whose name is one character; only its length counts.
    const std::string lockRequest = std::string(8 + 6 + 4, 'x');
    const std::string getAllUser = goldenWire("request-getAllUser");
    const std::string alive = wireOf<LONG>(NySe::kAliveAnswer);
    const std::string empty = wireOf<LONG>(0);

    Options m_options{"", "Anna", false};
    std::vector<std::string> m_received;  // by the last connection, one a step; once it is served
    std::unique_ptr<peers::Peer> m_peer;
    NyctlRun m_run;
};

TEST_F(Nyctl, PingIsYesForALivingServer) {
    serve({{isAlive, alive}, {getVersion, wireOf(2.5)}});
    EXPECT_EQ(exitYes, run("ping"));
    EXPECT_EQ("alive: true\nversion: 2.5\nschema: 2015\n", m_run.printed());
}

TEST_F(Nyctl, PingIsNoForAServerThatAnswersSomethingElse) {
    serve({{isAlive, wireOf<LONG>(5)}, {getVersion, wireOf(2.5)}});
    EXPECT_EQ(exitNo, run("ping"));
    EXPECT_EQ("alive: false\nversion: 2.5\nschema: 2015\n", m_run.printed());
}

TEST_F(Nyctl, RegisterIsNoWhenALivingServerGivesNoPort) {
    serve({{registerRequest(), empty}, {isAlive, alive}});
    EXPECT_EQ(exitNo, run("register"));
}

TEST_F(Nyctl, RegisterIsNoWhenALivingServerAnswersWithAnotherRecord) {
    serve({{registerRequest(), goldenWire("reply-users")}, {isAlive, alive}});
    EXPECT_EQ(exitNo, run("register"));
}

TEST_F(Nyctl, RegisterHasNoAnswerWhenTheServerStopsHalfWay) {
    serve({{registerRequest(), goldenWire("reply-user").substr(0, 30)}});
    EXPECT_EQ(exitNoAnswer, run("register"));
}

TEST_F(Nyctl, WatchIsNoWhenALivingServerGivesNoPort) {
    serve({{registerRequest(), empty}, {isAlive, alive}});
    EXPECT_EQ(exitNo, run("watch"));
    EXPECT_EQ("nyctl: the server gives no port that is free here\n", m_run.complaint());
}

TEST_F(Nyctl, WatchEndsWithTheServer) {
    const LONG port = static_cast<LONG>(peers::RefusingPort().port());
    serve({{registerRequest(), registrationAnswer(port)}});
    EXPECT_EQ(exitNoAnswer, run("watch --count 1 --timeout 60"));
    EXPECT_EQ("", m_run.printed());
    EXPECT_EQ("nyctl: watching at port " + std::to_string(port) +
                  "\nnyctl: the server has gone away\nnyctl: no answer from " + m_options.server +
                  "\n",
              m_run.complaint());
}

TEST_F(Nyctl, UsersMayBeNoneOnALivingServer) {
    serve({{getAllUser, noUsers()}, {isAlive, alive}});
    EXPECT_EQ(exitYes, run("users"));
}

TEST_F(Nyctl, UsersAreListedOneARow) {
    serve({{getAllUser, goldenWire("reply-users")}});
    EXPECT_EQ(exitYes, run("users"));
    EXPECT_EQ(
        "user  session  port   host   computer  schema  soft_type\n"
        "Anna  7        40123  ws-01  WS-01     2015    3\n"
        "bob   8        40124  ws-01  WS-01     2015    3\n",
        m_run.printed());
}

TEST_F(Nyctl, UsersAreListedOneAnObject) {
    m_options.json = true;
    serve({{getAllUser, goldenWire("reply-users")}});
    EXPECT_EQ(exitYes, run("users"));
    EXPECT_EQ(
        "{\"user\":\"Anna\",\"session\":7,\"port\":40123,\"host\":\"ws-01\",\"computer\":\"WS-01\","
        "\"schema\":2015,\"soft_type\":3}\n"
        "{\"user\":\"bob\",\"session\":8,\"port\":40124,\"host\":\"ws-01\",\"computer\":\"WS-01\","
        "\"schema\":2015,\"soft_type\":3}\n",
        m_run.printed());
}

TEST_F(Nyctl, NamesOfOthersDoNotSteerTheTerminal) {
    NySeUserPtrArray users;
    users.append(new NySeUser);
    users[0]->setStrUserName(_T("a\x1b[2Jb\nc"));
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeObject(users);
    message.stopWriting();
    serve({{getAllUser,
            std::string(reinterpret_cast<char*>(message.getBuffer()), message.getLength())}});
    EXPECT_EQ(exitYes, run("users"));
    EXPECT_NE(std::string::npos, m_run.printed().find("a?[2Jb?c")) << m_run.printed();
}

TEST_F(Nyctl, HoldersHasNoAnswerWhenTheirTableIsLost) {
    const std::string request = goldenWire("request-isLockBy");
    for (const std::string& table : {std::string(), goldenWire("reply-locks")}) {
        serve({{request, "\1" + table}});
        EXPECT_EQ(exitNoAnswer, run("holders part/42"));
        EXPECT_EQ("", m_run.printed());
    }
}

TEST_F(Nyctl, LocksHasNoAnswerWhenTheUsersDoNotCome) {
    serve({{getLock, goldenWire("reply-locks")}});
    EXPECT_EQ(exitNoAnswer, run("locks"));
    EXPECT_EQ("", m_run.printed());
}

TEST_F(Nyctl, LocksMayBeHeldByNobodyOnALivingServer) {
    serve({{getLock, goldenWire("reply-locks")}, {getAllUser, noUsers()}, {isAlive, alive}});
    EXPECT_EQ(exitYes, run("locks"));
    EXPECT_NE(std::string::npos, m_run.printed().find("Part/43  9")) << m_run.printed();
}

TEST_F(Nyctl, LocksAreListedWithWhoHoldsThem) {
    serve({{getLock, goldenWire("reply-locks")}, {getAllUser, goldenWire("reply-users")}});
    EXPECT_EQ(exitYes, run("locks"));
    EXPECT_EQ(
        "lock     session  user  mode  words\n"
        "part/42  1              0x01  access1\n"
        "part/42  7        Anna  0x18  exclude1+exclude2\n"
        "Part/43  9              0x10  exclude2\n",
        m_run.printed());
}

TEST_F(Nyctl, ShareModesAreToldInWords) {
    for (const auto& [mode, words] : {std::pair{"0x00", "none"},
                                      {"0x01", "access1"},
                                      {"0x02", "access2"},
                                      {"0x08", "exclude1"},
                                      {"0x10", "exclude2"},
                                      {"0x04", "none"},
                                      {"0xE4", "none"},
                                      {"0x05", "access1"},
                                      {"0x1B", "access1+access2+exclude1+exclude2"}}) {
        serve({{registerRequest(), goldenWire("reply-user")}, {lockRequest, std::string(1, '\1')}});
        EXPECT_EQ(exitYes, run(std::string("lock a --mode ") + mode));
        EXPECT_EQ("lock: a\ngranted: true\nmode: " + std::string(mode) + "\nwords: " + words + '\n',
                  m_run.printed());
    }
}

TEST_F(Nyctl, SendConnectionSendsTheIdTheNumberAndTheText) {
    const std::string expected = goldenWire("request-sendConnectionData");
    serve({{expected, ""}, {isAlive, alive}});
    EXPECT_EQ(exitYes, run("send-connection 1 2 saved"));
    ASSERT_EQ(1, m_peer->waitForServed(1));
    ASSERT_EQ(3u, m_received.size());
    EXPECT_EQ(shown(expected), shown(m_received[1]));
}

TEST_F(Nyctl, PortIsNoWhenALivingServerHasNone) {
    serve({{goldenWire("request-getAnotherPort"), wireOf<LONG>(-1)}, {isAlive, alive}});
    EXPECT_EQ(exitNo, run("port"));
    EXPECT_EQ("", m_run.printed());
}

TEST_F(Nyctl, RenameIsNoWhenALivingServerRefuses) {
    serve({{registerRequest(), goldenWire("reply-user")},
           {goldenWire("request-updateUserName"), std::string(1, '\0')},
           {isAlive, alive}});
    EXPECT_EQ(exitNo, run("rename Anna"));
}

TEST_F(Nyctl, OpenIsNoWhenALivingServerRefuses) {
    serve({{registerRequest(), goldenWire("reply-user")},
           {goldenWire("request-openConnection"), wireOf<LONG>(-1)},
           {isAlive, alive}});
    EXPECT_EQ(exitNo, run("open Server=a;Db=b"));
    EXPECT_EQ("", m_run.printed());
}

TEST_F(Nyctl, NoCommandTakesAServerThatIsGoneForOneThatSaysNo) {
    for (const auto* family :
         {&kServerCommands, &kUserCommands, &kLockCommands, &kConnectionCommands}) {
        for (const Command& command : *family) {
            SCOPED_TRACE(command.example);
            serve({});
            EXPECT_EQ(exitNoAnswer, run(command.example));
            EXPECT_EQ("", m_run.printed());
            EXPECT_EQ("nyctl: no answer from " + m_options.server + "\n", m_run.complaint());
        }
    }
}

TEST_F(Nyctl, TheShellConnectsAgainAfterAMissedAnswer) {
    serve({});
    Session session(m_options);
    const Output output(m_options);
    ExitStatus status = exitUsage;
    for (int i = 0; i < 2; ++i) {
        CLI::App app("", "");
        addCommands(app, session, output, status);
        app.parse("time");
        EXPECT_EQ(exitNoAnswer, status);
    }
    EXPECT_EQ(2, m_peer->waitForServed(2));
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
TEST_F(Nyctl, ASilentServerIsNoAnswer) {
    const peers::Peer silent(peers::silent());
    m_options.server = "127.0.0.1:" + std::to_string(silent.port());
    EXPECT_EQ(exitNoAnswer, run("ping"));
}

}  // namespace
