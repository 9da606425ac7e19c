// nyctl doctor: each check on a central server that is all right, and on one that is not.
#include <atomic>

#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "tests/apps/AnsweringServer.h"
#include "tests/apps/CentralTest.h"
#include "tests/apps/FrameListener.h"
#include "tests/apps/ListenerPorts.h"
#include "tests/apps/NyctlRun.h"
#include "tests/support/MessageHook.h"

namespace {

constexpr const char* kNames[] = {"name look-up", "connect",       "schema",      "liveness",
                                  "registration", "listener port", "notification"};
constexpr size_t kChecks = std::size(kNames);

enum Check { nameLookUp, connecting, schema, liveness, registration, listenerPort, windowMessage };

// One run of the doctor.
class DoctorRun {
  public:
    ExitStatus operator()(const std::string& server, const std::string& arguments = "") {
        m_options.server = server;
        return m_run(m_options, "doctor " + arguments);
    }

    // It ended at this check, which found what begins so; what was before is well.
    void expectEndsAt(Check check, const std::string& found) const {
        const std::vector<nlohmann::json> shown = checks();
        ASSERT_EQ(kChecks, shown.size()) << m_run.printed() << m_run.complaint();
        for (size_t i = 0; i < kChecks; ++i) {
            EXPECT_EQ(kNames[i], shown[i]["check"]);
            const size_t end = check;
            EXPECT_EQ(i < end    ? "ok"
                      : i == end ? "failed"
                                 : "not reached",
                      shown[i]["result"])
                << m_run.printed();
        }
        const nlohmann::json& failed = shown[check];
        EXPECT_EQ(0U, failed.value("found", "").find(found)) << failed;
        EXPECT_NE("", failed.value("means", ""));
        EXPECT_NE("", failed.value("do", ""));
    }
    void expectAllIsWell() const {
        ASSERT_EQ(kChecks, checks().size()) << m_run.printed() << m_run.complaint();
        for (const nlohmann::json& check : checks()) EXPECT_EQ("ok", check["result"]) << check;
    }

    std::vector<nlohmann::json> checks() const {
        std::vector<nlohmann::json> parsed;
        for (const std::string& line : Output::split(m_run.printed()))
            parsed.push_back(nlohmann::json::parse(line));
        return parsed;
    }
    Options& options() { return m_options; }
    NyctlRun& run() { return m_run; }

  private:
    Options m_options{{"", "system"}, true};
    NyctlRun m_run;
};

class NyctlDoctor : public CentralTest {
  protected:
    explicit NyctlDoctor(const std::vector<LONG>& ports = freePorts(4))
        : CentralTest(withPorts(ports)) {}

    ExitStatus examine() { return doctor(address()); }

    DoctorRun doctor;
};

TEST_F(NyctlDoctor, FindsNoFault) {
    EXPECT_EQ(exitYes, examine());
    doctor.expectAllIsWell();
    EXPECT_EQ("127.0.0.1 is an address", doctor.checks()[nameLookUp]["found"]);
    EXPECT_EQ(address() + " accepts connections", doctor.checks()[connecting]["found"]);
    EXPECT_EQ("2015", doctor.checks()[schema]["found"]);
    EXPECT_EQ(exitYes, doctor("localhost:" + std::to_string(server.GetPort())));
    EXPECT_EQ("localhost is 127.0.0.1", doctor.checks()[nameLookUp]["found"]);
}

// Bob hears of the others.
struct BobsEar {
    FrameListener ofBob;
};

class NyctlDoctorObserved : protected BobsEar, public NyctlDoctor {
  protected:
    NyctlDoctorObserved() : NyctlDoctor({ofBob.port(), freePorts(1)[0]}) {}
};

// Bob is told that a user comes and goes, and nothing of what the doctor sends itself.
TEST_F(NyctlDoctorObserved, RegistersUnderItsOwnNameAndUnregisters) {
    join(client, "Bob");
    EXPECT_EQ(exitYes, examine());
    EXPECT_TRUE(eventually([this] { return ofBob.frames().size() >= 2; }));
    const std::vector<ReceivedFrame> frames = ofBob.frames();
    ASSERT_EQ(2U, frames.size());
    EXPECT_EQ(54, frames[0].number);
    EXPECT_EQ(55, frames[1].number);
    std::string wide;
    for (const char character : std::string("nyctl doctor")) wide += {character, '\0'};
    EXPECT_NE(std::string::npos, frames[0].body.find(wide));
    EXPECT_EQ(std::vector<std::string>{"Bob"}, userNames(client));
}

TEST_F(NyctlDoctor, RegistersUnderTheChosenName) {
    doctor.options().user = "Anna";
    doctor.options().isUserChosen = true;
    EXPECT_EQ(exitYes, examine());
    EXPECT_EQ(0U, doctor.checks()[registration].value("found", "").find("Anna is session"));
}

TEST_F(NyctlDoctor, LeavesTheShellsConnectionAlone) {
    Options options{{address(), "Anna"}, true};
    Session shell(options);
    ASSERT_TRUE(shell.registerUser());
    EXPECT_EQ(exitYes, doctor.run()(shell, options, "doctor"));
    EXPECT_TRUE(shell.client().isAlive());
    EXPECT_EQ(std::vector<std::string>{"Anna"}, userNames(shell.client()));
}

// Makes no window on this thread as long as it lives.
class NoWindows {
  public:
    NoWindows() : m_hook(::SetWindowsHookExW(WH_CBT, &refuse, nullptr, ::GetCurrentThreadId())) {}
    ~NoWindows() { ::UnhookWindowsHookEx(m_hook); }
    NoWindows(const NoWindows&) = delete;
    NoWindows& operator=(const NoWindows&) = delete;

