#include "afxwin.h"

#include <utility>

IMPLEMENT_DYNAMIC(CWnd, CObject)

BOOL CWnd::Attach(HWND window) {
    m_hWnd = window;
    return window != nullptr;
}

HWND CWnd::Detach() {
    return std::exchange(m_hWnd, nullptr);
}
