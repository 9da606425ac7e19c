#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/Probes.h"
#include "tests/support/Gate.h"
#include "tests/support/Guarded.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// Not resolved by any service: a label of a host name has at most 63 characters.
const std::string kImpossibleName(64, 'x');

class AsyncClient : public ProbeClient {
  public:
    std::vector<std::pair<int, int>> events;  // what OnAsyncNotify was given: event and error
    std::vector<int> nameErrors;
    std::vector<int> addressErrors;
    DWORD notifiedThread = 0;
    bool throws = false;

    HWND window() const { return m_notificationWindow; }
    int init() {
        const int result = InitAsync(::GetModuleHandleW(nullptr));
        codes.clear();
        return result;
    }
    int lookUpAddress(const char* name = "localhost") {
        return AsyncGetAddressFromName(name, nullptr, 0);
    }
    int lookUpName() { return AsyncGetNameFromAddress("127.0.0.1", nullptr, 0); }

    const hostent& host() const { return *reinterpret_cast<const hostent*>(m_hostBuffer); }
    bool isAnythingWritten() const {
        const volatile char* bytes = m_hostBuffer;  // the system writes on a thread of its own
        return std::any_of(bytes, bytes + sizeof m_hostBuffer, [](char byte) { return byte != 0; });
    }
    void clearHost() { std::fill_n(m_hostBuffer, sizeof m_hostBuffer, '\0'); }
    bool holds(const void* part) const {
        const auto* byte = static_cast<const char*>(part);
        return byte >= m_hostBuffer && byte < m_hostBuffer + sizeof m_hostBuffer;
    }
    // Whether it holds the list, which ends with a null, and what that refers to.
    bool holdsAll(char** list) const {
        return std::all_of(list, std::find(list, list + 64, nullptr),
                           [this](char* part) { return holds(part); }) &&
               holds(list);
    }

  protected:
    void OnAsyncNotify(int event, int error) override {
        notifiedThread = ::GetCurrentThreadId();
        events.emplace_back(event, error);
        if (throws) throw std::runtime_error("from a hook");
    }
    void OnAsyncGetNameNotify(int error) override { nameErrors.push_back(error); }
    void OnAsyncGetAddressNotify(int error) override { addressErrors.push_back(error); }
};

// Dispatches messages until `isDone`. False after kTimeOut.
template <class Condition>
bool pumpUntil(Condition isDone) {
    return eventually(
        [&] {
            MSG message;
            while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
            return isDone();
        },
        peers::kTimeOut);
}

class ClientAsync : public testing::Test {
  protected:
    void init() { ASSERT_EQ(m_client.init(), UTE_SUCCESS); }
    void connectAndSelect(const peers::Peer& peer, long events) {
        init();
        ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
        ASSERT_EQ(m_client.SetAsyncNotify(events), UTE_SUCCESS);
    }
    bool gets(int event) {
        const auto matcher = Contains(Pair(event, 0));
        return pumpUntil([&] { return testing::Value(m_client.events, matcher); });
    }
    // The result that a look-up was started with, or of its announcement.
    int addressLookedUp(const char* name = "localhost") {
        if (m_client.lookUpAddress(name) != UTE_SUCCESS) return -1;
        return pumpUntil([&] { return !m_client.addressErrors.empty(); })
                   ? m_client.addressErrors.front()
                   : -1;
    }
    int nameLookedUp() {
        if (m_client.lookUpName() != UTE_SUCCESS) return -1;
        return pumpUntil([&] { return !m_client.nameErrors.empty(); }) ? m_client.nameErrors.front()
                                                                       : -1;
    }
    // Enough rounds for some look-ups to end after what the caller does meanwhile.
    template <class Round>
    static void repeat(Round round) {
        for (int i = 0; i < 100; ++i) round();
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return ::SendMessageW(m_client.window(), message, wParam, lParam);
    }

    AsyncClient m_client;
};

TEST_F(ClientAsync, CreatesAHiddenWindowOfItsClass) {
    EXPECT_EQ(m_client.InitAsync(::GetModuleHandleW(nullptr)), UTE_SUCCESS);
    EXPECT_THAT(m_client.codes, ElementsAre(0));
    wchar_t name[32] = L"";
    ::GetClassNameW(m_client.window(), name, 32);
    EXPECT_STREQ(name, L"CUT_WSClient");
    EXPECT_FALSE(::IsWindowVisible(m_client.window()));
    EXPECT_EQ(::GetParent(m_client.window()), nullptr);
    EXPECT_EQ(::GetWindowTextLengthW(m_client.window()), 0);
}

TEST_F(ClientAsync, RegistersTheClassOnce) {
    init();
    WNDCLASSW found{};
    ASSERT_TRUE(::GetClassInfoW(::GetModuleHandleW(nullptr), L"CUT_WSClient", &found));
    EXPECT_EQ(found.cbWndExtra, 20);
    EXPECT_EQ(found.cbClsExtra, 0);
    EXPECT_EQ(found.style, 0u);
    EXPECT_EQ(found.hIcon, nullptr);
    EXPECT_EQ(found.hCursor, nullptr);
    EXPECT_EQ(found.hbrBackground, nullptr);
    AsyncClient second;
    EXPECT_EQ(second.init(), UTE_SUCCESS);
    EXPECT_NE(second.window(), m_client.window());
}

