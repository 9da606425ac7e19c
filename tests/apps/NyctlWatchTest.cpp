// What nyctl's watch shows and how it ends. The test's server is real; another user acts.
#include <gmock/gmock.h>

#include <regex>
#include <thread>

#include "apps/common/StopRequest.h"
#include "apps/nyctl/windows/WatchWindow.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "tests/apps/CentralTest.h"
#include "tests/apps/ListenerPorts.h"
#include "tests/apps/NyctlRun.h"
#include "tests/socket/LocalConnection.h"

namespace {

using ::testing::HasSubstr;

// Bob watches, and Anna is `client`.
class NyctlWatch : public CentralTest {
  protected:
    explicit NyctlWatch(const std::vector<LONG>& ports = freePorts(4))
        : CentralTest(withPorts(ports)) {}

    void SetUp() override {
        CentralTest::SetUp();
        m_options.server = address();
        connect(client);
        session.listener();  // so that the acting thread finds it
    }

    ExitStatus watch(const std::string& options) {
        return m_run(session, m_options, "watch " + options);
    }

    // While `act` is done on another thread, as soon as Bob is registered and has his window.
    template <class Act>
    ExitStatus watchWhile(Act act, const std::string& options) {
        std::thread actor([&] {
            EXPECT_TRUE(eventually([this] { return isWatching(); }));
            act();
        });
        const ExitStatus status = watch(options);
        actor.join();
        return status;
    }

    // Until so many notifications have come.
    template <class Act>
    void watchUntil(int count, Act act) {
        EXPECT_EQ(exitYes, watchWhile(act, "--count " + std::to_string(count) + " --timeout 60"));
        EXPECT_EQ(static_cast<size_t>(count), lines().size()) << m_run.complaint();
    }

    bool isWatching() { return isThere("Bob") && session.listener().getAppWnd() != nullptr; }

    bool isThere(const std::string& name) {
        const std::vector<std::string> names = userNames(client);
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    NySeUser bob() {
        NySeUserPtrArray users;
        client.getAllUser(users);
        const NySeUser* const found = users.findByUserName(_T("Bob"));
        return found ? *found : NySeUser();
    }

    // Causes 50, 51, 52, 53, 54, 56, 57, 58 and 55, in this order. Bob has the connection 0 open.
    void causeAll() {
        client.lock("part/42", 0x19);
        client.unLock("part/42");
        client.openConnection("Server=c");
        client.closeConnection(1);
        NySeUser anna = named("Anna");
        client.getPortClient(anna);
        NySeMessage saved = message("saved");
        client.sendConnectionData(0, 7, saved);
        NySeUser receiver = bob();
        client.sendUserData(receiver, saved);
        client.sendAllUserData(saved);
        client.disconnect();
    }
    void watchAll() {
        session.open();
        session.client().openConnection("Server=a");
        watchUntil(9, [this] { causeAll(); });
    }
    // Whatever is sent to all, in its bytes.
    void sendAll(const std::string& object) { send(client, request(74, object)); }

    std::vector<std::string> lines() const { return Output::split(m_run.printed()); }
    std::vector<nlohmann::json> objects() const {
        std::vector<nlohmann::json> parsed;
        for (const std::string& line : lines()) parsed.push_back(nlohmann::json::parse(line));
        return parsed;
    }

    Options m_options{"", "Bob", false};
    Session session{m_options};
    NyctlRun m_run;
};

constexpr const char* kSaved = R"({"message": "saved"})";
constexpr const char* kAnna = R"({"user": "Anna", "session": 1, "host": "", "computer": "",
    "schema": 2015, "soft_type": 0, "port": 0})";

