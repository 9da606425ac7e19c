// What the user asks for by the keyboard.
#include "apps/nyctl/WatchWindow.h"
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

TEST_F(MonitorRequests, ControlLLocks) {
    keys::pressWithControl('L');
    answer(L"Lock", "deck");
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {"deck"}));
    EXPECT_TRUE(hasLogged("Lock", "deck (access1+access2+exclude1+exclude2): granted"));
    EXPECT_EQ(std::vector<unsigned>{0x1B}, anna->modesOf("deck"));
}

TEST_F(MonitorRequests, ALockHasTheModeThatIsTicked) {
    keys::pressWithControl('L');
    const HWND asked = dialog(L"Lock");
    ASSERT_NE(nullptr, asked);
    keys::type("a");
    keys::press(VK_TAB);
    keys::press(VK_SPACE);
    keys::press(VK_RETURN);
    EXPECT_TRUE(hasLogged("Lock", "a (access2+exclude1+exclude2): granted"));
    EXPECT_EQ(std::vector<unsigned>{0x1A}, anna->modesOf("a"));
}

TEST_F(MonitorRequests, ARefusedLockIsSaidSo) {
    anna->client.lock("deck", 0x18);
    keys::pressWithControl('L');
    answer(L"Lock", "deck");
    EXPECT_TRUE(hasLogged("Lock", "deck (access1+access2+exclude1+exclude2): refused"));
}

TEST_F(MonitorRequests, ControlUUnlocks) {
    keys::pressWithControl('L');
    answer(L"Lock", "deck");
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {"deck"}));
    keys::pressWithControl('U');
    answer(L"Unlock", "deck");
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {}));
    EXPECT_TRUE(hasLogged("Unlock", "deck: sent"));
    EXPECT_TRUE(anna->modesOf("deck").empty());
}

TEST_F(MonitorRequests, TheChosenRowIsProposed) {
    anna->client.openConnection("model");
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {"model"}));
    tabTo(IDC_CONNECTIONS);
    keys::press(VK_DOWN);
    keys::pressWithControl('O');
    const HWND asked = dialog(L"Open connection");
    ASSERT_NE(nullptr, asked);
    EXPECT_EQ("model", textOf(::GetDlgItem(asked, IDC_TEXT)));
    keys::press(VK_RETURN);
    EXPECT_TRUE(hasLogged("Open", "model: opened, id 0"));
    EXPECT_EQ(2, anna->opensOf("model"));
}

TEST_F(MonitorRequests, ControlOOpensAndControlWCloses) {
    keys::pressWithControl('O');
    answer(L"Open connection", "bridge");
    EXPECT_TRUE(hasLogged("Open", "bridge: opened, id 0"));
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {"bridge"}));
    keys::pressWithControl('W');
    answer(L"Close connection", "0");
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {}));
    EXPECT_TRUE(hasLogged("Close", "bridge: sent"));
    EXPECT_EQ(0, anna->opensOf("bridge"));
    keys::pressWithControl('W');
    answer(L"Close connection", "0");
    EXPECT_TRUE(hasLogged("Close", "0: there is no such connection"));
}

TEST_F(MonitorRequests, ClosingTakesAnIdBeforeAStringAndAlsoWhatTheFilterHides) {
    for (const char* name : {"1", "bridge"}) anna->client.openConnection(name);
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {"1", "bridge"}));
    typeFilter("anna");
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 1, {}));
    keys::pressWithControl('W');
    answer(L"Close connection", "1");
    EXPECT_TRUE(hasLogged("Close", "bridge: sent"));
}

TEST_F(MonitorRequests, F2Renames) {
    keys::press(VK_F2);
    answer(L"Rename", "doris");
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "doris"}));
    EXPECT_TRUE(soon([this] {
        return status(StatusBar::connection).find(" as doris, session ") != std::string::npos;
    }));
    EXPECT_TRUE(hasLogged("Rename", "doris: taken"));
}

TEST_F(MonitorRequests, AnEmptyNameIsNotTaken) {
    keys::press(VK_F2);
    const HWND asked = dialog(L"Rename");
    ASSERT_NE(nullptr, asked);
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

TEST_F(MonitorSending, ControlMSendsToEverybody) {
    keys::pressWithControl('M');
    answer(L"Send message", "hello");
    EXPECT_TRUE(hasLogged("Send", "to everybody: sent"));
    EXPECT_TRUE(receives("58 hello"));
}

TEST_F(MonitorSending, ControlMSendsToOneUser) {
    keys::pressWithControl('M');
    const HWND asked = dialog(L"Send message");
    ASSERT_NE(nullptr, asked);
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
    keys::pressWithControl('M');
    const HWND asked = dialog(L"Send message");
    ASSERT_NE(nullptr, asked);
    const HWND box = ::GetDlgItem(asked, IDC_RECEIVER);
    Texts names;
    for (WPARAM i = 0; i < static_cast<WPARAM>(::SendMessageW(box, CB_GETCOUNT, 0, 0)); ++i) {
        wchar_t name[64] = L"";
        ::SendMessageW(box, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(name));
        names.push_back(utf8(name));
    }
    EXPECT_EQ((Texts{"everybody", "anna", "carl"}), names);
    keys::press(VK_ESCAPE);
}

}  // namespace