TEST_F(ClientAsync, ReportsAWindowThatCannotBeCreatedWithoutTheFunnel) {
    const HOOKPROC refuse = [](int code, WPARAM wParam, LPARAM lParam) -> LRESULT {
        return code == HCBT_CREATEWND ? 1 : ::CallNextHookEx(nullptr, code, wParam, lParam);
    };
    const HHOOK hook = ::SetWindowsHookExW(WH_CBT, refuse, nullptr, ::GetCurrentThreadId());
    ASSERT_NE(hook, nullptr);
    EXPECT_EQ(m_client.InitAsync(::GetModuleHandleW(nullptr)), UTE_ERROR);
    ::UnhookWindowsHookEx(hook);
    EXPECT_THAT(m_client.codes, IsEmpty());
    EXPECT_EQ(m_client.window(), nullptr);
}

TEST_F(ClientAsync, DestroysTheWindowWithTheObjectAndWhenItIsReplaced) {
    auto client = std::make_unique<AsyncClient>();
    ASSERT_EQ(client->init(), UTE_SUCCESS);
    const HWND first = client->window();
    ASSERT_EQ(client->init(), UTE_SUCCESS);
    const HWND second = client->window();
    EXPECT_FALSE(::IsWindow(first));
    EXPECT_TRUE(::IsWindow(second));
    client.reset();
    EXPECT_FALSE(::IsWindow(second));
}

TEST_F(ClientAsync, WindowMessagesReachTheHooks) {
    init();
    m_client.throws = true;  // which does not leave the window procedure
    EXPECT_EQ(send(1152, 5, MAKELPARAM(FD_CLOSE, 10054)), 0);
    EXPECT_EQ(send(1153, 5, MAKELPARAM(7, 11001)), 0);
    EXPECT_EQ(send(1154, 5, MAKELPARAM(7, 11004)), 0);
    EXPECT_THAT(m_client.events, ElementsAre(Pair(FD_CLOSE, 10054)));
    EXPECT_THAT(m_client.nameErrors, ElementsAre(11001));
    EXPECT_THAT(m_client.addressErrors, ElementsAre(11004));
}

TEST_F(ClientAsync, BindMessageChoosesTheObjectAndCreationMessageClearsIt) {
    init();
    AsyncClient other;
    const auto isNotified = [&] {
        const size_t before = other.events.size();
        EXPECT_EQ(send(1152, 0, FD_READ), 0);
        return other.events.size() > before;
    };
    const auto bind = [&](CUT_WSClient* object) {
        EXPECT_EQ(send(1151, 0, reinterpret_cast<LPARAM>(object)), 1);
    };
    bind(&other);
    EXPECT_TRUE(isNotified());
    bind(nullptr);
    EXPECT_FALSE(isNotified());
    bind(&other);
    EXPECT_EQ(send(WM_NCCREATE), 1);
    EXPECT_FALSE(isNotified());
    EXPECT_THAT(m_client.events, IsEmpty());
}

TEST_F(ClientAsync, OtherMessagesHaveTheSystemsResult) {
    init();
    EXPECT_EQ(send(WM_ERASEBKGND), ::DefWindowProcW(m_client.window(), WM_ERASEBKGND, 0, 0));
    EXPECT_TRUE(::SetWindowTextW(m_client.window(), L"title"));
    EXPECT_EQ(::GetWindowTextLengthW(m_client.window()), 5);
}

TEST_F(ClientAsync, BaseHooksDoNothing) {
    CUT_WSClient client;
    ASSERT_EQ(client.InitAsync(::GetModuleHandleW(nullptr)), UTE_SUCCESS);
    const HWND window = ::FindWindowW(L"CUT_WSClient", nullptr);
    ASSERT_NE(window, nullptr);
    for (UINT message : {1152u, 1153u, 1154u}) EXPECT_EQ(::SendMessageW(window, message, 0, 0), 0);
}

TEST_F(ClientAsync, AnnouncesDataAndTheCloseOnTheThreadOfTheWindow) {
    peers::Peer peer(peers::sendingAndClosing("x"));
    connectAndSelect(peer, FD_READ | FD_CLOSE);
    EXPECT_TRUE(gets(FD_READ));
    char byte;
    EXPECT_EQ(m_client.Receive(&byte, 1, 0), 1);
    EXPECT_TRUE(gets(FD_CLOSE));
    EXPECT_EQ(m_client.notifiedThread, ::GetCurrentThreadId());
}

TEST_F(ClientAsync, SelectingMakesTheSocketNonBlocking) {
    peers::Peer peer(peers::silent());
    connectAndSelect(peer, FD_READ);
    EXPECT_EQ(m_client.GetBlockingMode(), 1);
    char byte = 0;
    EXPECT_EQ(::recv(m_client.GetSocket(), &byte, 1, 0), SOCKET_ERROR);
    EXPECT_EQ(::WSAGetLastError(), WSAEWOULDBLOCK);
}

