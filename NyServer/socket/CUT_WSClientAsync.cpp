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
    m_lookUps.abandon();
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
    const bool isStarted = m_lookUps.start([&](char* result, int size) {
        return ::WSAAsyncGetHostByName(m_notificationWindow, kAddressFound,
                                       socketcalls::hostPart(name), result, size);
    });
    return OnError(isStarted ? UTE_SUCCESS : UTE_ERROR);
}

int CUT_WSClient::AsyncGetNameFromAddress(const char* address, char*, int) {
    const unsigned long value = ::inet_addr(address);
    const bool isStarted = m_lookUps.start([&](char* result, int size) {
        return ::WSAAsyncGetHostByAddr(m_notificationWindow, kNameFound,
                                       reinterpret_cast<const char*>(&value), sizeof value, AF_INET,
                                       result, size);
    });
    return OnError(isStarted ? UTE_SUCCESS : UTE_ERROR);
}

void CUT_WSClient::finishLookUp(WPARAM request, int error) {
    static_assert(sizeof m_hostBuffer == HostLookUps::kResultSize);
    m_lookUps.finish(reinterpret_cast<HANDLE>(request), error == 0, m_hostBuffer);
}

void CUT_WSClient::OnAsyncNotify(int, int) {}

void CUT_WSClient::OnAsyncGetNameNotify(int) {}

void CUT_WSClient::OnAsyncGetAddressNotify(int) {}

// False: not a message of the notification window.
bool CUT_WSClient::notify(UINT message, WPARAM wParam, LPARAM lParam) {
    const int event = LOWORD(lParam);
    const int error = HIWORD(lParam);
    switch (message) {
        case kSocketEvent:
            OnAsyncNotify(event, error);
            return true;
        case kNameFound:
            finishLookUp(wParam, error);
            OnAsyncGetNameNotify(error);
            return true;
        case kAddressFound:
            finishLookUp(wParam, error);
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
        if (client && client->notify(message, wParam, lParam)) return 0;
    } catch (...) {
        // An override threw; the system's dispatcher cannot be unwound through.
        return 0;
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}
