// Events and look-ups announced through a hidden window.
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"

namespace {

constexpr const wchar_t* kWindowClass = L"CUT_WSClient";

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

bool registerClass(HINSTANCE instance) {
    if (isClassRegistered(instance)) return true;
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &CUT_WSClient::WndProc;
    windowClass.cbWndExtra = kWindowExtra;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kWindowClass;
    ::RegisterClassW(&windowClass);
    return isClassRegistered(instance);
}

}  // namespace

int CUT_WSClient::InitAsync(HINSTANCE instance) {
    if (!registerClass(instance)) return OnError(UTE_ERROR);
    dropNotificationWindow();
    m_notificationWindow =
        ::CreateWindowExW(0, kWindowClass, L"", 0, 0, 0, 0, 0, nullptr, nullptr, instance, nullptr);
    if (!m_notificationWindow) return UTE_ERROR;
    ::SendMessageW(m_notificationWindow, kBindObject, 0, reinterpret_cast<LPARAM>(this));
    return OnError(UTE_SUCCESS);
}

void CUT_WSClient::dropNotificationWindow() {
    if (!m_notificationWindow) return;
    // Only the window's own thread can destroy it; from any other it must at least not find a dead
    // object.
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

int CUT_WSClient::AsyncGetAddressFromName(const char* name, char*, int) {
    const HANDLE request =
        ::WSAAsyncGetHostByName(m_notificationWindow, kAddressFound, socketcalls::hostPart(name),
                                m_hostBuffer, sizeof m_hostBuffer);
    return OnError(request ? UTE_SUCCESS : UTE_ERROR);
}

int CUT_WSClient::AsyncGetNameFromAddress(const char* address, char*, int) {
    const unsigned long value = ::inet_addr(address);
    const HANDLE request = ::WSAAsyncGetHostByAddr(
        m_notificationWindow, kNameFound, reinterpret_cast<const char*>(&value), sizeof value,
        AF_INET, m_hostBuffer, sizeof m_hostBuffer);
    return OnError(request ? UTE_SUCCESS : UTE_ERROR);
}

void CUT_WSClient::OnAsyncNotify(int, int) {}

void CUT_WSClient::OnAsyncGetNameNotify(int) {}

void CUT_WSClient::OnAsyncGetAddressNotify(int) {}

// False: not a message of the notification window.
bool CUT_WSClient::notify(UINT message, LPARAM lParam) {
    const int event = LOWORD(lParam);
    const int error = HIWORD(lParam);
    switch (message) {
        case kSocketEvent:
            OnAsyncNotify(event, error);
            return true;
        case kNameFound:
            OnAsyncGetNameNotify(error);
            return true;
        case kAddressFound:
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
    try {
        if (client && client->notify(message, lParam)) return 0;
    } catch (...) {
        // An override threw; the system's dispatcher cannot be unwound through.
        return 0;
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}