TEST_F(ClientAsync, SelectingFailsOnAClosedSocket) {
    init();
    EXPECT_EQ(m_client.SetAsyncNotify(FD_READ), UTE_ERROR);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_ERROR));
}

// Wherever the stack has put it: nothing else lives as long as the object.
TEST_F(ClientAsync, LooksUpAnAddressIntoTheObject) {
    init();
    char unused[4] = "abc";
    EXPECT_EQ(m_client.AsyncGetAddressFromName("a@b@localhost", unused, sizeof unused),
              UTE_SUCCESS);
    EXPECT_THAT(m_client.codes, ElementsAre(0));
    ASSERT_TRUE(pumpUntil([&] { return !m_client.addressErrors.empty(); }));
    EXPECT_THAT(m_client.addressErrors, ElementsAre(0));
    const hostent& host = m_client.host();
    EXPECT_EQ(std::string(host.h_addr_list[0], 4), std::string("\x7f\0\0\1", 4));
    EXPECT_TRUE(m_client.holds(host.h_name));
    EXPECT_TRUE(m_client.holdsAll(host.h_aliases));
    EXPECT_TRUE(m_client.holdsAll(host.h_addr_list));
    EXPECT_STREQ(unused, "abc");
}

TEST_F(ClientAsync, LooksUpANameIntoTheObjectAndKeepsItWhenALaterLookUpFails) {
    init();
    EXPECT_EQ(nameLookedUp(), 0);
    EXPECT_STREQ(m_client.host().h_name, "localhost");
    EXPECT_GT(addressLookedUp(kImpossibleName.c_str()), 0);
    EXPECT_STREQ(m_client.host().h_name, "localhost");
}

// The system writes into the object by itself, not when the look-up is announced.
TEST_F(ClientAsync, PassesTheObjectsOwnBufferToTheSystem) {
    init();
    ASSERT_EQ(m_client.lookUpAddress(), UTE_SUCCESS);
    EXPECT_TRUE(eventually([&] { return m_client.isAnythingWritten(); }));
    EXPECT_THAT(m_client.addressErrors, IsEmpty()) << "no message has been dispatched";
}

TEST_F(ClientAsync, LooksNothingUpWithoutAWindow) {
    EXPECT_EQ(m_client.lookUpAddress(), UTE_ERROR);
    EXPECT_EQ(m_client.lookUpName(), UTE_ERROR);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_ERROR, UTE_ERROR));
}

// Nothing may be written to the object's memory once it is destroyed.
TEST_F(ClientAsync, MayBeDestroyedDuringALookUp) {
    std::vector<std::unique_ptr<Guarded<AsyncClient>>> clients;
    repeat([&] {
        auto& client = *clients.emplace_back(std::make_unique<Guarded<AsyncClient>>());
        ASSERT_EQ(client->init(), UTE_SUCCESS);
        ASSERT_EQ(client->lookUpAddress(), UTE_SUCCESS);
        ASSERT_EQ(client->lookUpName(), UTE_SUCCESS);
        client.destroy();
    });
    ::Sleep(500);  // for look-ups that have not yet ended
}

TEST_F(ClientAsync, MayBeDestroyedByAHook) {
    struct Leaving : AsyncClient {
        explicit Leaving(bool& isGone) : m_isGone(isGone) {}
        ~Leaving() override { m_isGone = true; }
        void OnAsyncGetAddressNotify(int) override { delete this; }
        bool& m_isGone;
    };
    bool isGone = false;
    auto* client = new Leaving(isGone);
    ASSERT_EQ(client->init(), UTE_SUCCESS);
    ASSERT_EQ(client->lookUpAddress(), UTE_SUCCESS);
    EXPECT_TRUE(pumpUntil([&] { return isGone; }));
}

TEST_F(ClientAsync, EndsALookUpWhenTheWindowIsReplaced) {
    repeat([&] {
        AsyncClient client;
        ASSERT_EQ(client.init(), UTE_SUCCESS);
        ASSERT_EQ(client.lookUpAddress(), UTE_SUCCESS);
        ASSERT_EQ(client.init(), UTE_SUCCESS);
        client.clearHost();
        ::Sleep(5);
        ASSERT_FALSE(client.isAnythingWritten());
        ASSERT_TRUE(client.addressErrors.empty());
    });
}

TEST_F(ClientAsync, LeavesTheQuitMessageToTheHost) {
    {
        AsyncClient client;
        ASSERT_EQ(client.init(), UTE_SUCCESS);
        ::PostQuitMessage(7);
        ASSERT_EQ(client.lookUpAddress(), UTE_SUCCESS);
    }
    MSG message{};
    while (message.message != WM_QUIT)
        ASSERT_TRUE(::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

TEST_F(ClientAsync, AnnouncesBothOfTwoLookUpsAtATime) {
    init();
    ASSERT_EQ(m_client.lookUpAddress(), UTE_SUCCESS);
    EXPECT_EQ(nameLookedUp(), 0);
    EXPECT_TRUE(pumpUntil([&] { return !m_client.addressErrors.empty(); }));
    EXPECT_STREQ(m_client.host().h_name, "localhost");
}

}  // namespace
