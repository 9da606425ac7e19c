// What the socket sources use of modules that are not built here: the class library's windows and
// formatted text, the module's own message, this machine's addresses and times of day.
#include <cstdarg>
#include <string>

#include "NyServer/client/ServerInformation.h"
#include "NyServer/host/NyFctIpUtil.h"
#include "NyServer/host/NyServerModule.h"
// The class library's windows, as they are here.
#include <afxwin.h>

unsigned int NySe::_TM_NYSERVERMESSAGE = ::RegisterWindowMessageW(L"TM_NYSERVERMESSAGE");

IMPLEMENT_DYNAMIC(CWnd, CObject)

namespace {

void setHandle(CWnd& object, HWND window) {
    std::atomic_ref(object.m_hWnd).store(window, std::memory_order_relaxed);
}

}  // namespace

CWnd::~CWnd() {
    if (m_classProcedure) CWnd::DestroyWindow();
}

BOOL CWnd::Attach(HWND window) {
    setHandle(*this, window);
    return window != nullptr;
}

HWND CWnd::Detach() {
    const HWND window = m_hWnd;
    setHandle(*this, nullptr);
    return window;
}

// A window of the same kind, whatever the class.
BOOL CWnd::CreateEx(DWORD, LPCTSTR, LPCTSTR, DWORD, int, int, int, int, HWND, HMENU, LPVOID) {
    m_classProcedure = ::DefWindowProcW;
    const WNDCLASSW plain{m_classProcedure, 0, nullptr, L"plain"};
    ::RegisterClassW(&plain);
    setHandle(*this, ::CreateWindowExW(0, L"plain", L"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                                       nullptr));
    return TRUE;
}

BOOL CWnd::DestroyWindow() {
    const HWND window = Detach();
    return window && ::DestroyWindow(window);
}

LRESULT CWnd::WindowProc(UINT, WPARAM, LPARAM) {
    return 0;
}

LRESULT CWnd::DefWindowProc(UINT, WPARAM, LPARAM) {
    return 0;
}

// Nothing but numbers is formatted in the sources built here.
void CString::Format(LPCWSTR format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    *this = CString(std::to_string(va_arg(arguments, long)).c_str());
    va_end(arguments);
}

CString NyFctIpUtil::_getIpAddress() {
    return CString(_T("127.0.0.1"));
}

CString NyFctIpUtil::_getIpAddressFromHostName(const CString&) {
    return CString(_T("127.0.0.1"));
}

CString serverinformation::labelledLine(const CString& label, const CString& value) {
    return label + _T(": ") + value;
}

CString serverinformation::timeText(long) {
    return CString(_T("a time"));
}
