// Asynchronous notification of socket events and host look-ups, by messages of a hidden window.
#include <new>
#include <vector>

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/Mutex.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"
#include "NyServer/socket/windows/HostLookUps.h"

namespace {

constexpr const wchar_t* kWindowClass = L"CUT_WSClient";

// Longer than a resolver tries, in ms.
constexpr ULONGLONG kLongestLookUp = 60000;
// How long a thread may take to dispatch the message that unbinds the object, in ms.
constexpr UINT kLongestUnbinding = 1000;

constexpr int kObjectSlot = 0;
constexpr int kWindowExtra = 20;

// Messages of the notification window: do not change the numbers.
constexpr UINT kBindObject = WM_USER + 127;
constexpr UINT kSocketEvent = WM_USER + 128;
constexpr UINT kNameFound = WM_USER + 129;
constexpr UINT kAddressFound = WM_USER + 130;

bool isClassRegistered(HINSTANCE instance) {
    WNDCLASSW found{};
    return ::GetClassInfoW(instance, kWindowClass, &found) != FALSE;
}

// The window classes that are registered here. They are unregistered with this module, because it
// contains their window procedure.
class WindowClasses {
  public:
    ~WindowClasses() {
        for (const HINSTANCE instance : m_instances) ::UnregisterClassW(kWindowClass, instance);
    }

    // Returns false if the class cannot be registered or out of memory.
    bool provide(HINSTANCE instance) {
        return NySe::zeroIfOutOfMemory([&] {
            const NySe::MutexLock lock(m_mutex);
            if (isClassRegistered(instance)) return true;
            m_instances.reserve(m_instances.size() + 1);
            registerClass(instance);
            if (!isClassRegistered(instance)) return false;
            m_instances.push_back(instance);
            return true;
        });
    }

  private:
    static void registerClass(HINSTANCE instance) {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &CUT_WSClient::WndProc;
        windowClass.cbWndExtra = kWindowExtra;
        windowClass.hInstance = instance;
        windowClass.lpszClassName = kWindowClass;
        ::RegisterClassW(&windowClass);
    }

    NySe::Mutex m_mutex;
    std::vector<HINSTANCE> m_instances NY_GUARDED_BY(m_mutex);
};

WindowClasses windowClasses;

}  // namespace

void CUT_WSClient::LookUpsDeleter::operator()(HostLookUps* lookUps) const {
    delete lookUps;
}

int CUT_WSClient::InitAsync(HINSTANCE instance) {
    if (!m_lookUps) m_lookUps.reset(new (std::nothrow) HostLookUps);
    if (!m_lookUps || !windowClasses.provide(instance)) return OnError(UTE_ERROR);
    endLookUps();
    dropNotificationWindow();
    m_notificationWindow =
        ::CreateWindowExW(0, kWindowClass, L"", 0, 0, 0, 0, 0, nullptr, nullptr, instance, nullptr);
    if (!m_notificationWindow) return UTE_ERROR;
    ::SendMessageW(m_notificationWindow, kBindObject, 0, reinterpret_cast<LPARAM>(this));
    return OnError(UTE_SUCCESS);
}

// The object must not be destroyed before the system has written its last byte into it. The wait is
// bounded because an announcement may never be dispatched, for example if the window's thread has
// ended.
void CUT_WSClient::endLookUps() {
    if (!m_lookUps) return;
    m_lookUps->cancel();
    const ULONGLONG deadline = ::GetTickCount64() + kLongestLookUp;
    while (m_lookUps->arePending() && ::GetTickCount64() < deadline) {
        if (!dropAnnouncement()) ::Sleep(1);
    }
}

