// CWnd: a window as an object.
#pragma once

#include "CObject.h"

// Bears a window's handle. A window and its object belong to the thread that made the window; other
// threads may read the handle as long as the object lives.
class NYBASE_API CWnd : public CObject {
    DECLARE_DYNAMIC(CWnd)
  public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // The window's handle; null when there is no window.
    HWND GetSafeHwnd() const { return m_hWnd; }

    // Makes this the object of an existing window, which stays its maker's. FALSE for a null
    // handle. REQUIRES: no window attached.
    BOOL Attach(HWND window);
    // Lets go of the window and returns its handle.
    HWND Detach();

    HWND m_hWnd = nullptr;
};