  private:
    static LRESULT CALLBACK refuse(int code, WPARAM wParam, LPARAM lParam) {
        return code == HCBT_CREATEWND ? 1 : ::CallNextHookEx(nullptr, code, wParam, lParam);
    }

    HHOOK m_hook;
};

TEST_F(NyctlDoctor, ReportsAWindowThatCannotBeCreated) {
    const NoWindows none;
    EXPECT_EQ(exitNo, examine());
    doctor.expectEndsAt(windowMessage, "the window cannot be created");
}

// No central server, one that follows a test, or one with few ports.
class NyctlDoctorAlone : public ::testing::Test {
  protected:
    // All is well up to and with the registration.
    Answers registering() const {
        return {{NySe::actionInitializeSchema, m_agreed},
                {NySe::actionIsAlive, m_alive},
                {NySe::actionGetPortClient, answering(registrationAnswer(m_port))}};
    }
    // With a longer timeout than any failure but the timeout itself takes.
    ExitStatus examine(Answers answers, int timeOut = 60) {
        AnsweringServer server(std::move(answers));
        return doctor(server.address(), "--timeout " + std::to_string(timeOut));
    }

    ExitStatus examineCentral(const std::vector<LONG>& ports) {
        CentralServer server(withPorts(ports));
        EXPECT_EQ(0, server.start(::htonl(INADDR_LOOPBACK), 0));
        return doctor("127.0.0.1:" + std::to_string(server.GetPort()));
    }

    const Answer m_agreed = answering(wireOf<LONG>(NySe::schema2015));
    const Answer m_alive = answering(wireOf<LONG>(NySe::kAliveAnswer));
    const LONG m_port = freePorts(1)[0];
    DoctorRun doctor;
};

TEST_F(NyctlDoctorAlone, ReportsARegistrationThatIsRefused) {
    EXPECT_EQ(exitNo, examineCentral({}));
    doctor.expectEndsAt(registration, "the server refuses nyctl doctor");
}

TEST_F(NyctlDoctorAlone, ReportsPortsThatAreInUseUnlessAnotherIsFree) {
    const TakenPort taken;
    EXPECT_EQ(exitNo, examineCentral({taken.port()}));
    doctor.expectEndsAt(listenerPort, "the server has no port that is free on this machine");
    EXPECT_EQ(exitYes, examineCentral({taken.port(), freePorts(1)[0]}));
    doctor.expectAllIsWell();
}

TEST_F(NyctlDoctorAlone, ReportsANameThatDoesNotResolve) {
    EXPECT_EQ(exitNoReply, doctor("no-such-host.invalid:1"));
    doctor.expectEndsAt(nameLookUp, "no address of no-such-host.invalid");
}

TEST_F(NyctlDoctorAlone, ReportsAPortThatRefusesInThreeRows) {
    const peers::RefusingPort nobody;
    const std::string server = "127.0.0.1:" + std::to_string(nobody.port());
    EXPECT_EQ(exitNoReply, doctor(server));
    doctor.expectEndsAt(connecting, server + " refuses connections");
    doctor.options().json = false;
    EXPECT_EQ(exitNoReply, doctor(server));
    const std::vector<std::string> lines = Output::split(doctor.run().printed());
    ASSERT_EQ(kChecks + 2, lines.size());
    EXPECT_EQ("name look-up    ok           127.0.0.1", lines[0].substr(0, 38));
    EXPECT_EQ("connect         FAILED       127.0.0.1:", lines[1].substr(0, 39));
    EXPECT_EQ("                it means     the machine", lines[2].substr(0, 40));
    EXPECT_EQ("                do           start the central server", lines[3].substr(0, 53));
    EXPECT_EQ("schema          not reached", lines[4]);
}

TEST_F(NyctlDoctorAlone, ReportsAPortThatDoesNotRespond) {
    const peers::UnansweringPort silent;
    const std::string server = "127.0.0.1:" + std::to_string(silent.port());
    EXPECT_EQ(exitNoReply, doctor(server, "--timeout 1"));
    doctor.expectEndsAt(connecting, server + " does not respond within 1 s");
}

TEST_F(NyctlDoctorAlone, ReportsTheStepAtWhichAServerStops) {
    const auto agreed = std::pair(LONG{NySe::actionInitializeSchema}, m_agreed);
    const auto otherLife = std::pair(LONG{NySe::actionIsAlive}, answering(wireOf<LONG>(5)));
    const struct {
        Answers answers;
        ExitStatus status;
        Check check;
        const char* found;
    } cases[] = {
        {{}, exitNoReply, schema, "the server closes the connection"},
        {{{agreed.first, answering(wireOf<LONG>(2010))}},
         exitNo,
         schema,
         "the server grants 2010, not 2015"},
        {{agreed}, exitNoReply, liveness, "the server does not reply"},
        {{agreed, otherLife}, exitNoReply, liveness, "the server does not reply"},
        {{agreed, {otherLife.first, m_alive}}, exitNoReply, registration, "no reply"},
    };
    for (const auto& [answers, status, check, found] : cases) {
        SCOPED_TRACE(found);
        EXPECT_EQ(status, examine(answers));
        doctor.expectEndsAt(check, found);
    }
}

// Waits as long as the library does.
TEST_F(NyctlDoctorAlone, ReportsAServerThatNeverReplies) {
    EXPECT_EQ(exitNoReply, examine({{NySe::actionInitializeSchema, answering("")}}));
    doctor.expectEndsAt(schema, "no schema within 15 s");
}

TEST_F(NyctlDoctorAlone, ReportsAListenerPortWithoutAConnection) {
    auto answers = registering();
    answers[NySe::actionSendUserData] = answering("");
    EXPECT_EQ(exitNoReply, examine(answers, 2));
    doctor.expectEndsAt(listenerPort,
                        "no connection to port " + std::to_string(m_port) + " within 2 s");
}

TEST_F(NyctlDoctorAlone, ReportsAServerWithoutASecondSession) {
    std::atomic<bool> isFirst = true;
    auto answers = registering();
    answers[NySe::actionInitializeSchema] = [&](const std::string&) -> std::optional<std::string> {
        if (!isFirst.exchange(false)) return std::nullopt;
        return wireOf<LONG>(NySe::schema2015);
    };
    EXPECT_EQ(exitNoReply, examine(answers));
    doctor.expectEndsAt(listenerPort, "the server accepts no second session");
}

// One that comes to the listener at the first text, and says `told` at the second.
class NyctlDoctorNotified : public NyctlDoctorAlone {
  protected:
    // Waited for in full; what has to come before that has as long.
    static constexpr int kShort = 15;