// What causeAll causes, as a line and as an object; 0 stands for a port.
const struct {
    int action;
    const char* words;
    const char* type;
    const char* text;
    const char* object;
} kCaused[] = {
    {50, "a lock was granted", "NySeLock", "part/42, held by session 1 (access1+exclude1+exclude2)",
     R"({"lock": "part/42", "holders": [
         {"session": 1, "mode": "0x19", "words": "access1+exclude1+exclude2"}]})"},
    {51, "a lock was released", "NySeLock", "part/42, held by nobody",
     R"({"lock": "part/42", "holders": []})"},
    {52, "a connection was opened", "NySeConnection", "Server=c, id 1, opens 1",
     R"({"id": 1, "connection": "Server=c", "opens": 1})"},
    {53, "a connection was closed", "NySeConnection", "Server=c, id 1, opens 0",
     R"({"id": 1, "connection": "Server=c", "opens": 0})"},
    {54, "a user joined or registered again", "NySeUser", "Anna, session 1, port 0 on ", kAnna},
    {56, "connection data", "NySeMessage", "saved", kSaved},
    {57, "user data", "NySeMessage", "saved", kSaved},
    {58, "data for all", "NySeMessage", "saved", kSaved},
    {55, "a user left", "NySeUser", "Anna, session 1, port 0 on ", kAnna},
};

TEST_F(NyctlWatch, ShowsEveryNotificationInALine) {
    watchAll();
    const std::regex variable("^\\d\\d:\\d\\d:\\d\\d\\.\\d{3}(  .*  \\()[1-9]\\d*( bytes\\))$");
    for (size_t i = 0; i < std::size(kCaused); ++i) {
        const auto& [action, words, type, text, object] = kCaused[i];
        const std::string line = std::regex_replace(lines().at(i), variable, "time$1some$2");
        EXPECT_EQ("time  " + std::to_string(action) + ' ' + words + "  " + type + ": " + text +
                      "  (some bytes)",
                  std::regex_replace(line, std::regex("port [0-9]+ on"), "port 0 on"));
    }
}

TEST_F(NyctlWatch, ShowsEveryNotificationAsAnObject) {
    m_options.json = true;
    watchAll();
    for (size_t i = 0; i < std::size(kCaused); ++i) {
        nlohmann::json shown = objects().at(i);
        if (shown["object"].contains("port")) shown["object"]["port"] = 0;
        EXPECT_EQ(kCaused[i].action, shown["action"]);
        EXPECT_EQ(kCaused[i].words, shown["words"]);
        EXPECT_EQ(kCaused[i].type, shown["class"]);
        EXPECT_EQ(nlohmann::json::parse(kCaused[i].object), shown["object"]);
        EXPECT_EQ(6U, shown.size());
    }
}

TEST_F(NyctlWatch, PrintsTheTimeAndTheSizeOfThePayload) {
    m_options.json = true;
    NySeMessage saved = message("saved");
    watchUntil(1, [&] { client.sendAllUserData(saved); });
    EXPECT_EQ(archived(saved).size(), objects().at(0)["size"]);
    const std::regex utc("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z");
    EXPECT_TRUE(std::regex_match(objects().at(0)["time"].get<std::string>(), utc))
        << m_run.printed();
}

TEST_F(NyctlWatch, NamesEachHolderOfALock) {
    NySeClientApp carl;
    connect(carl);
    watchUntil(2, [&] {
        client.lock("a", 0x02);
        carl.lock("a", 0x05);
    });
    EXPECT_THAT(lines().at(1), HasSubstr("a, held by session 1 (access2), session 2 (access1)"));
}

TEST_F(NyctlWatch, AcceptsPayloadsThatAreNoObject) {
    const std::string message = archived(CentralTest::message("after"));
    std::string unknown = message;
    unknown.replace(unknown.find("NySeMessage"), 3, "Xyz");
    const auto act = [&] {
        for (const std::string& one :
             {std::string("xyz"), unknown, message.substr(0, 20), std::string(2, '\0'), message})
            sendAll(one);
    };
    watchUntil(5, act);
    EXPECT_THAT(lines().at(0), HasSubstr("58 data for all  no object  (3 bytes)"));
    for (size_t i = 0; i < 4; ++i) EXPECT_THAT(lines().at(i), HasSubstr("no object"));
    EXPECT_THAT(lines().at(4), HasSubstr("NySeMessage: after"));
}

