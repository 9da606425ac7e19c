// What the user asks for by the keyboard.
#include "apps/nyctl/windows/WatchWindow.h"
#include "NyServer/framing/NySeReply.h"
#include "tests/monitor/MonitorTest.h"

using namespace apps::monitor;

namespace {

class MonitorRequests : public MonitorTest {
  protected:
    void SetUp() override {
        startServer();
        anna = std::make_unique<OtherUser>(server->port(), "anna");
        openConnected();
    }
    std::unique_ptr<OtherUser> anna;
};

TEST_F(MonitorRequests, ControlLLocksAndControlUUnlocks) {
    ask('L', L"Lock", "deck");
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {"deck"}));
    EXPECT_TRUE(hasLogged("Lock", "deck (access1+access2+exclude1+exclude2): granted"));
    EXPECT_EQ(std::vector<unsigned>{0x1B}, anna->modesOf("deck"));
    ask('U', L"Unlock", "deck");
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {}));
    EXPECT_TRUE(hasLogged("Unlock", "deck: sent"));
    EXPECT_TRUE(anna->modesOf("deck").empty());
    anna->client.lock("deck", 0x18);
    ask('L', L"Lock", "deck");
    EXPECT_TRUE(hasLogged("Lock", "deck (access1+access2+exclude1+exclude2): refused"));
}

TEST_F(MonitorRequests, ALockHasTheModeThatIsTicked) {
    open('L', L"Lock");
    keys::type("a");
    keys::press(VK_TAB);
    keys::press(VK_SPACE);
    keys::press(VK_RETURN);
    EXPECT_TRUE(hasLogged("Lock", "a (access2+exclude1+exclude2): granted"));
    EXPECT_EQ(std::vector<unsigned>{0x1A}, anna->modesOf("a"));
}

TEST_F(MonitorRequests, TheChosenRowIsProposed) {
    anna->client.openConnection("model");
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {"model"}));
    tabTo(IDC_CONNECTIONS);
    keys::press(VK_DOWN);
    const HWND asked = open('O', L"Open connection");
    EXPECT_EQ("model", textOf(::GetDlgItem(asked, IDC_TEXT)));
    keys::press(VK_RETURN);
    EXPECT_TRUE(hasLogged("Open", "model: opened, id 0"));
    EXPECT_EQ(2, anna->opensOf("model"));
}

TEST_F(MonitorRequests, ControlOOpensAndControlWCloses) {
    ask('O', L"Open connection", "bridge");
    EXPECT_TRUE(hasLogged("Open", "bridge: opened, id 0"));
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {"bridge"}));
    ask('W', L"Close connection", "0");
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {}));
    EXPECT_TRUE(hasLogged("Close", "bridge: sent"));
    EXPECT_EQ(0, anna->opensOf("bridge"));
    ask('W', L"Close connection", "0");
    EXPECT_TRUE(hasLogged("Close", "0: there is no such connection"));
}

TEST_F(MonitorRequests, ClosingTakesAnIdBeforeAStringAndAlsoWhatTheFilterHides) {
    for (const char* name : {"1", "bridge"}) anna->client.openConnection(name);
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {"1", "bridge"}));
    typeFilter("anna");
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {}));
    ask('W', L"Close connection", "1");
    EXPECT_TRUE(hasLogged("Close", "bridge: sent"));
}

TEST_F(MonitorRequests, AnEmptyNameIsNotAccepted) {
    const HWND asked = open(VK_F2, L"Rename");
    EXPECT_FALSE(::IsWindowEnabled(::GetDlgItem(asked, IDOK)));
    keys::type("d");
    EXPECT_TRUE(soon([&] { return ::IsWindowEnabled(::GetDlgItem(asked, IDOK)); }));
    keys::press(VK_ESCAPE);
    EXPECT_TRUE(soon([&] { return !::IsWindow(asked); }));
    EXPECT_TRUE(logged("Rename").empty());
}

// Carl, with a listener: what he is sent is kept.
class MonitorSending : public MonitorRequests {
  protected:
    void SetUp() override {
        MonitorRequests::SetUp();
        m_account = {"127.0.0.1:" + std::to_string(server->port()), "carl"};
        m_window = std::make_unique<apps::nyctl::WatchWindow>(
            m_session.listener(), [this](NySe::ActionType action, CMemFile& payload) {
                const std::unique_ptr<CObject> sent(
                    NySe::readReplyObject(payload, RUNTIME_CLASS(NySeMessage)));
                if (sent)
                    m_received = std::to_string(action) + ' ' +
                                 toUtf8(static_cast<NySeMessage&>(*sent).getStrMessage());
            });
        ASSERT_TRUE(m_session.listen());
        EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "carl", "dora"}));
    }
    bool receives(const std::string& message) {
        return soon([&] {
            MSG posted;
            while (::PeekMessageW(&posted, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&posted);
            return m_received == message;
        });
    }

  private:
    Account m_account;
    Session m_session{m_account};
    std::unique_ptr<apps::nyctl::WatchWindow> m_window;
    std::string m_received;
};

TEST_F(MonitorSending, ControlMSendsToEverybodyOrOneUser) {
    ask('M', L"Send message", "hello");
    EXPECT_TRUE(hasLogged("Send", "to everybody: sent"));
    EXPECT_TRUE(receives("58 hello"));
    open('M', L"Send message");
    keys::type("hello");
    keys::press(VK_TAB);
    keys::type("c");
    keys::press(VK_RETURN);
    EXPECT_TRUE(hasLogged("Send", "to carl: sent"));
    EXPECT_TRUE(receives("57 hello"));
}

TEST_F(MonitorSending, TheReceiversAreAllOthersAlsoThoseWhomTheFilterHides) {
    typeFilter("anna");
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna"}));
    const HWND asked = open('M', L"Send message");
    const HWND box = ::GetDlgItem(asked, IDC_RECEIVER);
    Texts names;
    for (WPARAM i = 0; i < static_cast<WPARAM>(::SendMessageW(box, CB_GETCOUNT, 0, 0)); ++i) {
        names.push_back(readText(box, CB_GETLBTEXT, i));
    }
    EXPECT_EQ((Texts{"everybody", "anna", "carl"}), names);
    keys::press(VK_ESCAPE);
}

}  // namespace