    ExitStatus examineTold(const std::function<std::string(const std::string& object)>& told,
                           int timeOut = kShort) {
        std::unique_ptr<peers::Connection> toListener;
        auto answers = registering();
        answers[NySe::actionSendUserData] = [&](const std::string& payload) {
            if (toListener) {
                toListener->send(told(payload.substr(payload.find("NySeMessage") - 6)));
            } else {
                toListener = std::make_unique<peers::Connection>(
                    peers::connectionTo(static_cast<unsigned int>(m_port)));
            }
            return std::string();
        };
        return examine(answers, timeOut);
    }
    static std::string notification(LONG number, const std::string& object) {
        return wireOf(number) + wireOf(static_cast<LONG>(object.size())) + object;
    }
};

TEST_F(NyctlDoctorNotified, FailsOnAnotherText) {
    EXPECT_EQ(exitNoReply, examineTold([](std::string object) {
                  object.end()[-2] ^= 1;  // its last character
                  return notification(57, object) + notification(58, "");
              }));
    doctor.expectEndsAt(windowMessage, "no notification within 15 s");
}

// Lets the first notification through to the window when the second is there, and loses that one.
// Who sees it finds it counted: it is posted and counted under the lock under which one asks.
class LosingSecond : MessageHook<LosingSecond> {
  public:
    LosingSecond() { s_seen = 0; }

    static void onMessage(MSG& message, bool isRemoved) {
        if (!isRemoved || message.message != NySe::_TM_NYSERVERMESSAGE) return;
        if (++s_seen == 1) {
            eventually(&isSecondThere, std::chrono::seconds(30));
        } else {
            const NySe::UniqueGlobalBlock block(
                ::GlobalHandle(reinterpret_cast<void*>(message.lParam)));
            message.message = WM_NULL;
        }
    }

  private:
    static bool isSecondThere() {
        MSG next;
        return ::PeekMessageW(&next, nullptr, NySe::_TM_NYSERVERMESSAGE, NySe::_TM_NYSERVERMESSAGE,
                              PM_NOREMOVE) != FALSE;
    }

    static inline int s_seen = 0;
};

TEST_F(NyctlDoctorNotified, ReportsAMessageThatIsNotConsumed) {
    const LosingSecond losing;
    EXPECT_EQ(exitNo, examineTold([](const std::string& object) {
                  return notification(57, object) + notification(58, "");
              }));
    doctor.expectEndsAt(windowMessage, "messages that are not consumed: 1");
}

}  // namespace
