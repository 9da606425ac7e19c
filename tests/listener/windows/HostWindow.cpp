#include "tests/listener/windows/HostWindow.h"

#include <stdexcept>

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/host/NyServerModule.h"

namespace {

constexpr UINT kDestroy = WM_USER + 1;
constexpr UINT kSettle = WM_USER + 2;
constexpr wchar_t kClass[] = L"NyListenerTestWindow";

}  // namespace

HostWindow::HostWindow(NyServerApp* listener) : m_listener(listener), m_thread([this] { run(); }) {
    if (!eventually([this] { return ::IsWindow(m_wnd.GetSafeHwnd()) != FALSE; }, kGenerously))
        throw std::runtime_error("no window");
}

HostWindow::~HostWindow() {
    destroyWindow();
    m_thread.join();
}

void HostWindow::destroyWindow() {
    if (::IsWindow(m_wnd.GetSafeHwnd())) ::SendMessageW(m_wnd.GetSafeHwnd(), kDestroy, 0, 0);
}

std::vector<PostedBlock> HostWindow::messages() const {
    const std::lock_guard lock(m_mutex);
    return m_messages;
}

size_t HostWindow::count() const {
    const std::lock_guard lock(m_mutex);
    return m_messages.size();
}

// Posted messages are taken in their order.
void HostWindow::settle() {
    const NySe::UniqueKernelHandle seen(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (::PostMessageW(m_wnd.GetSafeHwnd(), kSettle, 0, reinterpret_cast<LPARAM>(seen.get())))
        ::WaitForSingleObject(seen.get(),
                              static_cast<DWORD>(std::chrono::milliseconds(kGenerously).count()));
}

void HostWindow::forget() {
    settle();
    const std::lock_guard lock(m_mutex);
    m_messages.clear();
}

void HostWindow::run() {
    WNDCLASSW description{};
    description.lpfnWndProc = windowProcedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.lpszClassName = kClass;
    ::RegisterClassW(&description);
    const HWND window = ::CreateWindowExW(0, kClass, L"", WS_OVERLAPPED, 0, 0, 1, 1, nullptr,
                                          nullptr, description.hInstance, nullptr);
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_wnd.Attach(window);
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) ::DispatchMessageW(&message);
}

LRESULT CALLBACK HostWindow::windowProcedure(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam) {
    auto* const self = reinterpret_cast<HostWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == kSettle) {
        ::SetEvent(reinterpret_cast<HANDLE>(lParam));
        return 0;
    }
    if (message == kDestroy) return ::DestroyWindow(window);
    if (message == WM_DESTROY) ::PostQuitMessage(0);
    if (message < WM_APP) return ::DefWindowProcW(window, message, wParam, lParam);
    self->take(message, wParam, lParam);
    return 0;
}

void HostWindow::take(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* const bytes = reinterpret_cast<const char*>(lParam);
    const NySe::UniqueGlobalBlock block(bytes ? ::GlobalHandle(bytes) : nullptr);
    const bool isMoveable = block && block.get() != reinterpret_cast<HGLOBAL>(lParam);
    const UINT lockCount = block ? ::GlobalFlags(block.get()) & GMEM_LOCKCOUNT : 0;
    {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back({{block ? std::string(bytes, wParam) : std::string()},
                              message,
                              wParam,
                              lParam,
                              isMoveable,
                              lockCount});
    }
    if (m_listener && !m_isHolding && message == NySe::_TM_NYSERVERMESSAGE)
        m_listener->decreasePostMsgCount();
}
