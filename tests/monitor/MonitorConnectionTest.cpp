// What the window does when the server goes, comes back and does not answer.
#include "tests/listener/windows/LimitSetting.h"
#include "tests/monitor/MonitorTest.h"
#include "tests/support/MessageHook.h"
// After windows.h.
#include <tlhelp32.h>

namespace {

using ::testing::AnyOf;
using ::testing::Contains;

// A process stands still while one lives.
class Standstill {
  public:
    explicit Standstill(DWORD process) : m_process(process) { forEachThread(&::SuspendThread); }
    ~Standstill() { forEachThread(&::ResumeThread); }
    Standstill(const Standstill&) = delete;
    Standstill& operator=(const Standstill&) = delete;

  private:
    void forEachThread(DWORD(WINAPI* action)(HANDLE)) const {
        const NySe::UniqueKernelHandle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
        THREADENTRY32 entry{};
        entry.dwSize = sizeof entry;
        for (BOOL more = ::Thread32First(snapshot.get(), &entry); more;
             more = ::Thread32Next(snapshot.get(), &entry)) {
            if (entry.th32OwnerProcessID != m_process) continue;
            action(NySe::UniqueKernelHandle(
                       ::OpenThread(THREAD_SUSPEND_RESUME, FALSE, entry.th32ThreadID))
                       .get());
        }
    }

    const DWORD m_process;
};

// The window's thread gets no message while one lives.
class HeldWindow : MessageHook<HeldWindow> {
  public:
    explicit HeldWindow(HWND window) : MessageHook(window) {
        gate = m_gate;
        ::PostMessageW(window, WM_NULL, 0, 0);
        EXPECT_TRUE(m_gate->awaitArrivals());
    }
    ~HeldWindow() { m_gate->open(); }

    static void onMessage(const MSG&, bool) {
        if (const std::shared_ptr<Gate> entered = gate) entered->pass();
    }

  private:
    // The window's thread may still be leaving a gate when the next one is made.
    static inline std::atomic<std::shared_ptr<Gate>> gate;
    const std::shared_ptr<Gate> m_gate = std::make_shared<Gate>();
};

// What the status bar says each time that the window's thread takes a message, while one lives.
class BarWatch : MessageHook<BarWatch> {
  public:
    explicit BarWatch(HWND bar) : MessageHook(bar) { s_bar = bar; }

    // A pause was shown while notifications were waiting.
    bool hasSeenPause() const { return s_hasSeenPause; }

    static void onMessage(const MSG&, bool) {
        if (readText(s_bar, SB_GETTEXTW, StatusBar::flow) == "Paused" &&
            readText(s_bar, SB_GETTEXTW, StatusBar::posted).rfind("Posted 0 ", 0) != 0)
            s_hasSeenPause = true;
    }

  private:
    static inline std::atomic<HWND> s_bar = nullptr;
    static inline std::atomic<bool> s_hasSeenPause = false;
};

// There is always another message for the window while one lives.
class Flood : MessageHook<Flood> {
  public:
    explicit Flood(HWND window) : MessageHook(window) {
        ::PostMessageW(window, NySe::_TM_NYSERVERMESSAGE, 0, 0);
    }

    static void onMessage(const MSG& message, bool isRemoved) {
        if (isRemoved && message.message == NySe::_TM_NYSERVERMESSAGE)
            ::PostMessageW(message.hwnd, message.message, 0, 0);
    }
};

class MonitorConnection : public MonitorTest {
  protected:
    // More is told than the window may have waiting, if the machine is quick enough.
    void fallBehind(NySeClientApp& client) const {
        const HeldWindow held(window);
        for (int i = 0; i < 10; ++i) {
            client.lock("busy", 0x01);
            client.unLock("busy");
        }
        client.isAlive();
        ::Sleep(500);
    }
    void killServer() const {
        server->process().kill();
        EXPECT_TRUE(
            hasLogged("Connection", "The connection to the server was lost. Trying again in 1 s"));
    }
    // The worker gives up after 15 s, which a busy machine may need for what a test types.
    bool isWaitingOrGaveUp(const std::string& waiting) const {
        return status(StatusBar::activity) == waiting || !logged("Lock").empty();
    }
};

TEST_F(MonitorConnection, IsShownInTheStatusBarAndTheLog) {
    openConnected();
    EXPECT_EQ("Connected to 127.0.0.1:" + std::to_string(server->port()) + " as dora, session 1",
              status(StatusBar::connection));
    EXPECT_TRUE(says(StatusBar::activity, "Ready"));
    EXPECT_TRUE(says(StatusBar::posted, "Posted 0 of 3240"));
    EXPECT_EQ("Reading", status(StatusBar::flow));
    EXPECT_THAT(logged("Connection"), Contains(status(StatusBar::connection)));
    // What is cut off can be pointed at.
    for (const StatusBar::Part part : {StatusBar::connection, StatusBar::activity})
        EXPECT_EQ(status(part), tip(part));
    const LRESULT style = ::SendMessageW(control(IDC_USERS), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0);
    EXPECT_NE(0, style & LVS_EX_LABELTIP);
}

TEST_F(MonitorConnection, IsRenamedByF2AndKeepsThatNameWhenItReconnects) {
    openConnected();
    const int port = server->port();
    ask(VK_F2, L"Rename", "doris");
    EXPECT_TRUE(hasLogged("Rename", "doris: accepted"));
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"doris"}));
    EXPECT_TRUE(soon([this] { return isConnectedAs("doris"); }));
    tabTo(ID_LOCK);
    killServer();
    EXPECT_FALSE(::IsWindowEnabled(control(ID_LOCK)));
    EXPECT_EQ(control(IDC_USERS), focus());
    EXPECT_TRUE(hasLogged("Connection", "No connection to 127.0.0.1:" + std::to_string(port) +
                                            ". Trying again in 2 s"));
    startServer(port);
    EXPECT_TRUE(soon([this] { return isConnectedAs("doris"); })) << status(StatusBar::connection);
    OtherUser anna(port, "anna");
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "doris"}));
}

