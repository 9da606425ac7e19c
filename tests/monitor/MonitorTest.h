// nymonitor's window on a thread of its own, on the screen, beside a central server and its users.
#pragma once

#include <gmock/gmock.h>

#include <commctrl.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "apps/common/Utf8.h"
#include "apps/monitor/Monitor.h"
#include "apps/monitor/MonitorWnd.h"
#include "apps/monitor/resource.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/records/NySeMessage.h"
#include "tests/apps/CentralProgram.h"
#include "tests/apps/FreeRow.h"
#include "tests/monitor/Keys.h"
#include "tests/socket/Peers.h"
#include "tests/support/Gate.h"

using namespace apps;
using namespace apps::monitor;

using Texts = std::vector<std::string>;

constexpr std::chrono::seconds kLong{30};

// As the test's subject is another thread of this process.
template <class Question>
bool soon(Question question) {
    return eventually(question, kLong);
}

// What a control answers to a message that asks for a text.
inline std::string readText(HWND control, UINT message, WPARAM what) {
    wchar_t text[512] = L"";
    ::SendMessageW(control, message, what, reinterpret_cast<LPARAM>(text));
    return toUtf8(CString(text));
}
inline std::string textOf(HWND control) {
    return readText(control, WM_GETTEXT, 512);
}

// Another user of the server, without a listener.
class OtherUser {
  public:
    OtherUser(int port, const char* name) {
        EXPECT_EQ(0, client.connect(port, "127.0.0.1", -1));
        client.initializeSchema();
        NySeUser user;
        user.setStrUserName(name);
        user.setSchema(NySe::schema2015);
        client.getPortClient(user);
    }
    ~OtherUser() { client.disconnect(); }

    // What the server has of this lock: nothing when nobody holds it.
    std::vector<unsigned> modesOf(const char* name) {
        NySeLockArray locks;
        client.getLock(locks);
        std::vector<unsigned> modes;
        if (const INT_PTR index = locks.lookForLockName(name); index >= 0) {
            const NySeSessionLockPtrArray& holders = locks[index]->getHolders();
            for (INT_PTR i = 0; i < holders.GetSize(); ++i)
                modes.push_back(holders[i]->getLockState());
        }
        return modes;
    }
    LONG opensOf(const char* connection) {
        NySeConnectionArray connections;
        client.getConnection(connections);
        const NySeConnection* const found = connections.findByConnection(connection);
        return found != nullptr ? found->getRefCount() : 0;
    }

    NySeClientApp client;
};

class MonitorTest : public ::testing::Test {
  protected:
    MonitorTest() {
        const int first = freeRow(40);
        m_ports = L" --ports " + std::to_wstring(first) + L'-' + std::to_wstring(first + 39);
    }
    ~MonitorTest() override { closeWindow(); }

    void startServer(int port = 0) {
        server.reset();
        const std::wstring at = port != 0 ? L"--port " + std::to_wstring(port) : std::wstring();
        server = std::make_unique<CentralProgram>(L"--probe-seconds 0 " + at + m_ports);
    }

    // Opens the window, and waits until it is in front.
    void openWindow(int port) {
        m_account = {"127.0.0.1:" + std::to_string(port), "dora"};
        m_thread = std::thread([this] {
            m_threadId = ::GetCurrentThreadId();
            hasRun = runMonitor(m_account, [] {});
        });
        ASSERT_TRUE(soon([this] {
            window = ::FindWindowW(MonitorWnd::kClassName, nullptr);
            return window != nullptr && ::GetForegroundWindow() == window;
        }));
        // Answered once the window has come to its messages.
        ::SendMessageW(window, WM_NULL, 0, 0);
    }
    // The same, connected to a server of its own.
    void openConnected() {
        if (!server) startServer();
        ASSERT_NO_FATAL_FAILURE(openWindow(server->port()));
        ASSERT_TRUE(soon([this] { return isConnectedAs("dora"); }))
            << status(StatusBar::connection);
        ASSERT_TRUE(hasLogged("Connection", status(StatusBar::connection)));
    }
    void closeWindow() {
        if (!m_thread.joinable()) return;
        if (window != nullptr)
            ::PostMessageW(window, WM_CLOSE, 0, 0);
        else
            ::PostThreadMessageW(m_threadId, WM_QUIT, 0, 0);
        m_thread.join();
    }