TEST_F(NyctlWatch, ShowsNoObjectAndObjectsWithoutWordsAsNull) {
    m_options.json = true;
    NySeUserPtrArray users;
    watchUntil(2, [&] {
        sendAll("xyz");
        client.sendAllUserData(users);
    });
    EXPECT_TRUE(objects().at(0)["class"].is_null());
    EXPECT_EQ(3, objects().at(0)["size"]);
    EXPECT_EQ("NySeUserPtrArray", objects().at(1)["class"]);
    for (const nlohmann::json& shown : objects()) EXPECT_TRUE(shown["object"].is_null());
}

TEST_F(NyctlWatch, TextsOfOthersDoNotControlTheTerminal) {
    NySeMessage hostile = message("a\x1b[2Jb\nc");
    watchUntil(1, [&] { client.sendAllUserData(hostile); });
    EXPECT_THAT(m_run.printed(), HasSubstr("a?[2Jb?c"));
}

TEST_F(NyctlWatch, EndsAfterTheCountAlthoughMoreArrive) {
    const auto act = [this] {
        for (int i = 0; i < 20; ++i) client.lock("a", 0x01);
    };
    watchUntil(2, act);
}

TEST_F(NyctlWatch, TheTimeMayEndBeforeTheCountIsReached) {
    // On a busy machine it may be up before the one has come, too.
    for (const char* seconds : {"1.5", "6", "24"}) {
        std::atomic<bool> isUp = false;
        std::thread actor([&] {
            eventually([&] { return isUp || isWatching(); });
            client.lock("a", 0x01);
        });
        EXPECT_EQ(exitTimeOut, watch("--count 2 --timeout " + std::string(seconds)));
        isUp = true;
        actor.join();
        if (!lines().empty()) break;
    }
    EXPECT_EQ(1U, lines().size());
}

TEST_F(NyctlWatch, TheTimeAloneEndsItWithSuccess) {
    const ULONGLONG begin = ::GetTickCount64();
    EXPECT_EQ(exitYes, watch("--timeout 0.3"));
    EXPECT_GE(::GetTickCount64() - begin, 280U);
    EXPECT_EQ("", m_run.printed());
    EXPECT_THAT(m_run.complaint(), HasSubstr("nyctl: listening on port "));
}

TEST_F(NyctlWatch, RefusesACountOrATimeThatIsNotPositive) {
    for (const char* options : {"--count 0", "--count -1", "--timeout 0", "--timeout -1"}) {
        EXPECT_THROW(watch(options), CLI::ParseError) << options;
    }
}

TEST_F(NyctlWatch, AStopRequestEndsItWithSuccess) {
    EXPECT_EQ(exitYes, watchWhile([] { StopRequest::request(); }, "--count 1 --timeout 60"));
    EXPECT_EQ("", m_run.printed());
}

TEST_F(NyctlWatch, AnEarlierStopRequestIsIgnored) {
    StopRequest::request();
    EXPECT_EQ(exitTimeOut, watch("--count 1 --timeout 0.2"));
}

TEST_F(NyctlWatch, InTheShellItHasToEnd) {
    m_options.isShell = true;
    EXPECT_EQ(exitUsage, watch(""));
    EXPECT_EQ("nyctl: in the shell, watch needs --count or --timeout\n", m_run.complaint());
    EXPECT_FALSE(isThere("Bob"));
    EXPECT_EQ(exitYes, watch("--timeout 0.1"));
    EXPECT_EQ(exitTimeOut, watch("--count 1 --timeout 0.1"));
}