// Returns false if there is none, or if another thread owns the window and dispatches it.
// PeekMessage returns WM_QUIT whatever the filter is, and leaves it in the queue.
bool CUT_WSClient::dropAnnouncement() {
    MSG found{};
    constexpr UINT kLook = PM_NOREMOVE | PM_QS_POSTMESSAGE;
    constexpr UINT kTake = PM_REMOVE | PM_QS_POSTMESSAGE;
    if (!::PeekMessageW(&found, m_notificationWindow, kNameFound, kAddressFound, kLook) ||
        found.hwnd != m_notificationWindow)
        return false;
    ::PeekMessageW(&found, m_notificationWindow, kNameFound, kAddressFound, kTake);
    m_lookUps->finish(reinterpret_cast<HANDLE>(found.wParam));
    return true;
}

void CUT_WSClient::dropNotificationWindow() {
    if (!m_notificationWindow) return;
    // Only the window's own thread can destroy it; on any other thread it must at least not find a
    // destroyed object. Sent, so that a thread that is dispatching to the object has returned from
    // it.
    if (!::SendMessageTimeoutW(m_notificationWindow, kBindObject, 0, 0, SMTO_NORMAL,
                               kLongestUnbinding, nullptr))
        ::SetWindowLongPtrW(m_notificationWindow, kObjectSlot, 0);
    ::DestroyWindow(m_notificationWindow);
    m_notificationWindow = nullptr;
}

int CUT_WSClient::SetAsyncNotify(long events) {
    if (::WSAAsyncSelect(m_socket, m_notificationWindow, kSocketEvent, events) != 0) {
        return OnError(UTE_ERROR);
    }
    m_blockingMode = 1;
    return OnError(UTE_SUCCESS);
}

// Without a window nothing would report that the system has written the result.
int CUT_WSClient::startLookUp(const std::function<void*()>& request) {
    const bool isStarted = m_notificationWindow && m_lookUps->start(request);
    return OnError(isStarted ? UTE_SUCCESS : UTE_ERROR);
}

int CUT_WSClient::AsyncGetAddressFromName(const char* name, char*, int) {
    return startLookUp([&] {
        return ::WSAAsyncGetHostByName(m_notificationWindow, kAddressFound,
                                       socketcalls::hostPart(name), m_hostBuffer,
                                       sizeof m_hostBuffer);
    });
}

int CUT_WSClient::AsyncGetNameFromAddress(const char* address, char*, int) {
    const unsigned long value = inet_addr(address);
    return startLookUp([&] {
        return ::WSAAsyncGetHostByAddr(m_notificationWindow, kNameFound,
                                       reinterpret_cast<const char*>(&value), sizeof value, AF_INET,
                                       m_hostBuffer, sizeof m_hostBuffer);
    });
}

void CUT_WSClient::OnAsyncNotify(int, int) {}

void CUT_WSClient::OnAsyncGetNameNotify(int) {}

void CUT_WSClient::OnAsyncGetAddressNotify(int) {}

// Returns false for other messages. Nothing of the object is used after a hook, which may destroy
// it.
bool CUT_WSClient::notify(UINT message, WPARAM wParam, LPARAM lParam) {
    const int event = LOWORD(lParam);
    const int error = HIWORD(lParam);
    switch (message) {
        case kSocketEvent:
            OnAsyncNotify(event, error);
            return true;
        case kNameFound:
            m_lookUps->finish(reinterpret_cast<HANDLE>(wParam));
            OnAsyncGetNameNotify(error);
            return true;
        case kAddressFound:
            m_lookUps->finish(reinterpret_cast<HANDLE>(wParam));
            OnAsyncGetAddressNotify(error);
            return true;
        default:
            return false;
    }
}

LRESULT CALLBACK CUT_WSClient::WndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE || message == kBindObject) {
        ::SetWindowLongPtrW(window, kObjectSlot, message == kBindObject ? lParam : 0);
        return 1;
    }
    auto* client = reinterpret_cast<CUT_WSClient*>(::GetWindowLongPtrW(window, kObjectSlot));
    // An exception must not pass through the dispatcher; the message counts as handled.
    const auto notify = [&] { return client->notify(message, wParam, lParam); };
    if (client && NySe::resultOr(true, notify)) return 0;
    return ::DefWindowProcW(window, message, wParam, lParam);
}