    HWND focus() const {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        ::GetGUIThreadInfo(::GetWindowThreadProcessId(window, nullptr), &info);
        return info.hwndFocus;
    }
    // As the Tab key does; the last resort is the one that was there.
    void tabTo(int id) const {
        for (int i = 0; i < 12 && focus() != control(id); ++i) {
            const HWND before = focus();
            keys::press(VK_TAB);
            EXPECT_TRUE(soon([&] { return focus() != before; }));
        }
    }

    HWND control(int id) const { return ::GetDlgItem(window, id); }
    bool isConnectedAs(const std::string& user) const {
        const std::string told = status(StatusBar::connection);
        return told.rfind("Connected to ", 0) == 0 &&
               told.find(" as " + user + ", session ") != std::string::npos &&
               ::IsWindowEnabled(control(ID_LOCK)) && !column(IDC_USERS, 0).empty();
    }

    std::string status(StatusBar::Part part) const {
        return readText(control(IDC_STATUS), SB_GETTEXTW, part);
    }
    bool says(StatusBar::Part part, const std::string& text) const {
        return soon([&] { return status(part) == text; });
    }
    std::string tip(StatusBar::Part part) const {
        return readText(control(IDC_STATUS), SB_GETTIPTEXTW, MAKEWPARAM(part, 512));
    }

    std::string cell(int list, int row, int column) const {
        wchar_t text[512] = L"";
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = text;
        item.cchTextMax = static_cast<int>(std::size(text));
        ::SendMessageW(control(list), LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                       reinterpret_cast<LPARAM>(&item));
        return toUtf8(CString(text));
    }
    int rows(int list) const {
        return static_cast<int>(::SendMessageW(control(list), LVM_GETITEMCOUNT, 0, 0));
    }
    Texts column(int list, int number) const {
        Texts texts;
        for (int row = 0; row < rows(list); ++row) texts.push_back(cell(list, row, number));
        return texts;
    }
    bool becomes(int list, int number, const Texts& texts) const {
        return soon([&] { return column(list, number) == texts; });
    }
    // The log's lines about one event.
    Texts logged(const std::string& event) const {
        Texts texts;
        for (int row = 0; row < rows(IDC_LOG); ++row)
            if (cell(IDC_LOG, row, 1) == event) texts.push_back(cell(IDC_LOG, row, 2));
        return texts;
    }
    bool hasLogged(const std::string& event, const std::string& content) const {
        return soon([&] {
            const Texts lines = logged(event);
            return std::find(lines.begin(), lines.end(), content) != lines.end();
        });
    }

    // Waits for the dialog with this title; null when it does not come.
    static HWND dialog(const wchar_t* title) {
        HWND found = nullptr;
        soon([&] {
            found = ::FindWindowW(L"#32770", title);
            return found != nullptr && ::GetForegroundWindow() == found;
        });
        return found;
    }
    // Types into the dialog's field, and OK.
    static void answer(const wchar_t* title, const std::string& text) {
        const HWND asked = dialog(title);
        ASSERT_NE(nullptr, asked);
        keys::type(text);
        EXPECT_TRUE(soon([&] { return textOf(::GetDlgItem(asked, IDC_TEXT)) == text; }))
            << textOf(::GetDlgItem(asked, IDC_TEXT));
        keys::press(VK_RETURN);
        EXPECT_TRUE(soon([&] { return !::IsWindow(asked); }));
    }

    // Opens the dialog by its shortcut, F2 or a letter with Control.
    static HWND open(WORD key, const wchar_t* title) {
        key == VK_F2 ? keys::press(key) : keys::pressWithControl(key);
        const HWND opened = dialog(title);
        EXPECT_NE(nullptr, opened);
        return opened;
    }
    static void ask(WORD key, const wchar_t* title, const std::string& text) {
        open(key, title);
        answer(title, text);
    }

    void typeFilter(const std::string& text) const {
        keys::pressWithControl('F');
        keys::type(text);
        EXPECT_TRUE(soon([&] { return textOf(control(IDC_FILTER)) == text; }));
    }

    std::unique_ptr<CentralProgram> server;
    HWND window = nullptr;
    std::atomic<bool> hasRun = false;

  private:
    std::wstring m_ports;
    Account m_account;
    std::thread m_thread;
    std::atomic<DWORD> m_threadId = 0;
};