// What comes in between is not shown, but the server goes on to find a listener.
TEST_F(NyctlWatch, TheNextOneUsesTheSameListener) {
    EXPECT_EQ(exitYes, watch("--timeout 0.1"));
    const LONG port = bob().getPort();
    const NySe::UniqueSocket link = peers::connectTo(static_cast<unsigned int>(port));
    const std::string between = wireOf(notifyLockGranted) + wireOf<LONG>(0);
    const std::string probe = wireOf<LONG>(NySe::actionIsAlive) + wireOf<LONG>(0);
    ::send(link.get(), (between + probe).data(), static_cast<int>((between + probe).size()), 0);
    LONG answer = 0;  // once what came before has been dropped
    ::recv(link.get(), reinterpret_cast<char*>(&answer), sizeof answer, MSG_WAITALL);
    EXPECT_EQ(NySe::kAliveAnswer, answer);
    watchUntil(1, [this] { client.lock("now", 0x01); });
    EXPECT_EQ(port, bob().getPort());
    EXPECT_EQ(port, session.listener().getPortNumber());
    EXPECT_THAT(lines().at(0), HasSubstr("NySeLock: now"));
    EXPECT_EQ(0, session.listener().getPostMsgCount());
}

TEST_F(NyctlWatch, AUserRegisteredEarlierGetsAnotherPort) {
    ASSERT_TRUE(session.registerUser());
    const LONG first = bob().getPort();
    const auto act = [&] {
        EXPECT_TRUE(eventually([&] { return bob().getPort() != first; }));
        client.lock("a", 0x01);
    };
    watchUntil(1, act);
    EXPECT_NE(first, session.listener().getPortNumber());
    EXPECT_EQ(session.user().getPort(), session.listener().getPortNumber());
}

// A port that this machine has not free, and one that it has.
class NyctlWatchTakenPort : protected TakenPort, public NyctlWatch {
  protected:
    NyctlWatchTakenPort() : NyctlWatch({TakenPort::port(), freePorts(1)[0]}) {}
};

TEST_F(NyctlWatchTakenPort, IsSkipped) {
    const auto act = [this] {
        // What is told before that goes to the occupant.
        EXPECT_TRUE(eventually([this] { return bob().getPort() != TakenPort::port(); }));
        client.lock("a", 0x01);
    };
    watchUntil(1, act);
    EXPECT_NE(TakenPort::port(), session.listener().getPortNumber());
}

class NyctlWatchNoPort : protected TakenPort, public NyctlWatch {
  protected:
    NyctlWatchNoPort() : NyctlWatch({TakenPort::port()}) {}
};

TEST_F(NyctlWatchNoPort, IsRefused) {
    EXPECT_EQ(exitNo, watch("--timeout 5"));
    EXPECT_THAT(m_run.complaint(),
                HasSubstr("nyctl: the server has no port that is free on this machine\n"));
}

// A listener of which nobody knows.
struct NyctlWatchWindow : ::testing::Test {
    void post() {
        NySeMemFile message;
        message.writeAction(NySe::actionNotification50, NySe::schema2015);
        listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, message);
    }

    NyServerApp listener;
    int shown = 0;
    std::unique_ptr<WatchWindow> window =
        std::make_unique<WatchWindow>(listener, [this](NySe::ActionType, CMemFile&) { ++shown; });
};

TEST_F(NyctlWatchWindow, DiscardsPendingNotificationsWhenItIsDestroyed) {
    post();
    post();
    EXPECT_EQ(2, listener.getPostMsgCount());
    window.reset();
    EXPECT_EQ(0, listener.getPostMsgCount());
    EXPECT_EQ(0, shown);
    post();
    EXPECT_EQ(0, listener.getPostMsgCount());
}

TEST_F(NyctlWatchWindow, IgnoresAMessageWithoutANotification) {
    ::SendMessageW(window->GetSafeHwnd(), NySe::_TM_NYSERVERMESSAGE, 100, 0);
    EXPECT_EQ(0, shown);
}

}  // namespace