TEST_F(MonitorConnection, F5DoesNotWaitForTheNextAttempt) {
    const unsigned port = peers::RefusingPort().port();
    openWindow(static_cast<int>(port));
    const std::string wait =
        "No connection to 127.0.0.1:" + std::to_string(port) + ". Trying again in ";
    EXPECT_TRUE(hasLogged("Connection", wait + "1 s"));
    // How often the attempt came well before its time. A busy machine is late, but never early.
    int sooner = 0;
    for (const auto& [waited, next] :
         {std::pair{1, "2 s"}, {2, "4 s"}, {4, "8 s"}, {8, "16 s"}, {16, "30 s"}}) {
        const auto start = std::chrono::steady_clock::now();
        keys::press(VK_F5);
        EXPECT_TRUE(hasLogged("Connection", wait + next));
        if (2 * (std::chrono::steady_clock::now() - start) < std::chrono::seconds(waited)) ++sooner;
    }
    EXPECT_GT(sooner, 0);
}

TEST_F(MonitorConnection, AServerThatHangsDoesNotBlockTheWindow) {
    openConnected();
    OtherUser anna(server->port(), "anna");
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "dora"}));
    EXPECT_TRUE(says(StatusBar::activity, "Ready"));
    {
        const Standstill standstill(server->process().id());
        ask('L', L"Lock", "deck");
        const std::string waiting = "Waiting: Lock deck (access1+access2+exclude1+exclude2)";
        EXPECT_TRUE(soon([&] { return isWaitingOrGaveUp(waiting); }));
        typeFilter("anna");
        EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna"}));
        EXPECT_TRUE(soon([&] { return isWaitingOrGaveUp(waiting); }));
    }
    EXPECT_TRUE(soon([this] { return logged("Lock").size() == 1; }));
    EXPECT_THAT(logged("Lock").front(),
                AnyOf("deck (access1+access2+exclude1+exclude2): granted",
                      "deck (access1+access2+exclude1+exclude2): no reply"));
    EXPECT_TRUE(says(StatusBar::activity, "Ready"));
}

TEST_F(MonitorConnection, WhatWasPostedIsFreedWithTheWindow) {
    openConnected();
    const HGLOBAL block = ::GlobalAlloc(GMEM_MOVEABLE, 16);
    const auto address = reinterpret_cast<LPARAM>(::GlobalLock(block));
    {
        const HeldWindow held(window);
        ::PostMessageW(window, WM_CLOSE, 0, 0);
        ::PostMessageW(window, NySe::_TM_NYSERVERMESSAGE, 16, address);
    }
    EXPECT_TRUE(soon([this] { return !::IsWindow(window); }));
    EXPECT_EQ(static_cast<UINT>(GMEM_INVALID_HANDLE), ::GlobalFlags(block));
}

TEST_F(MonitorConnection, ARequestThatIsTooLateIsNotSent) {
    openConnected();
    {
        const Standstill standstill(server->process().id());
        for (const char* name : {"a", "b"}) {
            // Not the shortcut: that is off once the first one was given up.
            ::PostMessageW(window, WM_COMMAND, ID_OPEN, 0);
            answer(L"Open connection", name);
        }
        server->process().kill();
    }
    EXPECT_TRUE(hasLogged("Open", "a: no reply"));
    EXPECT_TRUE(hasLogged("Open", "b: no connection"));
}

TEST_F(MonitorConnection, ARequestWithoutAConnectionIsNotSent) {
    openConnected();
    open(VK_F2, L"Rename");
    killServer();
    answer(L"Rename", "doris");
    EXPECT_TRUE(hasLogged("Rename", "doris: no connection"));
}

TEST_F(MonitorConnection, APauseOfTheListenerIsShown) {
    const LimitSetting limit(10);
    openConnected();
    EXPECT_TRUE(says(StatusBar::posted, "Posted 0 of 9"));
    OtherUser anna(server->port(), "anna");
    const BarWatch bar(control(IDC_STATUS));
    EXPECT_TRUE(soon([&] {
        fallBehind(anna.client);
        return logged("Listener").size() >= 2;
    }));
    EXPECT_TRUE(bar.hasSeenPause());
    EXPECT_THAT(logged("Listener").front(), ::testing::StartsWith("paused: Posted "));
    EXPECT_TRUE(soon([this] { return logged("Listener").back() == "resumed"; }));
    EXPECT_TRUE(says(StatusBar::flow, "Reading"));
    anna.client.lock("last", 0x01);
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {"last"}));
}

TEST_F(MonitorConnection, AFloodDoesNotKeepTheLogFromBeingShown) {
    openConnected();
    OtherUser anna(server->port(), "anna");
    const Flood flood(window);
    anna.client.lock("deck", 0x18);
    EXPECT_TRUE(hasLogged("50 a lock was granted",
                          "NySeLock: deck, held by session 2 (exclude1+exclude2)"));
}

}  // namespace
