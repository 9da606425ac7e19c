// The smallest complete host: registers at a central server, takes a lock, and prints the
// notifications about other users.
//
//   host ADDRESS PORT COUNT SECONDS
//
// Ends with 0 after COUNT notifications, with 1 if they do not arrive within SECONDS or a step
// fails, with 2 for wrong usage.
#include <afxwin.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/listener/NyServerNotification.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

const CString kLockName = _T("part/1");
// Both kinds of access, and none for others.
constexpr unsigned kShareMode = NySe::access1 | NySe::access2 | NySe::exclude1 | NySe::exclude2;

// Prints a line of UTF-8 without delay.
void say(const CString& line) {
    std::string bytes(3 * static_cast<size_t>(line.GetLength()), '\0');
    const int length = ::WideCharToMultiByte(CP_UTF8, 0, line, line.GetLength(), bytes.data(),
                                             static_cast<int>(bytes.size()), nullptr, nullptr);
    std::printf("%.*s\n", length, bytes.c_str());
    std::fflush(stdout);
}

int fail(const char* what, int status = 1) {
    std::fprintf(stderr, "host: %s\n", what);
    return status;
}

// Returns the record of a notification. It arrived over the network: null if the bytes are not such
// a record.
template <class Record>
std::unique_ptr<Record> recordOf(NyServerNotification& notification) {
    CObject* const object = NySe::readReplyObject(notification.getMemFile(), RUNTIME_CLASS(Record));
    return std::unique_ptr<Record>(static_cast<Record*>(object));
}

CString describe(NyServerNotification& notification) {
    const NySe::ActionType number = notification.getActionType();
    CString text;
    text.Format(_T("notification %d"), number);
    if (number == NySe::notifyLockGranted || number == NySe::notifyLockReleased) {
        if (const auto lock = recordOf<NySeLock>(notification))
            text += _T(": lock ") + lock->getStrLockName();
    } else if (number == NySe::notifyUserJoined || number == NySe::notifyUserLeft) {
        if (const auto user = recordOf<NySeUser>(notification))
            text += _T(": user ") + user->getStrUserName();
    }
    return text;
}

// The window that the listener posts to: the application's main window. This one only receives
// messages and is never shown.
class MainWnd : public CWnd {
  public:
    MainWnd(NyServerApp& listener, int wanted) : m_listener(listener), m_wanted(wanted) {}

    bool create(int seconds) {
        const UINT milliseconds = static_cast<UINT>(seconds) * 1000;
        if (!CreateEx(0, AfxRegisterWndClass(0), _T("Host"), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr))
            return false;
        m_listener.setAppWnd(this);
        return ::SetTimer(m_hWnd, 1, milliseconds, nullptr) != 0;
    }

    // From here on nothing more is posted. Consume what was posted; then destroy the window.
    ~MainWnd() override {
        m_listener.setAppWnd(nullptr);
        const UINT posted = NySe::_TM_NYSERVERMESSAGE;
        MSG message;
        while (::PeekMessage(&message, m_hWnd, posted, posted, PM_REMOVE))
            ::DispatchMessage(&message);
        DestroyWindow();
    }

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == NySe::_TM_NYSERVERMESSAGE) return onNotification(wParam, lParam);
        if (message == WM_TIMER) ::PostQuitMessage(fail("waited long enough"));
        return CWnd::WindowProc(message, wParam, lParam);
    }

  private:
    // The notification owns the memory that came with the message. Its destructor frees it and
    // informs the listener, which would otherwise stop reading sooner or later.
    LRESULT onNotification(WPARAM wParam, LPARAM lParam) {
        NyServerNotification notification(wParam, lParam, &m_listener);
        say(describe(notification));
        if (--m_wanted == 0) ::PostQuitMessage(0);
        return 0;
    }

    NyServerApp& m_listener;
    int m_wanted;
};

// Registers the user and listens on its port, or on another one if a program of this machine uses
// that port. The server returns -1 when it has no more ports.
bool registerAndListen(NySeClientApp& client, NyServerApp& listener) {
    NySeUser user;
    user.setStrUserName(_T("Host"));
    user.setStrHostName(client.getHostName());
    user.setStrComputerName(client.getHostName());
    user.setSchema(client.getSchemaType());
    for (int port = client.getPortClient(user); port > 0; port = client.getAnotherPort()) {
        listener.setPortNumber(static_cast<unsigned short>(port));
        if (listener.Start() == NY_UTE_SUCCESS) return true;
    }
    return false;
}

int run(const char* address, int port, int wanted, int seconds) {
    NySeClientApp client;
    if (client.connect(port, address, -1) != 0)
        return fail("no connection to a central server at that address and port");
    client.initializeSchema();
    if (client.getSchemaType() != NySe::schema2015)
        return fail("the server did not agree on the current schema");

    // The window uses the listener, so the listener is created first and destroyed last; its
    // destructor waits for its threads.
    NyServerApp listener;
    MainWnd window(listener, wanted);
    if (!window.create(seconds)) return fail("no window");
    if (!registerAndListen(client, listener)) return fail("no port to listen on");
    if (!client.lock(kLockName, kShareMode)) return fail("the lock was not granted");
    say(_T("holding ") + kLockName);

    MSG message;
    while (::GetMessage(&message, nullptr, 0, 0) > 0) ::DispatchMessage(&message);
    client.unLock(kLockName);
    client.disconnect();
    return static_cast<int>(message.wParam);
}

// From 1 to 65535, else 0.
int number(const char* text) {
    unsigned short value = 0;
    const char* const end = text + std::strlen(text);
    const auto [last, error] = std::from_chars(text, end, value);
    return error == std::errc() && last == end ? value : 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5 || !number(argv[2]) || !number(argv[3]) || !number(argv[4]))
        return fail("usage: host ADDRESS PORT COUNT SECONDS", 2);
    try {
        return run(argv[1], number(argv[2]), number(argv[3]), number(argv[4]));
    } catch (CException* error) {  // the class library throws pointers
        error->Delete();
        return fail("out of memory");
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}
